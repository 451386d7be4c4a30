#include "tool/output_files.h"

#include <sys/stat.h>
#include <unistd.h>

#include "base/text.h"
#include "call/options.h"
#include "call/paths.h"

namespace {

// Serial number and function of a port stand before the end of the name.
bool is_about_port(std::string_view name, std::string_view end) {
    return name.ends_with(end) && name.substr(0, name.size() - end.size()).ends_with('_');
}

}  // namespace

bool is_left_by_runs(std::string_view name) {
    return name == list_file_name || name == log_file_name || name.starts_with(trace_file_name) ||
           is_about_port(name, attributes_file_name) || is_about_port(name, mapping_file_name);
}

std::string port_list_path() { return fill_in("%s/%s", pHBAWorkingPath, list_file_name); }

bool remove_old_output(const std::string& path) {
    struct stat status {};
    return active_option_simulate != 0 || unlink(path.c_str()) == 0 ||
           lstat(path.c_str(), &status) != 0 || S_ISDIR(status.st_mode);
}

input_file open_output(const std::string& path) {
    return open_for_reading(
        path, active_option_simulate != 0 ? directory_as::no_file : directory_as::empty_file);
}
