#include "flash/image_finder.h"

#include <dirent.h>

#include <memory>
#include <string_view>

#include "base/text.h"

namespace {

using std::string_view;

struct directory_closer {
    void operator()(DIR* directory) const { closedir(directory); }
};

// What can become of a name, in the order of the tests; the pattern is the prefix side, so that
// a longer extension or name fits too:
//   - it begins with a dot: no fit
//   - the pattern begins with "*.": its last dot and what follows must begin with the extension
//   - any other pattern: the name must begin with it
bool fits_pattern(string_view name, string_view pattern) {
    if (name.starts_with('.')) {
        return false;
    }
    if (pattern.starts_with("*.")) {
        const std::size_t dot = name.rfind('.');
        return dot != string_view::npos && name.substr(dot).starts_with(pattern.substr(1));
    }
    return name.starts_with(pattern);
}

}  // namespace

exit_status FindFlashImage(const char* directory, char (&result)[image_path_width],
                           const char* pattern) {
    if (*pattern == '\0') {
        return RET_FW_NOT_AVAILABLE;
    }
    const std::unique_ptr<DIR, directory_closer> stream(opendir(directory));
    if (stream == nullptr) {
        return RET_FW_NOT_AVAILABLE;
    }
    while (const dirent* entry = readdir(stream.get())) {
        const string_view name = entry->d_name;
        const bool has_room = string_view(directory).size() + name.size() < image_path_width;
        if (fits_pattern(name, pattern) && has_room) {
            set_text(result, directory);
            append_text(result, name);
            return RET_OK;
        }
    }
    return RET_FW_NOT_AVAILABLE;
}
