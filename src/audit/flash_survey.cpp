#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
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

/// A row and the directory that it or the port's model names: what decides on the images.
using image_source = std::pair<const fc_config_file_entry*, std::string>;

struct flash_state {
    bool ended = false;  // by a job that cannot be done; behind it nothing is sent
    std::set<image_source> judged;
    std::set<image_source> failed;  // no need to search their directories again
};

struct named_image {
    const char* kind;
    const char* pattern;
};

constexpr char trace_file_name[] = "FWtrace.out";

bool can_be_sent(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) && status.st_size > 0 &&
           access(path.c_str(), R_OK) == 0;
}

void judge_only_image(const flash_job& job, const named_image& image, const std::string& name,
                      survey& result) {
    if (!can_be_sent(job.directory + name)) {
        result.findings.push_back(found_at_row(
            finding_code::image_missing, job.row,
            fill_in("%s '%s' in %s is no file with contents that can be read: nothing can be sent.",
                    {image.kind, name, job.directory})));
    }
}

void judge_image(const flash_job& job, const named_image& image, survey& result) {
    std::vector<std::string> names = fitting_images(job.directory, image.pattern);
    std::erase(names, trace_file_name);
    if (*image.pattern != '\0' && fits_pattern(trace_file_name, image.pattern)) {
        result.findings.push_back(found_at_row(
            finding_code::image_ambiguous, job.row,
            fill_in("%s '%s' also fits %s, the trace that the first download leaves in %s.",
                    {image.kind, image.pattern, trace_file_name, job.directory})));
    } else if (names.empty()) {
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
    } else {
        judge_only_image(job, image, names[0], result);
    }
}

const char* directory_name(const hba_info& port, const fc_config_file_entry& row) {
    return row.firmware_dir[0] != '\0' ? row.firmware_dir : port.Model;
}

void judge_directory(const flash_job& job, survey& result) {
    const char* name = directory_name(job.port, job.row);
    if (*name != '\0' && std::string_view(job.directory) == pHBAFirmwarePath) {
        result.findings.push_back(found_at_row(
            finding_code::directory_missing, job.row,
            fill_in("there is no directory '%s': the images are looked for beside the table.",
                    {name})));
    }
}

void judge_images(const flash_job& job, survey& result) {
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

bool holds_blank(const flash_job& job) {
    const std::array texts{job.directory, job.firmware, job.bios};
    return std::any_of(texts.begin(), texts.end(), [](std::string_view text) {
        return text.find_first_of(" \t") != std::string_view::npos;
    });
}

// Words that a run passes on as they stand, and that do not mean what they are to mean.
void judge_words(const flash_job& job, survey& result) {
    if (holds_blank(job)) {
        result.findings.push_back(found_at_port(
            finding_code::flash_refused, job.port,
            "a blank in the name of its directory or image parts the command into other words."));
    }
    if (job.port.flash_port->PermanentMAC[0] == '\0') {
        result.findings.push_back(
            found_at_port(finding_code::flash_refused, job.port,
                          "its flash port has no MAC address, and the image stands in its place."));
    }
}

void note_job(const flash_job& job, exit_status status, flash_state& state, survey& result) {
    const image_source source{&job.row, directory_name(job.port, job.row)};
    if (status == RET_FLASH_ERROR || job.unsafe) {
        note_refused(job.port, result);
    } else if (state.judged.insert(source).second) {
        judge_images(job, result);
        judge_words(job, result);
    }
    if (status != RET_OK) {
        state.failed.insert(source);
    }
    state.ended = state.ended || status != RET_OK || job.unsafe;
    for (const char* image : {job.firmware, job.bios}) {
        if (*image != '\0') {
            result.downloads.push_back({&job.port, &job.row, image, !state.ended});
        }
    }
}

// What the flash engine does up to its first command, and the marks that it leaves. Behind a
// failure too: each job is looked at, once.
void plan_flash(hba_info& port, const fc_config_file_entry& row, flash_state& state,
                survey& result) {
    if (!port.flash_port->flash_done) {
        ++result.places.at(port.flash_port).first->flashes;
        flash_job job{.port = port, .row = row};
        if (!state.failed.contains({&row, directory_name(port, row)})) {
            const exit_status status = settle_flash_job(job);
            note_job(job, status, state, result);
        }
    }
    port.flash_done = true;
}

// A serial number that begins with another one finds its flash port there.
void judge_flash_port(const controller& each, survey& result) {
    const hba_info& port = *each.ports.front().port;
    if (each.selected && std::string_view(port.SerialNo) != port.flash_port->SerialNo) {
        result.findings.push_back(found_at_controller(
            finding_code::many_flashes, port,
            fill_in("its flash port is one of %s: that controller gets its images.",
                    {port.flash_port->SerialNo})));
    }
}

}  // namespace

void survey_flash(const option_input* selection, survey& result) {
    flash_state state;
    global_ctrl_flags flags;
    OverallFlashBladeEngine(
        selection, &flags,
        [&](hba_info* port, fc_config_file_entry** row, global_ctrl_flags* /*flags*/) {
            plan_flash(*port, **row, state, result);
            return RET_OK;
        });
    for (const controller& each : result.controllers) {
        judge_flash_port(each, result);
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
