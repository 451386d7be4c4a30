#pragma once

#include "base/exit_status.h"

/// Ends the tool at once. For the few places that have no result to report through: bad entries and
/// exhausted memory in the selection lists, bad identifiers in the table, a number that overflows.
/// It stands alone in its source file so that a test or fuzz target can link another one instead.
[[noreturn]] void end_process(exit_status status);
