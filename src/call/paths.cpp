#include "call/paths.h"

#include <unistd.h>

#include <cstdlib>

#include "base/output.h"
#include "base/text.h"

char TEMPDIR_BUFFER[4096];
char pHBAConditionsPath[path_width];
char pHBAFirmwarePath[path_width];
char pHBAWorkingPath[path_width];
char pHBAFlashCmdPath[path_width];

bool set_directory(std::string_view directory) {
    // The file name's width counts the terminator; one more character is the slash.
    if (directory.size() + 1 + sizeof conditions_file_name > path_width) {
        return false;
    }
    set_text(pHBAConditionsPath, directory);
    set_text(pHBAFirmwarePath, directory);
    set_text(pHBAWorkingPath, directory);
    return true;
}

void read_temporary_directory() {
    const char* value = std::getenv("TMPDIR");
    set_text(TEMPDIR_BUFFER, value == nullptr || *value == '\0' ? "/tmp" : value);
    if (value == nullptr) {
        Print(3, "env: Environment variable %s is not set.\n", "TMPDIR");
    } else if (*value == '\0') {
        Print(3, "env: Environment variable %s is empty.\n", "TMPDIR");
    } else {
        Print(3, "env: Temporary directory is: %s.\n", TEMPDIR_BUFFER);
    }
}

bool resolve_paths(std::string_view called_as) {
    if (pHBAConditionsPath[0] == '\0') {
        const std::size_t slash = called_as.rfind('/');
        char current[path_width];
        std::string_view directory = called_as.substr(0, slash);
        if (slash == std::string_view::npos && getcwd(current, sizeof current) != nullptr) {
            directory = current;
        }
        if (!set_directory(directory)) {
            return false;
        }
    }
    // Nothing normalises a path: a directory given with a slash at its end gets a second one.
    append_text(pHBAWorkingPath, "/");
    append_text(pHBAFirmwarePath, "/");
    append_text(pHBAConditionsPath, "/");
    append_text(pHBAConditionsPath, conditions_file_name);
    return true;
}
