#include "check/check_walk.h"

#include "base/list.h"
#include "base/output.h"
#include "call/options.h"
#include "check/controller_check.h"
#include "walk/matching.h"

namespace {

constexpr char star_ruler[] =
    "*********+*********+*********+*********+*********+*********+*********+*********+\n"
    "*********+*********+*********+*********+*********+*********+*********+*********+";

void print_skipped_port(const hba_info& port) {
    Print(6, "\tVendor: %s Model: %s; SN: %s port: %s function: %s\n", port.Mfg, port.Model,
          port.SerialNo, port.PortNumber, port.PCIFunction);
    Print(6, "\tNo serial number => SKIP\n");
    Print(6, "%s\n", dash_ruler);
}

// For a selection by two identifiers two are enough here; the flash walk needs all four.
void check_port(const hba_info& port, bool all_four, global_ctrl_flags& flags,
                const check_observer& observer) {
    int place = 0;
    for (fc_config_file_entry*& row : entries(fc_config_entry_list)) {
        ++place;
        if (fits_row(port, *row, all_four)) {
            print_fitting_row(*row, place);
            if (observer.comes_to) {
                observer.comes_to(port, *row);
            }
            DoSubSystemCheck(&port, &row, &flags, observer);
        }
    }
}

bool check_passed(const global_ctrl_flags& flags) {
    if (active_option_valid_subsystem != 0) {
        return flags.InvalidCtrlSubsystemCombinationFound == 0;
    }
    if (active_option_ctrl_wide_identical != 0) {
        return flags.CtrlSpecificSubsystemEquality != 0;
    }
    if (active_option_ctrl_vendor_wide_identical != 0) {
        return flags.CtrlVendorSpecificSubsystemEquality != 0;
    }
    return true;
}

}  // namespace

bool OverallSubSystemCheck(const option_input* selection, global_ctrl_flags* flags,
                           const check_observer& observer) {
    flags->CtrlVendorSpecificSubsystemEquality = 1;
    Print(3, "\n\n%s\n", star_ruler);
    for (; selection != nullptr; selection = selection->next) {
        for (const hba_info* port : entries(p_hba_info_list)) {
            if (!has_serial_number(*port)) {
                print_skipped_port(*port);
            } else if (fits_selection(*port, *selection)) {
                flags->MatchingCtrlModelInstalled = 1;
                check_port(*port, selects_by_four_ids(*selection), *flags, observer);
            }
        }
    }
    Print(3, "\n%s\n\n", star_ruler);
    return check_passed(*flags);
}
