#pragma once

#include <string>

#include "audit/audit_call.h"
#include "audit/survey.h"

/// The report for programs: one JSON object, whose form the manual page describes. Bytes that are
/// no UTF-8 become replacement characters.
std::string json_report(const survey& result, audit_status status);
