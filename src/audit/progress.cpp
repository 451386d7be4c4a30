#include "audit/progress.h"

#include <cstdio>

#include "base/output.h"

namespace {

std::string current_file;

}  // namespace

void speak_of_errors() {
    // With these levels messages of level 1, and of 2 for what is wrong with identifiers, go to
    // standard error.
    VerboseLevel = 0;
    DebugLevel = 2;
    PrintDebugOnScreen = 1;
}

void be_silent() { DebugLevel = 0; }

bool write_out(const std::string& text) {
    if (std::fwrite(text.data(), 1, text.size(), stdout) == text.size() &&
        std::fflush(stdout) == 0) {
        return true;
    }
    give_up("the answer cannot be written");
    return false;
}

void now_reading(const std::string& path) { current_file = path; }

const std::string& file_being_read() { return current_file; }

void give_up(const std::string& reason) {
    std::fprintf(stderr, "%s: %s\n", program_name, reason.c_str());
}
