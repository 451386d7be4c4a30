#include "base/lines.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "base/output.h"

namespace {

// A pipe or device in the place of a file could be read for ever.
bool is_readable(int descriptor, directory_as directory) {
    struct stat status {};
    return fstat(descriptor, &status) == 0 &&
           (S_ISREG(status.st_mode) ||
            (S_ISDIR(status.st_mode) && directory == directory_as::empty_file));
}

}  // namespace

input_file open_for_reading(const std::string& path, directory_as directory) {
    input_file file{.stream = nullptr, .path = path};
    const int descriptor = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor >= 0 && is_readable(descriptor, directory)) {
        file.stream.reset(fdopen(descriptor, "r"));
    }
    if (file.stream == nullptr) {
        if (descriptor >= 0) {
            close(descriptor);
        }
        print_not_opened(path);
    }
    return file;
}

file_form form_of(const input_file& file) {
    constexpr std::int64_t second = 1'000'000'000;
    const int descriptor = fileno(file.stream.get());
    struct stat status {};
    const bool is_empty = fstat(descriptor, &status) != 0 || status.st_size == 0;
    char last = '\0';
    const bool has_last = !is_empty && pread(descriptor, &last, 1, status.st_size - 1) == 1;
    return {.written = status.st_mtim.tv_sec * second + status.st_mtim.tv_nsec,
            .is_empty = is_empty,
            .is_truncated = !has_last || last != '\n'};
}

void print_not_opened(const std::string& path) {
    Print(1, "Error: Could not open file %s\n", path.c_str());
}

bool next_line(const input_file& file, char (&line)[line_width]) {
    std::size_t length = 0;
    int c = 0;
    while (length < sizeof line - 1 && c != '\n' && (c = getc_unlocked(file.stream.get())) != EOF) {
        // A NUL would hide the text behind it. A question mark fits no name, and reaches no shell.
        line[length++] = c == '\0' ? '?' : static_cast<char>(c);
    }
    line[length] = '\0';
    return length > 0;
}

exit_status status_at_end(const input_file& file) {
    struct stat status {};
    const bool failed = std::ferror(file.stream.get()) != 0;
    // That a directory holds no lines is no error.
    if (!failed || (fstat(fileno(file.stream.get()), &status) == 0 && S_ISDIR(status.st_mode))) {
        return RET_OK;
    }
    Print(1, "Error: Could not read file %s to its end.\n", file.path.c_str());
    return STATUS_OUTPUT_FILE_MISSING;
}
