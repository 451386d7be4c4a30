#include "base/lines.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "base/output.h"

namespace {

// A pipe or device in the place of a file could be read for ever.
bool is_file_or_directory(int descriptor) {
    struct stat status {};
    return fstat(descriptor, &status) == 0 && (S_ISREG(status.st_mode) || S_ISDIR(status.st_mode));
}

}  // namespace

input_file open_for_reading(const char* path) {
    input_file file;
    const int descriptor = open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor >= 0 && is_file_or_directory(descriptor)) {
        file.reset(fdopen(descriptor, "r"));
    }
    if (file == nullptr) {
        if (descriptor >= 0) {
            close(descriptor);
        }
        Print(1, "Error: Could not open file %s\n", path);
    }
    return file;
}

bool next_line(const input_file& file, char (&line)[line_width]) {
    std::size_t length = 0;
    int c = 0;
    while (length < sizeof line - 1 && c != '\n' && (c = getc_unlocked(file.get())) != EOF) {
        // A NUL would hide what stands behind it. This stands in no name, and reaches no shell.
        line[length++] = c == '\0' ? '?' : static_cast<char>(c);
    }
    line[length] = '\0';
    return length > 0;
}
