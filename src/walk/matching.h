#pragma once

#include <cstddef>
#include <vector>

#include "call/selection.h"
#include "conditions/conditions_file.h"
#include "inventory/port_records.h"

/// Whether the port has the identifiers that the record selects. A port without attributes fits
/// nothing, and a record without vendor or device fits no port.
bool fits_selection(const hba_info& port, const option_input& selection);

/// Whether row and port agree on vendor and device and, with `all_four`, on the sub ids too.
bool fits_row(const hba_info& port, const fc_config_file_entry& row, bool all_four);

inline constexpr std::size_t most_rows_by_two = 10;

using row_list = std::vector<const fc_config_file_entry*>;

/// The rows that fit some identifiers, in the table's order.
struct row_lists {
    row_list by_four;
    row_list by_two;        ///< the first of those by vendor and device alone
    std::size_t count = 0;  ///< of all of them
};

/// The rows of the table that fit a port, which has attributes.
row_lists rows_of(const hba_info& port);

/// Reports at level 6 that a row fits. `place` counts the rows of the table from 1.
void print_fitting_row(const fc_config_file_entry& row, int place);
