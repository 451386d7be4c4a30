#include "tool/tool_command.h"

#include "base/output.h"
#include "call/options.h"
#include "tool/command_run.h"

namespace {

constexpr std::size_t command_width = 1024;

// Characters on which a shell acts: anywhere, in an argument (it expands no pattern behind '>'),
// and at the beginning of a word. Harmless values contain blanks and carriage returns, too.
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

// Also steps over the text.
bool holds_unsafe(word_place& place, std::string_view text) {
    bool found = false;
    for (const char c : text) {
        found = found || is_unsafe(place, c);
        step_over(place, c);
    }
    return found;
}

}  // namespace

tool_command compose_filled(std::string_view format, std::span<const std::string_view> values) {
    tool_command command{.line = fill_places(format, values), .unsafe_value = {}};
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

bool is_too_long(const tool_command& command) { return command.line.size() >= command_width; }

bool is_refused(const tool_command& command) {
    if (is_too_long(command)) {
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

int run_query(const tool_command& command) {
    return active_option_simulate != 0 ? 0 : run_query_in_shell(command.line.c_str());
}

std::optional<int> run_download(const tool_command& command) {
    return active_option_simulate != 0 ? 0 : run_download_in_shell(command.line.c_str());
}

void print_too_long(const char* text) {
    Print(1, "Error: Command or file name is too long: %s\n", text);
}
