#pragma once

#include "base/exit_status.h"
#include "conditions/conditions_file.h"
#include "inventory/port_records.h"
#include "walk/run_findings.h"

/// Flashes the images of the row in this slot of fc_config_entry_list onto the controller of
/// the port, through its flash_port (which must not be null): the firmware, then the BIOS where
/// the row names one. Both are looked up before anything is flashed; a port whose flash port is
/// done is skipped, and only the port given here is marked as done. Gives 0, 10 when a command
/// failed or was refused or a signal keeps the rest from being sent, 20 when a directory or image
/// is missing, 21 when the management tool is gone.
exit_status FlashBladeEngine(hba_info* port, fc_config_file_entry** row, global_ctrl_flags* flags);
