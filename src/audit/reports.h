#pragma once

#include "audit/survey.h"

/// The report for people: lines of at most 100 columns, in colours on a terminal unless NO_COLOR
/// is set. All that is no printable ASCII character shows as a question mark.
std::string text_report(const survey& result);

/// The report for programs: one JSON object, whose form docs/cnatool-audit.schema.json describes.
/// Bytes that are no UTF-8 become replacement characters.
std::string json_report(const survey& result);
