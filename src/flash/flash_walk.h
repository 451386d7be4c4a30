#pragma once

#include <functional>

#include "base/exit_status.h"
#include "call/selection.h"
#include "conditions/conditions_file.h"
#include "inventory/port_records.h"
#include "walk/run_findings.h"

/// Prints at level 1 what port is meant, as all messages of a flash show it.
void print_flash_port_line(const hba_info& port);

/// What is done with a port and a row that fit each other; a status ends the walk.
using flash_step =
    std::function<exit_status(hba_info*, fc_config_file_entry**, global_ctrl_flags*)>;

/// Takes the step, FlashBladeEngine for a flash, for each port that fits a selected controller and
/// a row, once for each such row. Gives 0, also when nothing fits, or the first status of a step
/// that is not 0 (10, 20, 21 of a flash), behind which no step is taken.
exit_status OverallFlashBladeEngine(const option_input* selection, global_ctrl_flags* flags,
                                    const flash_step& step);
