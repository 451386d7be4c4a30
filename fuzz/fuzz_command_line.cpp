// The command line through its three passes; a line of the input is a word.

#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "base/output.h"
#include "call/command_line.h"
#include "call/selection.h"
#include "support/process.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    reset_run();
    std::vector<std::string> words(1);
    for (const char c : std::string(reinterpret_cast<const char*>(data), size)) {
        if (c == '\n') {
            words.emplace_back();
        } else {
            words.back() += c;
        }
    }
    std::vector<char*> argv;
    for (std::string& word : words) {
        argv.push_back(word.data());
    }
    try {
        const auto status = read_command_line(static_cast<int>(argv.size()), argv.data());
        for (const option_input* record = p_option_input; record; record = record->next) {
            if (!status && (record->vendor_id < 0 || record->subdevice_id < 0)) {
                std::abort();
            }
        }
        if (!status && DebugLevel > 0 && VerboseLevel > 0) {
            std::abort();
        }
    } catch (const ended&) {
        // Bad identifiers end the process.
    }
    return 0;
}
