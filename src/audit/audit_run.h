#pragma once

#include "audit/audit_call.h"
#include "audit/survey.h"

/// Reads table and outputs below the settled paths and judges them for the selection in force.
/// Nothing where a run would end before its walks: that has been said on standard error.
std::optional<survey> audit_server();

/// One audit from the command line to its status. Some elements of `argv` are rewritten.
audit_status audit_run(int argc, char** argv);
