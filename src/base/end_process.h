#pragma once

#include "base/exit_status.h"

/// Ends the tool at once. Only for the places that cannot return a status: bad entries and a lack
/// of memory in the selection lists, bad identifiers in the table, a number that overflows. It is
/// alone in its source file, so that a test or fuzz target can link another one.
[[noreturn]] void end_process(exit_status status);
