#pragma once

#include <optional>

/// How a call of the audit ends.
enum audit_status : int {
    AUDIT_NO_FINDING = 0,  ///< help or version given, too
    AUDIT_FINDINGS = 1,
    AUDIT_GAVE_UP = 2,  ///< it could not do its work; the reason went to standard error
};

/// Whether --json was given.
extern bool active_option_json;

/// Reads the command line: the selection, --conpath and --flash as the tool does, with its texts
/// for what is refused, and the audit's own words. Gives the status with which the call ends
/// here, or nothing to go on. Some elements of `argv` are rewritten in place.
std::optional<audit_status> read_audit_call(int argc, char** argv);
