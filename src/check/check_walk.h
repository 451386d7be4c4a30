#pragma once

#include "call/selection.h"
#include "check/controller_check.h"
#include "conditions/conditions_file.h"
#include "inventory/port_records.h"
#include "walk/run_findings.h"

/// Matches the selected controllers with ports and rows and checks the storage behind each that
/// fits; the findings go to `flags`. Gives whether the check passed, by the first check option
/// in force: valid storage, identity on each controller, identity across all controllers.
bool OverallSubSystemCheck(const option_input* selection, global_ctrl_flags* flags,
                           const check_observer& observer = {});
