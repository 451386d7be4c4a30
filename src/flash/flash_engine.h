#pragma once

#include "base/exit_status.h"
#include "call/paths.h"
#include "conditions/conditions_file.h"
#include "flash/image_finder.h"
#include "inventory/port_records.h"
#include "walk/run_flags.h"

/// A flash of the port's controller by a row: which images are sent, from where.
struct flash_job {
    const hba_info& port;
    const fc_config_file_entry& row;
    char directory[path_width] = "";  ///< of the images and the trace; ends in a slash
    char firmware[image_path_width] = "";
    char bios[image_path_width] = "";  ///< empty: the row names none
    bool unsafe = false;  ///< a name in its commands would make the shell do more than pass it on
};

/// Settles a job of which port, with its flash_port, and row are given: the row's directory, or
/// the base directory where there is none of that name, and its images. Runs nothing. Gives 0,
/// 10 when a command would be refused, 20 when an image is missing.
exit_status settle_flash_job(flash_job& job);

/// Prints at level 1 what port is meant, as all messages of a flash show it.
void print_flash_port_line(const hba_info& port);

/// Flashes the images of the row in this slot of fc_config_entry_list onto the controller of
/// the port, through its flash_port (which must not be null): the firmware, then the BIOS where
/// the row names one. Both are looked up before anything is flashed; a port whose flash port is
/// done is skipped, and only the port given here is marked as done. Gives 0, 10 when a command
/// failed or was refused or a signal keeps the rest from being sent, 20 when a directory or image
/// is missing, 21 when the management tool is gone.
exit_status FlashBladeEngine(hba_info* port, fc_config_file_entry** row, global_ctrl_flags* flags);
