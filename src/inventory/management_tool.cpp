#include "inventory/management_tool.h"

#include <sys/stat.h>
#include <unistd.h>

#include "base/output.h"
#include "base/text.h"
#include "call/options.h"
#include "call/paths.h"
#include "inventory/tool_places.h"

namespace {

constexpr std::size_t command_width = 1024;

// What a shell does not just pass on: anywhere, in an argument (behind '>' it expands no pattern),
// and as the first character of a word. Blanks and carriage returns stand in harmless values too.
constexpr std::string_view unsafe_anywhere = "|&;<>()$`\\\"'{\n";
constexpr std::string_view unsafe_in_arguments = "*?[";
constexpr std::string_view unsafe_as_first = "~#";

/// Where in a command line the next character stands.
struct word_place {
    bool at_start = true;
    bool is_target = false;  ///< of a redirection
};

void step_over(word_place& place, char c) {
    if (c == '>') {
        place = {.at_start = true, .is_target = true};
    } else if (c != ' ' && c != '\t' && c != '\n') {
        place.at_start = false;
    } else if (!place.at_start) {
        place = {.at_start = true, .is_target = false};
    }
}

bool is_unsafe(const word_place& place, char c) {
    return unsafe_anywhere.find(c) != std::string_view::npos ||
           (!place.is_target && unsafe_in_arguments.find(c) != std::string_view::npos) ||
           (place.at_start && unsafe_as_first.find(c) != std::string_view::npos);
}

// Steps over the text as well.
bool holds_unsafe(word_place& place, std::string_view text) {
    bool found = false;
    for (const char c : text) {
        found = found || is_unsafe(place, c);
        step_over(place, c);
    }
    return found;
}

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
    tool_command command{.line = fill_in(format, values), .unsafe_value = {}};
    word_place place;
    for (const std::string_view value : values) {
        const std::size_t at = format.find("%s");
        holds_unsafe(place, format.substr(0, at));
        if (holds_unsafe(place, value)) {
            mark_unsafe(command, value);
        }
        format.remove_prefix(at + 2);
    }
    return command;
}

void mark_unsafe(tool_command& command, std::string_view value) {
    if (command.unsafe_value.empty()) {
        command.unsafe_value = value;
    }
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
    if (!command.unsafe_value.empty() && active_option_simulate == 0) {
        Print(1, "Error: Unsafe value '%s' in command: %s\n", command.unsafe_value.c_str(),
              command.line.c_str());
        return true;
    }
    return false;
}

bool remove_old_output(const std::string& path) {
    struct stat status {};
    return active_option_simulate != 0 || unlink(path.c_str()) == 0 ||
           lstat(path.c_str(), &status) != 0 || S_ISDIR(status.st_mode);
}

int run_command(const tool_command& command, command_kind kind) {
    return active_option_simulate != 0 ? 0 : run_in_shell(command.line.c_str(), kind);
}

void print_too_long(const char* text) {
    Print(1, "Error: Command or file name is too long: %s\n", text);
}
