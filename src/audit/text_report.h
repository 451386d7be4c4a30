#pragma once

#include <string>

#include "audit/survey.h"

/// The report for people: lines of at most 100 columns, in colours on a terminal unless NO_COLOR
/// is set. All that is no printable ASCII character shows as a question mark.
std::string text_report(const survey& result);
