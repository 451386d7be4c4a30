#include "walk/matching.h"

#include "base/list.h"
#include "base/output.h"
#include "call/paths.h"

bool fits_selection(const hba_info& port, const option_input& selection) {
    const hba_attributes_entry* ids = port.attributes;
    // A record of names alone, or of lists of different length, holds zeros, and so do attributes
    // of which only the head was read.
    if (selection.vendor_id == 0 || selection.device_id == 0) {
        return false;
    }
    if (ids == nullptr || ids->vendor_id != selection.vendor_id ||
        ids->device_id != selection.device_id) {
        return false;
    }
    return !selects_by_four_ids(selection) || (ids->subvendor_id == selection.subvendor_id &&
                                               ids->subdevice_id == selection.subdevice_id);
}

bool fits_row(const hba_info& port, const fc_config_file_entry& row, bool all_four) {
    const hba_attributes_entry& ids = *port.attributes;
    return row.vendor_id == ids.vendor_id && row.device_id == ids.device_id &&
           (!all_four ||
            (row.subvendor_id == ids.subvendor_id && row.subdevice_id == ids.subdevice_id));
}

row_lists rows_of(const hba_info& port) {
    row_lists rows;
    for (const fc_config_file_entry* row : entries(fc_config_entry_list)) {
        if (!fits_row(port, *row, false)) {
            continue;
        }
        ++rows.count;
        if (fits_row(port, *row, true)) {
            rows.by_four.push_back(row);
        } else if (rows.by_two.size() < most_rows_by_two) {
            rows.by_two.push_back(row);
        }
    }
    return rows;
}

void print_fitting_row(const fc_config_file_entry& row, int place) {
    Print(6, "\t%s:\n", conditions_file_name);
    Print(6, "\tFound a matching controller-device in line %d:\n", place);
    Print(6, "\t\tvendor-id: %s, device-id: %s\n", row.vendor_id_text, row.device_id_text);
    Print(6, "\t\tsubvendor-id: %s, subdevice-id: %s\n", row.subvendor_id_text,
          row.subdevice_id_text);
    Print(6, "\t\tCorrespondig data: vendor: %s; model: %s\n\n", row.vendor, row.model);
}
