#include "flash/image_finder.h"

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <memory>
#include <string_view>

#include "base/text.h"
#include "tool/output_files.h"

namespace {

using std::string_view;

struct directory_closer {
    void operator()(DIR* directory) const { closedir(directory); }
};

// What can become of a name, in the order of the tests; the pattern is the beginning, so that a
// longer extension or name fits too:
//   - it begins with a dot, or runs leave it behind: no fit
//   - the pattern begins with "*.": its last dot and what follows must begin with the extension
//   - any other pattern: the name must begin with it
bool fits_pattern(string_view name, string_view pattern) {
    if (name.starts_with('.') || is_left_by_runs(name)) {
        return false;
    }
    if (pattern.starts_with("*.")) {
        const std::size_t dot = name.rfind('.');
        return dot != string_view::npos && name.substr(dot).starts_with(pattern.substr(1));
    }
    return name.starts_with(pattern);
}

// Hands the name of every entry that fits, and whose path has room, to `take` until that gives
// false.
template <typename Take>
void each_image(const char* directory, const char* pattern, const Take& take) {
    const std::unique_ptr<DIR, directory_closer> stream(*pattern == '\0' ? nullptr
                                                                         : opendir(directory));
    while (const dirent* entry = stream == nullptr ? nullptr : readdir(stream.get())) {
        const string_view name = entry->d_name;
        const bool has_room = string_view(directory).size() + name.size() < image_path_width;
        if (fits_pattern(name, pattern) && has_room && !take(name)) {
            return;
        }
    }
}

}  // namespace

exit_status FindFlashImage(const char* directory, char (&result)[image_path_width],
                           const char* pattern) {
    exit_status status = RET_FW_NOT_AVAILABLE;
    each_image(directory, pattern, [&](string_view name) {
        set_text(result, directory);
        append_text(result, name);
        status = RET_OK;
        return false;
    });
    return status;
}

std::vector<std::string> fitting_images(const char* directory, const char* pattern) {
    std::vector<std::string> names;
    each_image(directory, pattern, [&](string_view name) {
        names.emplace_back(name);
        return true;
    });
    return names;
}

bool can_be_sent(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) && status.st_size > 0 &&
           access(path.c_str(), R_OK) == 0;
}
