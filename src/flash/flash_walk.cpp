#include "flash/flash_walk.h"

#include "base/list.h"
#include "base/output.h"
#include "walk/matching.h"

namespace {

void print_skipped_port(const hba_info& port) {
    Print(1, "System:\n");
    Print(1, "\tFound an adequate installed controller-device:\n");
    print_flash_port_line(port);
    Print(1, "\t\tPort index: %d; Ignore this port due to missing serial number  => SKIP.\n",
          port.port_index);
}

// All four identifiers of the port decide, however many the selection names.
exit_status flash_fitting_rows(hba_info& port, global_ctrl_flags& flags, const flash_step& step) {
    int place = 0;
    for (fc_config_file_entry*& row : entries(fc_config_entry_list)) {
        ++place;
        if (!fits_row(port, *row, true)) {
            continue;
        }
        Print(6, "\t%s\n\n", dash_ruler);
        print_fitting_row(*row, place);
        if (const exit_status status = step(&port, &row, &flags)) {
            return status;
        }
    }
    return RET_OK;
}

}  // namespace

void print_flash_port_line(const hba_info& port) {
    Print(1,
          "\t\tVendor: %s, Model: %s SerialNumber: %s PortType: %s PortNumber: %s "
          "PortFunction: %s\n",
          port.Mfg, port.Model, port.SerialNo, port.PortType, port.PortNumber, port.PCIFunction);
}

exit_status OverallFlashBladeEngine(const option_input* selection, global_ctrl_flags* flags,
                                    const flash_step& step) {
    for (; selection != nullptr; selection = selection->next) {
        for (hba_info* port : entries(p_hba_info_list)) {
            if (!has_serial_number(*port)) {
                print_skipped_port(*port);
                continue;
            }
            if (!fits_selection(*port, *selection)) {
                continue;
            }
            flags->MatchingCtrlModelInstalled = 1;
            if (const exit_status status = flash_fitting_rows(*port, *flags, step)) {
                return status;
            }
        }
    }
    return RET_OK;
}
