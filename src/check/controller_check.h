#pragma once

#include <vector>

#include "conditions/conditions_file.h"
#include "inventory/port_records.h"
#include "walk/run_flags.h"

/// Whether the row's vendor and model are beginnings of the port's; else it checks nothing there.
bool fits_names(const hba_info& port, const fc_config_file_entry& row);

/// The chain that hangs on a flash port, from its head to its end; one that leads back to a
/// member ends there.
std::vector<hba_info*> chain_of(const hba_info& flash_port);

/// Validates, once per run, the storage of each port on the chain of the port's flash_port
/// (which must not be null) against the row in this slot of fc_config_entry_list, and compares
/// it with the controller's and the run's reference. All findings go to `flags`.
void DoSubSystemCheck(const hba_info* port, fc_config_file_entry** row, global_ctrl_flags* flags);

/// Whether both ports have storage attached and its vendors differ.
bool NewCompareWithReferenceSystem(const hba_info* reference, const hba_info* other);
