#pragma once

#include <string>

#include "base/exit_status.h"

/// How a call of the audit ends.
enum audit_status : int {
    AUDIT_NO_FINDING = 0,  ///< none that counts; help or version given, too
    AUDIT_FINDINGS = 1,
    AUDIT_GAVE_UP = 2,  ///< it could not do its work; the reason went to standard error
};

/// Lets the library write its messages about errors, and no others, to standard error.
void report_errors();

/// Lets the library say nothing again.
void be_silent();

/// Writes `text` to standard output. False, and says so, if it cannot be written. A reader that has
/// gone away is no failure.
bool write_out(const std::string& text);

/// Notes what is being read, a file or a part of the call, in case it ends the process.
void now_reading(const std::string& what);

/// Says on standard error where cnatool ends with this status. The audit ends there too. The
/// library may have said the reason before.
void cannot_go_on(exit_status status);

/// Says on standard error that the audit cannot go on, and why. Gives the status for that.
audit_status give_up(const std::string& reason);
