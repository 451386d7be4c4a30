#pragma once

#include "call/selection.h"
#include "conditions/conditions_file.h"
#include "inventory/port_records.h"

/// Whether the record selects by all four identifiers rather than by vendor and device alone.
bool selects_by_four_ids(const option_input& selection);

/// Whether the port has the identifiers that the record selects. A port without attributes
/// has nothing to compare and fits nothing, and a record without a vendor or device fits no port.
bool fits_selection(const hba_info& port, const option_input& selection);

/// Whether row and port agree on vendor and device and, with `all_four`, on the sub ids too.
bool fits_row(const hba_info& port, const fc_config_file_entry& row, bool all_four);

/// Reports at level 6 that a row fits. `place` counts the rows of the table from 1.
void print_fitting_row(const fc_config_file_entry& row, int place);
