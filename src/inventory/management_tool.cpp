#include "inventory/management_tool.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>

#include "base/output.h"
#include "base/text.h"
#include "call/options.h"
#include "call/paths.h"
#include "inventory/tool_places.h"

namespace {

constexpr std::size_t command_width = 1024;

// What the shell does not just pass on. Blanks and carriage returns stand in harmless values too.
constexpr std::string_view shell_characters = "|&;<>()$`\\\"'*?[#\n";

}  // namespace

exit_status Get_HbaCmd_Path() {
    pHBAFlashCmdPath[0] = '\0';
    for (const char* place : tool_places) {
        struct stat status {};
        if (stat(place, &status) == 0) {
            set_text(pHBAFlashCmdPath, place);
            Print(3, "Info: Found flash command: %s\n\n", pHBAFlashCmdPath);
            return RET_OK;
        }
        if (place != tool_places.back()) {
            Print(1, "Info: Flash command %s is not available.\n\n", place);
        }
    }
    Print(1, "Error: Flash command %s is not available (no flash command at all found)\n\n",
          tool_places.back());
    return RET_SCLI_NOT_INSTALLED;
}

std::string fill_in(std::string_view format, std::initializer_list<std::string_view> values) {
    std::string text;
    for (const std::string_view value : values) {
        const std::size_t place = format.find("%s");
        text.append(format.substr(0, place)).append(value);
        format.remove_prefix(place + 2);
    }
    return text.append(format);
}

tool_command compose_command(std::string_view format,
                             std::initializer_list<std::string_view> values) {
    const bool unsafe = std::any_of(values.begin(), values.end(), [](std::string_view value) {
        return value.find_first_of(shell_characters) != std::string_view::npos;
    });
    return {fill_in(format, values), unsafe};
}

bool leaves_directory(std::string_view name) {
    while (const auto part = next_part(name, '/')) {
        if (*part == "..") {
            return true;
        }
    }
    return false;
}

bool is_refused(const tool_command& command) {
    if (command.line.size() >= command_width) {
        print_too_long(command.line.c_str());
        return true;
    }
    if (command.unsafe && active_option_simulate == 0) {
        Print(1, "Error: Unsafe character in command: %s\n", command.line.c_str());
        return true;
    }
    return false;
}

std::optional<int> run_command(const tool_command& command) {
    if (is_refused(command)) {
        return std::nullopt;
    }
    return active_option_simulate != 0 ? 0 : std::system(command.line.c_str());
}

void print_too_long(const char* text) {
    Print(1, "Error: Command or file name is too long: %s\n", text);
}
