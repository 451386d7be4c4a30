#pragma once

#include "base/exit_status.h"
#include "call/paths.h"
#include "conditions/conditions_file.h"
#include "flash/image_finder.h"
#include "inventory/port_records.h"
#include "tool/tool_command.h"

/// A flash of the port's controller by a row: which images are sent, from where.
struct flash_job {
    const hba_info& port;
    const fc_config_file_entry& row;
    const char* tool = pHBAFlashCmdPath;  ///< the management tool, first word of the commands
    /// Of the images and the trace; does not end in a slash where its path is too long.
    char directory[path_width] = "";
    char firmware[image_path_width] = "";
    char bios[image_path_width] = "";  ///< empty: the row names none
};

/// One kind of image, as a row names it.
struct image_kind {
    char (fc_config_file_entry::*pattern)[80];
    char (flash_job::*image)[image_path_width];  ///< where the look-up puts what it found
    const char* search;                          ///< begins the message on the look-up
};

inline constexpr image_kind firmware_image{
    .pattern = &fc_config_file_entry::firmware_file,
    .image = &flash_job::firmware,
    .search = "\t\tLook for firmware file",
};

inline constexpr image_kind bios_image{
    .pattern = &fc_config_file_entry::bios_file,
    .image = &flash_job::bios,
    .search = "\t\tLook for BIOS file",
};

/// Completes a job of which port, with its flash_port, and row are given: the row's directory, or
/// the base directory where there is none of that name, and its images. Runs nothing. Gives 0,
/// 10 when a command would be refused, 20 when an image is missing.
exit_status plan_flash_job(flash_job& job);

/// The name of the directory, below the base, in which a row looks for its images: the row's
/// own, or the model of the port.
const char* directory_name(const hba_info& port, const fc_config_file_entry& row);

/// Whether the row of the job names a BIOS image.
bool has_bios(const flash_job& job);

/// The command that sends `image` to the flash port of the job.
tool_command compose_download(const flash_job& job, const char* image);

/// Whether something is at this path; else errno says why not.
bool exists(const char* path);

/// Says at level 1 that a directory of images is not there.
void print_missing_directory(const char* directory);
