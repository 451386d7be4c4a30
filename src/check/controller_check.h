#pragma once

#include "conditions/conditions_file.h"
#include "inventory/port_records.h"
#include "walk/run_flags.h"

/// Validates, once per run, the storage of each port on the chain of the port's flash_port
/// (which must not be null) against the row in this slot of fc_config_entry_list, and compares
/// it with the controller's and the run's reference. All findings go to `flags`.
void DoSubSystemCheck(const hba_info* port, fc_config_file_entry** row, global_ctrl_flags* flags);

/// Whether both ports have storage attached and its vendors differ.
bool NewCompareWithReferenceSystem(const hba_info* reference, const hba_info* other);
