#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

#include "base/exit_status.h"
#include "inventory/command_run.h"

/// Finds the management tool and puts its path into pHBAFlashCmdPath. Gives 0, or 21 when it
/// is at none of its places.
exit_status Get_HbaCmd_Path();

/// Puts the values in place of the "%s" of `format`, in their order.
std::string fill_in(std::string_view format, std::initializer_list<std::string_view> values);

/// A command line of the management tool, the very text for the shell.
struct tool_command {
    std::string line;
    std::string unsafe_value;  ///< would make the shell do more than pass it on; empty: none would
};

/// Composes a command line. The format may hold shell syntax, the values may not; the first one
/// that does is noted.
tool_command compose_command(std::string_view format,
                             std::initializer_list<std::string_view> values);

/// Notes a value that is unsafe for another reason than its characters, unless one is noted.
void mark_unsafe(tool_command& command, std::string_view value);

/// Whether `name`, read from a device, holds a ".." by which a path would leave its directory.
bool leaves_directory(std::string_view name);

/// Whether the command may not be run: it is too long, or unsafe and not simulated. That is
/// said at level 1.
bool is_refused(const tool_command& command);

/// Removes what an earlier run has left in the place of an output. False when it stays, so that
/// what the command prints could not be told from it; a directory is left to the shell.
bool remove_old_output(const std::string& path);

/// Runs a command that is not refused through the shell and waits for its end; under --simulate
/// nothing is run and the status is 0. Gives the status as `system` does, not decoded.
int run_command(const tool_command& command, command_kind kind);

/// Says at level 1 that a command or file name is too long to be used.
void print_too_long(const char* text);
