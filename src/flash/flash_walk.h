#pragma once

#include "base/exit_status.h"
#include "call/selection.h"
#include "walk/run_flags.h"

/// Flashes each port that fits a selected controller and a row, once for each such row. Gives
/// 0, also when nothing fits, or the first failure of the flash engine (10, 20, 21), behind
/// which nothing more is flashed.
exit_status OverallFlashBladeEngine(const option_input* selection, global_ctrl_flags* flags);
