#pragma once

#include <array>
#include <concepts>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "base/text.h"

/// A command line of the management tool, the very text for the shell.
struct tool_command {
    std::string line;
    std::string unsafe_value;  ///< would make the shell do more than pass it on; empty: none would
};

/// Composes a command line, as compose_command does, from a format whose "%s" have been counted.
tool_command compose_filled(std::string_view format, std::span<const std::string_view> values);

/// Composes a command line. The format may hold shell syntax, the values may not; the first one
/// that does is noted.
template <std::convertible_to<std::string_view>... Values>
tool_command compose_command(fill_format<sizeof...(Values)> format, const Values&... values) {
    const std::array<std::string_view, sizeof...(Values)> texts{values...};
    return compose_filled(format.text, texts);
}

/// Notes a value that is unsafe for another reason than its characters, unless one is noted.
void mark_unsafe(tool_command& command, std::string_view value);

/// Whether `name`, read from a device, holds a ".." by which a path would leave its directory.
bool leaves_directory(std::string_view name);

/// Whether the line of the command is too long to be run.
bool is_too_long(const tool_command& command);

/// Whether the command may not be run: it is too long, or unsafe and not simulated. That is
/// said at level 1.
bool is_refused(const tool_command& command);

/// Runs a command that is not refused through the shell and waits for its end; under --simulate
/// nothing is run and the status is 0. Gives the status as `system` does, not decoded.
int run_query(const tool_command& command);

/// The same; gives nothing when a signal came before the start, so that the command was not run.
std::optional<int> run_download(const tool_command& command);

/// Says at level 1 that a command or file name is too long to be used.
void print_too_long(const char* text);
