#pragma once

#include <optional>
#include <vector>

#include "audit/findings.h"
#include "call/typed_groups.h"

/// How a call of the audit ends.
enum audit_status : int {
    AUDIT_NO_FINDING = 0,  ///< none that counts; help or version given, too
    AUDIT_FINDINGS = 1,
    AUDIT_GAVE_UP = 2,  ///< it could not do its work; the reason went to standard error
};

/// What the options of the audit alone ask for. Selection, directory and --flash are those of the
/// tool.
struct audit_call {
    bool json = false;
    std::vector<accepted_finding> accepted;
    std::vector<typed_list> lists;  ///< of the selection
};

/// Reads the command line: the selection, --conpath and --flash as the tool does, with its messages
/// if they are refused, and the options of the audit alone into `call`. Gives the status with which
/// the call ends here, or nothing to go on. Some elements of `argv` are rewritten in place.
std::optional<audit_status> read_audit_call(int argc, char** argv, audit_call& call);
