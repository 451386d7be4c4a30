#pragma once

#include "audit/audit_call.h"
#include "audit/survey.h"

/// Reads the table and the outputs, and judges them for the selection. Gives nothing if a run would
/// end before its walks; the reason is then on standard error.
std::optional<survey> audit_server(const audit_call& call);

/// One audit from the command line to its status. Some elements of `argv` are rewritten.
audit_status audit_run(int argc, char** argv);
