#include "base/output.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdarg>
#include <new>
#include <string>

#include "base/progress.h"
#include "base/terminal.h"
#include "base/text.h"

int DebugLevel = 0;
int VerboseLevel = 1;
int PrintDebugOnScreen = 1;
char program_name[32];

namespace {

std::FILE* debug_log = nullptr;

// The directory of the log is known only after the command line has been read. Until then this
// keeps what -d asks for.
std::string held_back;
bool log_is_due = true;

void hold_back(const char* text) {
    try {
        held_back.append(text);
    } catch (const std::bad_alloc&) {
        held_back.clear();  // It is missing in the log then; the run goes on.
    }
}

std::FILE* open_plain_file(const char* path) {
    const int descriptor =
        open(path, O_WRONLY | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (descriptor < 0) {
        return nullptr;
    }
    // With a second name, another file could be written as through a symbolic link.
    struct stat status {};
    const bool usable = fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) &&
                        status.st_nlink == 1 && ftruncate(descriptor, 0) == 0;
    std::FILE* file = usable ? fdopen(descriptor, "w") : nullptr;
    if (file == nullptr) {
        close(descriptor);
    }
    return file;
}

}  // namespace

void set_program_name(std::string_view called_as) {
    set_text(program_name, called_as.substr(called_as.rfind('/') + 1));
}

bool level_shows(int level) { return level <= VerboseLevel || level <= DebugLevel; }

int PrintDebug(int level, const char* text, std::FILE* stream) {
    if (stream == nullptr) {
        stream = debug_log;
    }
    if (stream == nullptr && PrintDebugOnScreen == 0) {
        if (log_is_due && level <= DebugLevel) {
            hold_back(text);
        }
        return 0;
    }
    if (!level_shows(level)) {
        return 0;
    }
    char buffer[message_width];
    std::snprintf(buffer, sizeof buffer, "%s", text);
    if (PrintDebugOnScreen != 0 && VerboseLevel != 0) {
        stream = stdout;
    } else if (PrintDebugOnScreen != 0 && DebugLevel != 0) {
        stream = stderr;
    }
    take_progress_away();
    write_text(buffer, stream);
    return 1;
}

void Print(int level, const char* format, ...) {
    if (!level_shows(level)) {
        return;
    }
    char text[message_width];
    std::va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    PrintDebug(level, text);
}

void print_error(const char* format, ...) {
    char text[message_width];
    std::va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    take_progress_away();
    write_text(text, stderr);
}

void print_out_of_memory() { Print(1, "Error: %s, Memory allocation failed!\n", program_name); }

void open_debug_log(const char* path) {
    if (DebugLevel > 0) {
        debug_log = open_plain_file(path);
    }
    if (debug_log != nullptr) {
        // So that a long run can be followed in the log, and the messages of a killed one stay.
        std::setvbuf(debug_log, nullptr, _IOLBF, 0);
        std::fputs(held_back.c_str(), debug_log);
    }
    held_back = {};
    log_is_due = false;
}
