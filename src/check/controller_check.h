#pragma once

#include <functional>
#include <vector>

#include "conditions/conditions_file.h"
#include "inventory/port_records.h"
#include "walk/run_findings.h"

/// Whether the row's vendor and model are beginnings of the port's; else it checks nothing there.
bool fits_names(const hba_info& port, const fc_config_file_entry& row);

/// The chain that hangs on a flash port, from its head to its end; one that leads back to a
/// member ends there.
std::vector<hba_info*> chain_of(const hba_info& flash_port);

/// Is told what a check does; each function may be missing.
struct check_observer {
    /// A check comes from this port to this row, which fits it.
    std::function<void(const hba_info& port, const fc_config_file_entry& row)> comes_to;
    /// The port has been judged by the row, which allows its storage by this entry of its list;
    /// null: it does not, or no storage was seen.
    std::function<void(const hba_info& port, const fc_config_file_entry& row,
                       const fc_periphery_info* allowed_by)>
        judges;
};

/// Validates, once per run, the storage of each port on the chain of the port's flash_port
/// (which must not be null) against the row in this slot of fc_config_entry_list, and compares
/// it with the controller's and the run's reference. All findings go to `flags`.
void DoSubSystemCheck(const hba_info* port, fc_config_file_entry** row, global_ctrl_flags* flags,
                      const check_observer& observer = {});

/// Whether both ports have storage attached and its vendors differ.
bool NewCompareWithReferenceSystem(const hba_info* reference, const hba_info* other);
