#include <algorithm>

#include "audit/survey.h"
#include "base/text.h"
#include "call/paths.h"
#include "flash/flash_plan.h"
#include "flash/flash_walk.h"
#include "flash/image_finder.h"
#include "tool/tool_search.h"

namespace {

using enum finding_code;
using std::string_view;

struct flash_state {
    survey& result;
    bool ended = false;  // by a job that cannot be done: nothing is sent after it
    /// Rows, and the directory that the row or the port's model names. They decide on the images.
    std::set<std::pair<const fc_config_file_entry*, std::string>> judged;
    std::set<std::pair<std::string, std::string>> refused;  // controllers, and what was said
};

struct audited_kind {
    const image_kind& kind;
    const char* name;
    const char* word;
    port_texts (*versions_of)(const controller& each);
};

constexpr audited_kind kinds[] = {
    {firmware_image, "firmware image", "firmware", firmware_versions_of},
    {bios_image, "BIOS image", "bios", bios_versions_of},
};

void judge_image(const flash_job& job, const audited_kind& each, finding_list& findings) {
    const char* pattern = job.row.*each.kind.pattern;
    const std::vector<std::string> names = fitting_images(job.directory, pattern);
    if (names.empty()) {
        add_finding(findings, image_missing, at_row(job.row),
                    fill_in("no %s '%s' in %s: a flash ends with status 20 here.", each.name,
                            pattern, job.directory));
    } else if (names.size() > 1) {
        add_finding(findings, image_ambiguous, at_row(job.row),
                    fill_in("%s '%s' fits %s names in %s, %s and %s among them: which one is taken "
                            "depends on the directory.",
                            each.name, pattern, std::to_string(names.size()), job.directory,
                            names[0], names[1]));
    } else if (!can_be_sent(job.directory + names[0])) {
        add_finding(findings, image_missing, at_row(job.row),
                    fill_in("%s '%s' in %s is no file with contents that can be read.", each.name,
                            names[0], job.directory));
    }
}

void judge_images(const flash_job& job, finding_list& findings) {
    const char* name = directory_name(job.port, job.row);
    if (*name != '\0' && string_view(job.directory) == pHBAFirmwarePath) {
        add_finding(findings, directory_missing, at_row(job.row),
                    fill_in("no directory '%s': images are looked for beside the table.", name));
    }
    judge_image(job, kinds[0], findings);
    if (has_bios(job)) {
        judge_image(job, kinds[1], findings);
    }
}

// Notes each reason once for a controller.
void note_refused(const flash_job& job, flash_state& state, const std::string& what,
                  const char* advice) {
    if (state.refused.emplace(job.port.SerialNo, what).second) {
        add_finding(state.result.findings, flash_refused, at_port(job.port), what).advice = advice;
    }
}

const char* advice_on(string_view unsafe, const flash_job& job) {
    if (unsafe == job.port.flash_port->PermanentMAC) {
        return "See why the management tool lists this address; no flash is possible with it.";
    }
    return unsafe == job.port.Model
               ? "Name a directory in the row, so that it is not taken from the model."
               : "Rename the image or its directory: no blanks, no characters of the shell.";
}

// Whether the tool refuses a command of the job.
bool judge_commands(const flash_job& job, flash_state& state) {
    bool refused = false;
    for (const audited_kind& each : kinds) {
        char image[image_path_width] = "";
        FindFlashImage(job.directory, image, job.row.*each.kind.pattern);
        const tool_command command = compose_download(job, image);
        if (is_too_long(command)) {
            note_refused(job, state,
                         "the command of its flash is too long: it ends with status 10.",
                         "Shorten the names of the image and its directories.");
        } else if (*image != '\0' && !command.unsafe_value.empty()) {
            note_refused(job, state,
                         fill_in("'%s' is not passed to the shell: a flash ends with status 10.",
                                 command.unsafe_value),
                         advice_on(command.unsafe_value, job));
        }
        refused = refused || is_too_long(command) || !command.unsafe_value.empty();
    }
    return refused;
}

void note_downloads(const flash_job& job, flash_state& state) {
    const controller& target = *state.result.places.at(job.port.flash_port).first;
    for (const audited_kind& each : kinds) {
        const char* image = job.*each.kind.image;
        if (*image != '\0') {
            state.result.downloads.push_back(
                {&job.port, &job.row, each.word, image, each.versions_of(target), !state.ended});
        }
    }
}

// Judges the job as if nothing before it had ended the flash.
void judge_job(const hba_info& port, const fc_config_file_entry& row, flash_state& state) {
    flash_job job{.port = port, .row = row, .tool = longest_tool_place()};
    const exit_status status = plan_flash_job(job);
    const bool refused = judge_commands(job, state);
    if (state.judged.emplace(&row, directory_name(port, row)).second) {
        judge_images(job, state.result.findings);
    }
    if (port.flash_port->PermanentMAC[0] == '\0') {
        note_refused(job, state,
                     "its flash port has no MAC address: the command takes the image for it.",
                     "See why the management tool lists none; the driver may be missing.");
    }
    state.ended = state.ended || status != RET_OK || refused;
    note_downloads(job, state);
}

// What the flash engine does up to its first command, and the marks that it leaves.
void plan_flash(hba_info& port, const fc_config_file_entry& row, flash_state& state) {
    if (!port.flash_port->flash_done) {
        ++state.result.places.at(port.flash_port).first->flashes;
        state.result.places.at(&port).first->flashed_by.insert(&row);
        if (state.result.flash) {
            judge_job(port, row, state);
        }
    }
    port.flash_done = true;
}

void judge_times(const controller& each, finding_list& findings) {
    const hba_info& port = *each.ports.front().port;
    // If its serial number begins with another one, its flash port may be one of that controller.
    if (!each.flashed_by.empty() && string_view(port.SerialNo) != port.flash_port->SerialNo) {
        add_finding(findings, many_flashes, finding_place{.serial = port.SerialNo},
                    fill_in("its flash port is one of %s: that controller gets its images.",
                            port.flash_port->SerialNo));
    }
    if (each.flashes > 1) {
        add_finding(findings, many_flashes, finding_place{.serial = port.SerialNo},
                    fill_in("a flash reaches it %s times: its flash port is not first, or fits no "
                            "row itself.",
                            std::to_string(each.flashes)));
    }
}

}  // namespace

void survey_flash(const option_input* selection, survey& result) {
    flash_state state{.result = result, .judged = {}, .refused = {}};
    global_ctrl_flags flags;
    OverallFlashBladeEngine(
        selection, &flags,
        [&](hba_info* port, fc_config_file_entry** row, global_ctrl_flags* /*flags*/) {
            plan_flash(*port, **row, state);
            return RET_OK;
        });
    if (result.flash) {
        for (const controller& each : result.controllers) {
            judge_times(each, result.findings);
        }
    }
}
