#include "run/program_run.h"

#include <new>
#include <optional>

#include "base/list.h"
#include "base/output.h"
#include "base/process_setup.h"
#include "base/run_lock.h"
#include "base/text.h"
#include "call/command_line.h"
#include "call/options.h"
#include "call/paths.h"
#include "call/selection.h"
#include "check/check_walk.h"
#include "conditions/conditions_file.h"
#include "flash/flash_engine.h"
#include "flash/flash_walk.h"
#include "inventory/flash_ports.h"
#include "inventory/inventory.h"
#include "inventory/port_ordering.h"
#include "inventory/port_records.h"
#include "tool/output_files.h"
#include "tool/tool_search.h"
#include "walk/run_findings.h"

namespace {

void apply_default_check() {
    if (active_option_ctrl_vendor_wide_identical == 0 && active_option_ctrl_wide_identical == 0 &&
        active_option_flash == 0) {
        active_option_valid_subsystem = 1;
    }
}

exit_status read_table() {
    Print(3, "HBA conditions file: %s\n", pHBAConditionsPath);
    const exit_status status = Read_FC_Config_File(pHBAConditionsPath);
    switch (status) {
        case RET_OK:
            return RET_OK;
        case RET_FC_HBA_CONDITIONS_MISSING:
            Print(1, "\nCann't access file %s.\n\n", pHBAConditionsPath);
            return status;
        case RET_MEMALLOC_FAIL:
            print_out_of_memory();
            return status;
        default:
            Print(1, "Error: Fatal error!\n");
            return RET_FATAL_ERROR;
    }
}

void echo_row(const fc_config_file_entry& row) {
    Print(4, "%-10s %-16s\n", row.vendor, row.model);
    int number = 0;
    for (const fc_periphery_info* storage = row.periphery_list; storage != nullptr;
         storage = storage->next) {
        if (!is_blank(storage->vendor)) {
            ++number;
            Print(4, "\t\t%d) %-10s %-16s\n", number, storage->vendor, storage->product_list);
        }
    }
    Print(4, "\n");
}

// The debug level does not matter for this echo.
void echo_conditions() {
    if (VerboseLevel <= 3) {
        return;
    }
    constexpr char bar[] =
        "\n*********+*********+*********+*********+*********+*********+*********+*********+\n";
    Print(4, "%s", bar);
    Print(4,
          "\nList of allowed Fibre-Channel-Controller and Online-Storage-System "
          "combinations:\n\n");
    for (const fc_config_file_entry* row : entries(fc_config_entry_list)) {
        echo_row(*row);
    }
    Print(4, "%s", bar);
}

exit_status collect_inventory() {
    if (const exit_status status = Get_HbaCmd_Path()) {
        return status;
    }
    if (active_option_simulate == 0) {
        // Runs in other directories may work on the same controllers.
        lock_file_for_run(pHBAFlashCmdPath);
    }
    return Get_All_Hba_Info();
}

void list_port(const hba_info& port) {
    Print(4, "  %s\t%s\t%s\t%s  port %d  function %s\n", port.Mfg, port.Model, port.PortType,
          port.SerialNo, port.port_index, port.PCIFunction);
    const target_mapping_entry* target = port.target_mapping;
    if (target != nullptr && *target->VendorID != '\0') {
        Print(4, "\n\t%s\n\t%s\n\t%s\n", target->VendorID, target->ProductID,
              target->ProductVersion);
    }
    Print(4, "\n");
}

void list_inventory() {
    constexpr char stars[] =
        "********************************************************************************";
    Print(4, "\n%s \n", stars);
    Print(4, "\nList of Fibre-Channel-Controller and attached Online-Storage-Systems:\n\n");
    for (const hba_info* port : entries(p_hba_info_list)) {
        if (is_of_type(*port, "FCoE")) {
            list_port(*port);
        }
    }
    Print(4, "\n%s\n", stars);
}

// `lead` tells the two prints of a run apart.
void print_flags(const char* lead, const global_ctrl_flags& flags) {
    Print(6, "%sInvalidCtrlSubsystemCombinationFound: %d \n", lead,
          flags.InvalidCtrlSubsystemCombinationFound);
    Print(6, "MatchingCtrlModelInstalled: %d \n", flags.MatchingCtrlModelInstalled);
    Print(6, "CtrlVendorSpecificSubsystemEquality: %d \n",
          flags.CtrlVendorSpecificSubsystemEquality);
    Print(6, "CtrlSpecificSubsystemEquality: %d \n", flags.CtrlSpecificSubsystemEquality);
}

exit_status status_of_storage(const global_ctrl_flags& flags) {
    if (flags.InvalidCtrlSubsystemCombinationFound != 0) {
        return RET_INVALID_CTRL_SUBSYSTEM_COMBINATION;
    }
    if (active_option_ctrl_vendor_wide_identical != 0 &&
        flags.CtrlVendorSpecificSubsystemEquality == 0) {
        return RET_NOT_CTRL_VENDOR_WIDE_IDENTICAL;
    }
    if (active_option_ctrl_wide_identical != 0 && flags.CtrlSpecificSubsystemEquality == 0) {
        return RET_NOT_CTRL_WIDE_IDENTICAL;
    }
    return RET_OK;
}

exit_status unless_vox_mode(exit_status status) {
    return active_option_vox_mode != 0 ? RET_OK : status;
}

exit_status run_flash(global_ctrl_flags& flags) {
    const exit_status status = OverallFlashBladeEngine(p_option_input, &flags, FlashBladeEngine);
    Print(3, "\t\tOverallFlashBladeEngine returned: %d \n\n", static_cast<int>(status));
    return status;
}

// Runs the check, the flash or both. Gives a status if the run ends here, or nothing to go on.
// After a failed check there is no flash.
std::optional<exit_status> run_jobs(global_ctrl_flags& flags) {
    const bool check_requested = active_option_valid_subsystem != 0 ||
                                 active_option_ctrl_wide_identical != 0 ||
                                 active_option_ctrl_vendor_wide_identical != 0;
    if (check_requested) {
        const bool passed = OverallSubSystemCheck(p_option_input, &flags);
        if (active_option_flash == 0 || !passed) {
            Print(3, "OverallSubSystemCheck returned: %d \n", passed ? 1 : 0);
        }
        if (active_option_flash == 0) {
            return std::nullopt;
        }
        if (!passed) {
            return status_of_storage(flags);
        }
    }
    if (const exit_status status = run_flash(flags)) {
        return status;
    }
    return std::nullopt;
}

exit_status final_status(const global_ctrl_flags& flags) {
    if (flags.MatchingCtrlModelInstalled == 0) {
        return unless_vox_mode(RET_NO_MATCHING_CTRL_FOUND);
    }
    return status_of_storage(flags);
}

exit_status check_and_flash(global_ctrl_flags& flags) {
    print_flags("\n", flags);
    if (const auto ended = run_jobs(flags)) {
        return *ended;
    }
    print_flags("", flags);
    return final_status(flags);
}

exit_status main_sequence(const char* called_as, global_ctrl_flags& flags) {
    apply_default_check();
    read_temporary_directory();
    if (!resolve_paths(called_as)) {
        Print(1, "Error: Fatal error!\n");
        return RET_FATAL_ERROR;
    }
    lock_directory_for_run(pHBAWorkingPath,
                           active_option_simulate != 0 ? lock_kind::shared : lock_kind::exclusive);
    open_debug_log(fill_in("%s%s", pHBAWorkingPath, log_file_name).c_str());
    if (const exit_status status = read_table()) {
        return status;
    }
    echo_conditions();

    if (const exit_status status = collect_inventory()) {
        return status;
    }
    if (p_hba_info_list == nullptr) {
        Print(1, "\nNo Blade Engine was found in this system.\n\n");
        flags.NoCtrlInstalled = 1;
        return unless_vox_mode(RET_NO_FC_CTRL_INSTALLED);
    }
    Classify_Ctrl_List();
    Determine_Flash_Ports();
    if (port_without_flash_port() != nullptr) {
        return RET_KERNEL_MODULE_MISSING;
    }
    list_inventory();
    return check_and_flash(flags);
}

}  // namespace

exit_status program_run(int argc, char** argv) {
    if (!hold_memory_back()) {
        set_program_name(argc > 0 ? argv[0] : "");
        print_out_of_memory();
        return RET_MEMALLOC_FAIL;
    }
    try {
        if (const auto ended = read_command_line(argc, argv)) {
            return *ended;
        }
        global_ctrl_flags flags;
        return main_sequence(argc > 0 ? argv[0] : "", flags);
    } catch (const std::bad_alloc&) {
        print_out_of_memory();
        return RET_MEMALLOC_FAIL;
    }
}
