#pragma once

#include <vector>

#include "audit/findings.h"

/// Notes what is odd in the table that fc_config_entry_list was read from, and the rows behind
/// which an earlier one stands with the same names and identifiers.
void judge_table(std::vector<finding>& findings);
