#pragma once

#include <optional>

#include "base/exit_status.h"

/// Reads the command line in its three passes: sets program_name, the output switches, the
/// options and the selection. A leading '/' of an element becomes '-' in place. Gives the
/// status with which the run ends here (help, version, a refused call), or nothing to go on.
std::optional<exit_status> read_command_line(int argc, char** argv);
