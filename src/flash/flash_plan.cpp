#include "flash/flash_plan.h"

#include <sys/stat.h>

#include <string_view>

#include "base/output.h"
#include "base/text.h"
#include "tool/output_files.h"

namespace {

bool is_base(const flash_job& job) { return std::string_view(job.directory) == pHBAFirmwarePath; }

// The row's directory below the base, or the base itself where there is none of that name.
exit_status compose_directory(flash_job& job) {
    set_text(job.directory, pHBAFirmwarePath);
    if (!append_text(job.directory, directory_name(job.port, job.row))) {
        print_too_long(
            fill_in("%s%s", pHBAFirmwarePath, directory_name(job.port, job.row)).c_str());
        set_text(job.directory, "");
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

// A command that would be refused is refused here, before anything is flashed.
exit_status look_up(flash_job& job, const image_kind& kind) {
    auto& image = job.*kind.image;
    const char* pattern = job.row.*kind.pattern;
    if (FindFlashImage(job.directory, image, pattern) == RET_OK) {
        Print(1, "\t\tFound BIOS- or firmware-image: %s '%s'\n", image, pattern);
        return is_refused(compose_download(job, image)) ? RET_FLASH_ERROR : RET_OK;
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

// Nothing is run before all images of the row have been found.
exit_status look_up_images(flash_job& job) {
    Print(1, "\tFirmware path: %s\n", job.directory);
    print_search(job, firmware_image);
    exit_status status = close_directory_with_slash(job);
    if (status == RET_OK) {
        status = look_up(job, firmware_image);
    }
    if (status == RET_OK && has_bios(job)) {
        print_search(job, bios_image);
        status = look_up(job, bios_image);
    }
    return status;
}

}  // namespace

bool exists(const char* path) {
    struct stat status {};
    return stat(path, &status) == 0;
}

void print_missing_directory(const char* directory) {
    Print(1, "\t\tFirmware directory is not available: %s\n\n", directory);
}

const char* directory_name(const hba_info& port, const fc_config_file_entry& row) {
    return row.firmware_dir[0] != '\0' ? row.firmware_dir : port.Model;
}

bool has_bios(const flash_job& job) { return job.row.bios_file[0] != '\0'; }

tool_command compose_download(const flash_job& job, const char* image) {
    const char* address = job.port.flash_port->PermanentMAC;
    tool_command command = compose_command("\n\t\t%s %s %s %s >> %s/%s\n", job.tool, "download",
                                           address, image, job.directory, trace_file_name);
    // Another file would be sent: the end of the address behind its blank, or the beginning of the
    // image's path before it.
    for (const char* value : {address, image}) {
        if (holds_blank(value)) {
            mark_unsafe(command, value);
        }
    }
    // The administrator has chosen the directory of a row. The model comes from the device.
    const bool named_by_model = job.row.firmware_dir[0] == '\0' && !is_base(job);
    if (named_by_model && leaves_directory(job.port.Model)) {
        mark_unsafe(command, job.port.Model);
    }
    return command;
}

exit_status plan_flash_job(flash_job& job) {
    const exit_status status = compose_directory(job);
    return status != RET_OK ? status : look_up_images(job);
}
