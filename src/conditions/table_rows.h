#pragma once

#include <string_view>
#include <vector>

#include "conditions/conditions_file.h"

// What can be told of the rows of a table and of their text, beside what they mean for a run.

/// The identifiers in the columns of a text; below 0 where a column holds none.
std::vector<std::int32_t> ids_in(std::string_view text);

/// Whether the row holds nothing, or a carriage return alone.
bool is_empty(const fc_config_file_entry& row);

/// Whether one of its identifiers is 0. Without subsystem identifiers, 0 in both, a row serves a
/// selection by two.
bool has_zero_id(const fc_config_file_entry& row);

/// Whether one storage vendor stands in it both with products and without; a list of commas alone
/// is none.
bool allows_all_and_some(const fc_config_file_entry& row);

/// Whether the names of the earlier row are prefixes of this row's.
bool has_wider_names(const fc_config_file_entry& earlier, const fc_config_file_entry& row);

/// What makes a comment of a line that looks like a row, where its reader takes a piece of it for
/// one; empty: nothing does.
std::string_view hidden_by(std::string_view line);
