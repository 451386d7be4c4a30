#pragma once

#include <optional>
#include <vector>

#include "audit/diagnostics.h"
#include "audit/findings.h"
#include "call/typed_groups.h"

/// What the options ask for that the audit alone has. It shares selection, directory and --flash
/// with the tool.
struct audit_call {
    bool json = false;
    std::vector<accepted_finding> accepted;
    std::vector<typed_list> lists;  ///< of the selection
};

/// Reads the command line: the selection, --conpath and --flash as the tool does, with its messages
/// if they are refused, and the options of the audit alone into `call`. Gives the status with which
/// the call ends here, or nothing to go on. Some elements of `argv` are rewritten in place.
std::optional<audit_status> read_audit_call(int argc, char** argv, audit_call& call);
