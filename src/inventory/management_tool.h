#pragma once

#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

#include "base/exit_status.h"

/// Finds the management tool and puts its path into pHBAFlashCmdPath. Gives 0, or 21 when it
/// is at none of its places.
exit_status Get_HbaCmd_Path();

/// Puts the values in place of the "%s" of `format`, in their order.
std::string fill_in(std::string_view format, std::initializer_list<std::string_view> values);

/// A command line of the management tool, the very text for the shell.
struct tool_command {
    std::string line;
    bool unsafe;  ///< a value in it would make the shell do more than pass it on
};

/// Composes a command line. The format may hold shell syntax, the values may not.
tool_command compose_command(std::string_view format,
                             std::initializer_list<std::string_view> values);

/// Whether `name`, read from a device, holds a ".." by which a path would leave its directory.
bool leaves_directory(std::string_view name);

/// Whether the command may not be run: it is too long, or unsafe and not simulated. That is
/// said at level 1.
bool is_refused(const tool_command& command);

/// Runs the command through the shell and waits for its end; under --simulate nothing is run
/// and the status is 0. Gives the status as `system` does, not decoded, or nothing when the
/// command was refused.
std::optional<int> run_command(const tool_command& command);

/// Says at level 1 that a command or file name is too long to be used.
void print_too_long(const char* text);
