#include "frame/lines.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

input_file open_for_reading(const char* path) {
    const int descriptor = open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0) {
        return nullptr;
    }
    // A pipe or device in the place of a file could be read for ever.
    struct stat status {};
    const bool usable =
        fstat(descriptor, &status) == 0 && (S_ISREG(status.st_mode) || S_ISDIR(status.st_mode));
    input_file file(usable ? fdopen(descriptor, "r") : nullptr);
    if (file == nullptr) {
        close(descriptor);
    }
    return file;
}

bool next_line(const input_file& file, char (&line)[line_width]) {
    return std::fgets(line, sizeof line, file.get()) != nullptr;
}
