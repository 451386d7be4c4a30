#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "audit/survey.h"
#include "call/paths.h"
#include "flash/flash_engine.h"
#include "flash/flash_walk.h"
#include "flash/image_finder.h"
#include "inventory/management_tool.h"

namespace {

struct flash_state {
    bool ended = false;  // by a job that cannot be done; behind it nothing is sent
    /// Rows and directories whose images have been judged.
    std::set<std::pair<const fc_config_file_entry*, std::string>> judged;
};

struct named_image {
    const char* kind;
    const char* pattern;
};

void judge_image(const flash_job& job, const named_image& image, survey& result) {
    const std::vector<std::string> names = fitting_images(job.directory, image.pattern);
    if (names.empty()) {
        result.findings.push_back(
            found_at_row(finding_code::image_missing, job.row,
                         fill_in("no %s '%s' in %s: a flash ends with status 20 here.",
                                 {image.kind, image.pattern, job.directory})));
    } else if (names.size() > 1) {
        result.findings.push_back(found_at_row(
            finding_code::image_ambiguous, job.row,
            fill_in("%s '%s' fits %s names in %s, %s and %s among them: which one is taken depends "
                    "on the directory.",
                    {image.kind, image.pattern, std::to_string(names.size()), job.directory,
                     names[0], names[1]})));
    }
}

void judge_directory(const flash_job& job, survey& result) {
    const char* name = job.row.firmware_dir[0] != '\0' ? job.row.firmware_dir : job.port.Model;
    if (*name != '\0' && std::string_view(job.directory) == pHBAFirmwarePath) {
        result.findings.push_back(found_at_row(
            finding_code::directory_missing, job.row,
            fill_in("there is no directory '%s': the images are looked for beside the table.",
                    {name})));
    }
}

void judge_images(const flash_job& job, flash_state& state, survey& result) {
    if (!state.judged.emplace(&job.row, job.directory).second) {
        return;
    }
    judge_directory(job, result);
    judge_image(job, {"firmware image", job.row.firmware_file}, result);
    if (job.row.bios_file[0] != '\0') {
        judge_image(job, {"BIOS image", job.row.bios_file}, result);
    }
}

void note_refused(const hba_info& port, survey& result) {
    result.findings.push_back(found_at_port(
        finding_code::flash_refused, port,
        "a name in the command of its flash is not passed to the shell: a flash ends with status "
        "10 here."));
}

// What the flash engine does up to its first command, and the marks that it leaves.
void look_up_job(hba_info& port, const fc_config_file_entry& row, flash_state& state,
                 survey& result) {
    if (port.flash_port->flash_done) {
        port.flash_done = true;
        return;
    }
    ++result.places.at(port.flash_port).first->flashes;
    flash_job job{.port = port, .row = row};
    const exit_status status = settle_flash_job(job);
    if (status == RET_FLASH_ERROR || job.unsafe) {
        note_refused(port, result);
    } else {
        judge_images(job, state, result);
    }
    state.ended = state.ended || status != RET_OK || job.unsafe;
    for (const char* image : {job.firmware, job.bios}) {
        if (*image != '\0') {
            result.downloads.push_back({&port, &row, image, !state.ended});
        }
    }
    port.flash_done = true;  // Also where the flash ends: each job is looked at once.
}

}  // namespace

void survey_flash(const option_input* selection, survey& result) {
    flash_state state;
    global_ctrl_flags flags;
    OverallFlashBladeEngine(
        selection, &flags,
        [&](hba_info* port, fc_config_file_entry** row, global_ctrl_flags* /*flags*/) {
            look_up_job(*port, **row, state, result);
            return RET_OK;
        });
    for (const controller& each : result.controllers) {
        if (each.flashes > 1) {
            result.findings.push_back(found_at_controller(
                finding_code::many_flashes, *each.ports.front().port,
                fill_in(
                    "a flash reaches it %s times, as its flash port does not come first or fits no "
                    "row itself.",
                    {std::to_string(each.flashes)})));
        }
    }
}
