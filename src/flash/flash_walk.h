#pragma once

#include <functional>

#include "base/exit_status.h"
#include "call/selection.h"
#include "conditions/conditions_file.h"
#include "flash/flash_engine.h"
#include "inventory/port_records.h"
#include "walk/run_flags.h"

/// What is done with a port and a row that fit each other; a status ends the walk.
using flash_step =
    std::function<exit_status(hba_info*, fc_config_file_entry**, global_ctrl_flags*)>;

/// Flashes each port that fits a selected controller and a row, once for each such row. Gives
/// 0, also when nothing fits, or the first failure of the flash engine (10, 20, 21), behind
/// which nothing more is flashed. With another `step` it only leads to the same ports and rows.
exit_status OverallFlashBladeEngine(const option_input* selection, global_ctrl_flags* flags,
                                    const flash_step& step = FlashBladeEngine);
