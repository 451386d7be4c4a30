#pragma once

#include "audit/audit_call.h"
#include "audit/survey.h"

/// Judges the table, ports and selection that have been read, and adds to `findings`, which
/// holds what was found in the outputs. Nothing when a port with a serial number has no flash
/// port: that ends a run, and there is nothing to walk.
std::optional<survey> judge_server(std::vector<finding> findings);

/// One audit from the command line to its status. Some elements of `argv` are rewritten.
audit_status audit_run(int argc, char** argv);
