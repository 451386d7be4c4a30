#pragma once

#include "conditions/conditions_file.h"
#include "inventory/port_records.h"
#include "walk/run_findings.h"

/// The first entry of the row's list by which this storage is allowed; null when none allows it.
/// Says at level 1 what was tried.
const fc_periphery_info* find_allowing_triple(const target_mapping_entry& target,
                                              const fc_config_file_entry& row);

/// Whether the storage attached to the port, which must have a target_mapping, is allowed by
/// the row in this slot of fc_config_entry_list. If not,
/// InvalidCtrlSubsystemCombinationFound is set. `allowed_by`, where it is given, gets what
/// find_allowing_triple gives.
bool DoIndividualSubSystemCheck(const hba_info* port, fc_config_file_entry** row,
                                global_ctrl_flags* flags,
                                const fc_periphery_info** allowed_by = nullptr);

/// Whether at least one of the comma-joined `references` is a member of the comma list `group`.
bool CheckModelGroupConsistency(const char* group, const char* references);
