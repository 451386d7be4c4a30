#include "check/controller_check.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "base/output.h"
#include "check/subsystem_validation.h"

namespace {

using std::string_view;

/// What one walk along a controller's chain has found so far.
struct controller_state {
    const hba_info* ctrl_reference = nullptr;  // the first port that this walk validated
    bool ctrl_consistent = true;
};

enum class walk { goes_on, stops };

void print_port(int level, const char* indent, const hba_info& port) {
    Print(level,
          "%sVendor: %s, Model: %s SerialNumber: %s PortType: %s PortNumber: %s PCI function: %s\n",
          indent, port.Mfg, port.Model, port.SerialNo, port.PortType, port.PortNumber,
          port.PCIFunction);
}

void print_header(int level, const hba_info& port) {
    Print(level, "\n\t\t%s\n", dash_ruler);
    Print(level, "\n\t\tPerform subsystem check for:\n");
    print_port(level, "\t\t", port);
}

void compare_within_controller(const hba_info& port, bool valid, controller_state& state,
                               global_ctrl_flags& flags) {
    if (state.ctrl_reference == nullptr) {
        state.ctrl_reference = &port;
        Print(2, "\t\tTake this sub-system as reference-sub-system for this controller-device.\n");
        print_port(2, "\t\t\t", port);
        return;
    }
    if (!valid) {
        return;
    }
    if (NewCompareWithReferenceSystem(state.ctrl_reference, &port)) {
        Print(2, "\t\tThis sub-system differs from controller specific reference-sub-system.\n");
        print_port(2, "\t\t\t", port);
        state.ctrl_consistent = false;
        flags.CtrlVendorSpecificSubsystemEquality = 0;
    } else {
        Print(2,
              "\t\tThis sub-system is consistent with controller specific reference-sub-system "
              "(only vendor-id was checked).\n");
        print_port(2, "\t\t\t", port);
    }
}

// The controller's reference is compared, not the port at hand. Once the flag is 0 every
// further port reports a difference.
void compare_with_run(const hba_info& ctrl_reference, global_ctrl_flags& flags) {
    if (flags.vendor_reference == nullptr) {
        flags.vendor_reference = &ctrl_reference;
        Print(2, "\t\tTake this sub-system as reference-sub-system for vendor %s.\n",
              ctrl_reference.Mfg);
        print_port(2, "\t\t\t", ctrl_reference);
        return;
    }
    const hba_info& reference = *flags.vendor_reference;
    if (flags.CtrlVendorSpecificSubsystemEquality != 0 &&
        !NewCompareWithReferenceSystem(&reference, &ctrl_reference)) {
        Print(2,
              "\t\tAll sub-systems are consistent with vendor specific reference-sub-system "
              "(only vendor-id was checked) %s.\n\n",
              reference.PortWWN);
        return;
    }
    Print(2, "vendor specific reference-sub-system %d >%s< >%s<.\n",
          flags.CtrlVendorSpecificSubsystemEquality, reference.target_mapping->VendorID,
          ctrl_reference.target_mapping->VendorID);
    Print(2,
          "\t\tAt least one sub-system differs from vendor specific reference-sub-system "
          "(different vendors).\n\n");
    flags.CtrlVendorSpecificSubsystemEquality = 0;
}

void tell(const check_observer& observer, const hba_info& port, const fc_config_file_entry& row,
          const fc_periphery_info* allowed_by) {
    if (observer.judges) {
        observer.judges(port, row, allowed_by);
    }
}

walk check_storage(hba_info& port, fc_config_file_entry** row, controller_state& state,
                   global_ctrl_flags& flags, const check_observer& observer) {
    const fc_periphery_info* allowed_by = nullptr;
    const bool valid = DoIndividualSubSystemCheck(&port, row, &flags, &allowed_by);
    tell(observer, port, **row, allowed_by);
    compare_within_controller(port, valid, state, flags);
    Print(1, "\n");
    port.check_done = true;
    if (!valid) {
        flags.CtrlSpecificSubsystemEquality = 0;
        flags.CtrlVendorSpecificSubsystemEquality = 0;
        return walk::stops;
    }
    compare_with_run(*state.ctrl_reference, flags);
    if (!state.ctrl_consistent) {
        flags.CtrlSpecificSubsystemEquality = 0;
    }
    return walk::goes_on;
}

walk check_member(hba_info& port, fc_config_file_entry** row, controller_state& state,
                  global_ctrl_flags& flags, const check_observer& observer) {
    if (!fits_names(port, **row)) {
        return walk::goes_on;
    }
    if (port.check_done) {
        print_header(4, port);
        Print(4, "\t\tSubsystem check already done => continue.\n");
        return walk::goes_on;
    }
    print_header(1, port);
    if (port.target_mapping == nullptr) {
        Print(1, "\n");
        port.check_done = true;
        tell(observer, port, **row, nullptr);
        return walk::goes_on;
    }
    return check_storage(port, row, state, flags, observer);
}

}  // namespace

bool fits_names(const hba_info& port, const fc_config_file_entry& row) {
    return string_view(port.Mfg).starts_with(row.vendor) &&
           string_view(port.Model).starts_with(row.model);
}

std::vector<hba_info*> chain_of(const hba_info& flash_port) {
    std::vector<hba_info*> members;
    for (hba_info* member = flash_port.next_ctrl_port;
         member != nullptr && std::find(members.begin(), members.end(), member) == members.end();
         member = member->next_ctrl_port) {
        members.push_back(member);
    }
    return members;
}

bool NewCompareWithReferenceSystem(const hba_info* reference, const hba_info* other) {
    return reference->target_mapping != nullptr && other->target_mapping != nullptr &&
           string_view(reference->target_mapping->VendorID) != other->target_mapping->VendorID;
}

void DoSubSystemCheck(const hba_info* port, fc_config_file_entry** row, global_ctrl_flags* flags,
                      const check_observer& observer) {
    controller_state state;
    for (hba_info* member : chain_of(*port->flash_port)) {
        if (check_member(*member, row, state, *flags, observer) == walk::stops) {
            break;
        }
    }
    Print(6, "%s\n", dash_ruler);
}
