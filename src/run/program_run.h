#pragma once

#include "base/exit_status.h"

/// One run of the tool from the command line to the status that it ends with. Some elements of
/// `argv` are rewritten in place.
exit_status program_run(int argc, char** argv);
