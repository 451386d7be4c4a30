#include "flash/flash_engine.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <string_view>

#include "base/output.h"
#include "base/text.h"
#include "call/options.h"
#include "call/paths.h"
#include "flash/image_finder.h"
#include "inventory/management_tool.h"

namespace {

/// One kind of image and the texts that go with it.
struct image_kind {
    char (fc_config_file_entry::*pattern)[80];
    char (flash_job::*image)[image_path_width];  ///< where the look-up puts what it found
    const char* search;                          ///< the pattern is looked for
    const char* found;                           ///< the image is about to be flashed
    const char* missing;                         ///< it is gone since it was looked up
    const char* start;                           ///< the command line follows
};

constexpr image_kind firmware{
    .pattern = &fc_config_file_entry::firmware_file,
    .image = &flash_job::firmware,
    .search = "\t\tLook for firmware file",
    .found = "\t\t\tFirmware file found",
    .missing = "\t\t\tFirmware file is not available",
    .start = "\tNow start flashing the firmware.\n",
};

constexpr image_kind bios{
    .pattern = &fc_config_file_entry::bios_file,
    .image = &flash_job::bios,
    .search = "\t\tLook for BIOS file",
    .found = "\t\t\tBIOS file found",
    .missing = "\t\t\tBIOS file is not available",
    .start = "\tNow start flashing the BIOS.\n",
};

bool exists(const char* path) {
    struct stat status {};
    return stat(path, &status) == 0;
}

void print_heading(const hba_info& port) {
    Print(1, "\tInstalled controller-device:\n");
    print_flash_port_line(port);
}

exit_status skip_port(hba_info& port) {
    Print(1, "\t%s\n", dash_ruler);
    print_heading(port);
    Print(1, "\t\tPort index: %d Firmware already flashed => SKIP.\n\n", port.port_index);
    port.flash_done = true;
    return RET_OK;
}

void print_missing_directory(const char* directory) {
    Print(1, "\t\tFirmware directory is not available: %s\n\n", directory);
}

bool is_base(const flash_job& job) { return std::string_view(job.directory) == pHBAFirmwarePath; }

std::string_view directory_name(const flash_job& job) {
    return job.row.firmware_dir[0] != '\0' ? job.row.firmware_dir : job.port.Model;
}

// The row's directory below the base, or the base itself where there is none of that name.
exit_status compose_directory(flash_job& job) {
    set_text(job.directory, pHBAFirmwarePath);
    if (!append_text(job.directory, directory_name(job))) {
        print_too_long(fill_in("%s%s", {pHBAFirmwarePath, directory_name(job)}).c_str());
        return RET_FLASH_ERROR;
    }
    if (!exists(job.directory)) {
        print_missing_directory(job.directory);
        set_text(job.directory, pHBAFirmwarePath);
    }
    return RET_OK;
}

// The base directory has its slash.
exit_status close_directory_with_slash(flash_job& job) {
    if (!is_base(job) && !append_text(job.directory, "/")) {
        print_too_long(job.directory);
        return RET_FLASH_ERROR;
    }
    return RET_OK;
}

tool_command compose_download(const flash_job& job, const char* image) {
    const char* address = job.port.flash_port->PermanentMAC;
    tool_command command =
        compose_command("\n\t\t%s %s %s %s >> %s/FWtrace.out\n",
                        {pHBAFlashCmdPath, "download", address, image, job.directory});
    // Behind a blank the address would name the image.
    if (std::string_view(address).find(' ') != std::string_view::npos) {
        mark_unsafe(command, address);
    }
    // The row's directory is the administrator's word, the model's name the device's.
    const bool named_by_model = job.row.firmware_dir[0] == '\0' && !is_base(job);
    if (named_by_model && leaves_directory(job.port.Model)) {
        mark_unsafe(command, job.port.Model);
    }
    return command;
}

// A command that would be refused is refused here: behind it nothing has been flashed yet.
exit_status look_up(flash_job& job, const image_kind& kind) {
    auto& image = job.*kind.image;
    const char* pattern = job.row.*kind.pattern;
    if (FindFlashImage(job.directory, image, pattern) == RET_OK) {
        Print(1, "\t\tFound BIOS- or firmware-image: %s '%s'\n", image, pattern);
        const tool_command command = compose_download(job, image);
        job.unsafe = job.unsafe || !command.unsafe_value.empty();
        return is_refused(command) ? RET_FLASH_ERROR : RET_OK;
    }
    if (!exists(job.directory)) {
        Print(1, "Error: Firmware directory is not available: %s\n\n", job.directory);
    } else {
        Print(1, "\tNo BIOS- or firmware-image was found in %s!\n", job.directory);
    }
    return RET_FW_NOT_AVAILABLE;
}

void print_search(const flash_job& job, const image_kind& kind) {
    Print(1, "%s: %s\n", kind.search, job.row.*kind.pattern);
}

bool has_bios(const flash_job& job) { return job.row.bios_file[0] != '\0'; }

// Nothing is run before all images of the row have been found.
exit_status look_up_images(flash_job& job) {
    Print(1, "\tFirmware path: %s\n", job.directory);
    print_search(job, firmware);
    exit_status status = close_directory_with_slash(job);
    if (status == RET_OK) {
        status = look_up(job, firmware);
    }
    if (status == RET_OK && has_bios(job)) {
        print_search(job, bios);
        status = look_up(job, bios);
    }
    return status;
}

bool is_gone(const char* path) {
    struct stat status {};
    return lstat(path, &status) != 0 && (errno == ENOENT || errno == ENOTDIR);
}

exit_status report_interruption() {
    Print(1, "Error: Interrupted, nothing more is flashed.\n");
    return RET_FLASH_ERROR;
}

// Looks for the image once more. Where the directory cannot be read now, what was looked up stands
// as long as it is there.
bool find_again(const flash_job& job, const image_kind& kind, char (&image)[image_path_width]) {
    if (FindFlashImage(job.directory, image, job.row.*kind.pattern) == RET_OK) {
        return true;
    }
    if (is_gone(job.*kind.image)) {
        return false;
    }
    set_text(image, job.*kind.image);
    return true;
}

exit_status flash_image(const flash_job& job, const image_kind& kind) {
    char image[image_path_width] = "";
    if (!find_again(job, kind, image)) {
        Print(1, "%s: %s\n\n", kind.missing, image);
        return RET_OK;
    }
    if (noted_signal() != 0) {
        return report_interruption();
    }
    if (active_option_simulate == 0 && !exists(pHBAFlashCmdPath)) {
        Print(1, "Error: Flash command %s is not available: %s\n\n", pHBAFlashCmdPath,
              std::strerror(errno));
        return RET_SCLI_NOT_INSTALLED;
    }
    const tool_command command = compose_download(job, image);
    Print(1, "%s: %s\n\n", kind.found, image);
    Print(1, "%s\t\tFlash command is: %s\n", kind.start, command.line.c_str());
    if (is_refused(command)) {
        return RET_FLASH_ERROR;
    }
    const int status = run_command(command, command_kind::download);
    Print(1, "\t\t%s, flash command returned code %d.\n\n", status == 0 ? "Success" : "Fail",
          status);
    return status == 0 ? RET_OK : RET_FLASH_ERROR;
}

}  // namespace

void print_flash_port_line(const hba_info& port) {
    Print(1,
          "\t\tVendor: %s, Model: %s SerialNumber: %s PortType: %s PortNumber: %s "
          "PortFunction: %s\n",
          port.Mfg, port.Model, port.SerialNo, port.PortType, port.PortNumber, port.PCIFunction);
}

exit_status settle_flash_job(flash_job& job) {
    const exit_status status = compose_directory(job);
    return status != RET_OK ? status : look_up_images(job);
}

exit_status FlashBladeEngine(hba_info* port, fc_config_file_entry** row, global_ctrl_flags* flags) {
    flags->MatchingCtrlModelInstalled = 1;
    if (port->flash_port->flash_done) {
        return skip_port(*port);
    }
    if (noted_signal() != 0) {
        return report_interruption();
    }
    print_heading(*port);
    Print(1, "\t\tPort index: %d.\n\n", port->port_index);
    if (!exists(pHBAFirmwarePath)) {
        print_missing_directory(pHBAFirmwarePath);
        return RET_FW_NOT_AVAILABLE;
    }
    flash_job job{.port = *port, .row = **row};
    exit_status status = settle_flash_job(job);
    if (status == RET_OK) {
        status = flash_image(job, firmware);
    }
    if (status == RET_OK && has_bios(job)) {
        status = flash_image(job, bios);
    }
    if (status == RET_OK) {
        port->flash_done = true;
        Print(1, "\n");
    }
    return status;
}
