#include "flash/flash_engine.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <optional>

#include "base/interruption.h"
#include "base/output.h"
#include "base/text.h"
#include "call/options.h"
#include "call/paths.h"
#include "flash/flash_plan.h"
#include "flash/flash_walk.h"
#include "tool/tool_command.h"

namespace {

/// An image that is sent, and the texts that go with it.
struct image_sending {
    const image_kind& kind;
    const char* found;    ///< the image is about to be flashed
    const char* missing;  ///< it went away after it was found
    const char* start;    ///< the command line follows
};

constexpr image_sending firmware{
    .kind = firmware_image,
    .found = "\t\t\tFirmware file found",
    .missing = "\t\t\tFirmware file is not available",
    .start = "\tNow start flashing the firmware.\n",
};

constexpr image_sending bios{
    .kind = bios_image,
    .found = "\t\t\tBIOS file found",
    .missing = "\t\t\tBIOS file is not available",
    .start = "\tNow start flashing the BIOS.\n",
};

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

bool is_gone(const char* path) {
    struct stat status {};
    return lstat(path, &status) != 0 && (errno == ENOENT || errno == ENOTDIR);
}

exit_status report_interruption() {
    Print(1, "Error: Interrupted, nothing more is flashed.\n");
    return RET_FLASH_ERROR;
}

exit_status report_download(int status) {
    Print(1, "\t\t%s, flash command returned code %d.\n\n", status == 0 ? "Success" : "Fail",
          status);
    if (status == 0) {
        return RET_OK;
    }
    // It says more than a signal that also came.
    keep_status();
    return RET_FLASH_ERROR;
}

// Looks for the image once more. If the directory cannot be read now, the image that was found is
// used as long as it is there.
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

exit_status flash_image(const flash_job& job, const image_sending& sending) {
    char image[image_path_width] = "";
    if (!find_again(job, sending.kind, image)) {
        Print(1, "%s: %s\n\n", sending.missing, image);
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
    Print(1, "%s: %s\n\n", sending.found, image);
    Print(1, "%s\t\tFlash command is: %s\n", sending.start, command.line.c_str());
    if (is_refused(command)) {
        return RET_FLASH_ERROR;
    }
    const std::optional<int> status = run_download(command);
    return status.has_value() ? report_download(*status) : report_interruption();
}

}  // namespace

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
    exit_status status = plan_flash_job(job);
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
