#pragma once

#include <functional>

#include "call/selection.h"
#include "check/controller_check.h"
#include "conditions/conditions_file.h"
#include "inventory/port_records.h"
#include "walk/run_flags.h"

/// What is done with a port and a row that fit each other.
using check_step = std::function<void(const hba_info*, fc_config_file_entry**, global_ctrl_flags*)>;

/// Matches the selected controllers with ports and rows and checks the storage behind each that
/// fits; the findings go to `flags`. Gives whether the check passed, by the first check option
/// in force: valid storage, identity on each controller, identity across all controllers.
/// `step` can look on at what is checked.
bool OverallSubSystemCheck(const option_input* selection, global_ctrl_flags* flags,
                           const check_step& step = DoSubSystemCheck);
