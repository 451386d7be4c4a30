#include <algorithm>

#include "audit/survey.h"
#include "base/text.h"
#include "check/check_walk.h"
#include "check/controller_check.h"
#include "check/subsystem_validation.h"

namespace {

using enum finding_code;

struct check_state {
    survey& result;
    /// The rows that the walk holds against the chain of a flash port, in the table's order.
    std::unordered_map<const hba_info*, row_list> rows;
    /// Controllers and rows of which a finding says that their names differ.
    std::set<std::pair<const controller*, const fc_config_file_entry*>> named;
};

void note_step(const hba_info& port, const fc_config_file_entry& row, check_state& state) {
    state.result.places.at(&port).first->has_step = true;
    row_list& rows = state.rows[port.flash_port];
    const auto place = std::ranges::lower_bound(rows, row.piece, {}, &fc_config_file_entry::piece);
    if (place == rows.end() || *place != &row) {
        rows.insert(place, &row);
    }
}

void judge_luns(const hba_info& port, const fc_config_file_entry& row, survey& result) {
    for (const target_mapping_entry& lun : result.outputs.other_luns[&port]) {
        if (find_allowing_triple(lun, row) == nullptr) {
            add_finding(result.findings, lun_unjudged, at_port(port),
                        fill_in("LUN %s is of %s %s, which line %s does not allow; a check judges "
                                "the last LUN alone.",
                                lun.FCPLun, lun.VendorID, lun.ProductID, std::to_string(row.line)));
            return;
        }
    }
}

void note_judged(const hba_info& port, const fc_config_file_entry& row,
                 const fc_periphery_info* allowed_by, survey& result) {
    surveyed_port& judged = *result.places.at(&port).second;
    judged.checked_by = &row;
    judged.allowed_by = allowed_by;
    if (port.target_mapping == nullptr) {
        add_finding(result.findings, no_storage, at_port(port),
                    "no storage was seen behind it, and it passes.");
    } else if (allowed_by != nullptr) {
        judge_luns(port, row, result);
    }
}

void note_no_row(const controller& selected, survey& result) {
    const auto member = std::ranges::find_if(selected.ports, &surveyed_port::selected);
    const hba_attributes_entry& ids = *member->port->attributes;
    add_finding(result.findings, no_row, finding_place{.serial = member->port->SerialNo},
                fill_in("no row has the identifiers %s:%s:%s:%s by which it is selected: it is "
                        "neither checked nor flashed.",
                        ids.VendorSpecID, ids.DeviceID, ids.SubVendorID, ids.SubDeviceID));
}

void judge_identifiers(const controller& selected, survey& result) {
    const fc_config_file_entry* by_two = nullptr;
    for (const surveyed_port& member : selected.ports) {
        if (member.selected && !member.rows->by_four.empty()) {
            return;
        }
        if (member.selected && by_two == nullptr && !member.rows->by_two.empty()) {
            by_two = member.rows->by_two.front();
        }
    }
    if (by_two != nullptr) {
        finding& found = add_finding(
            result.findings, ids_differ, at_row(*by_two),
            "fits by vendor and device alone: a selection by these two is checked by it, and "
            "nothing is flashed.");
        found.place.serial = selected.ports.front().port->SerialNo;
        found.weight = result.flash ? severity::warning : severity::note;
    }
}

// Notes the rows whose names do not fit the port, each once for a controller.
void note_names(const controller& selected, const hba_info& port, const row_list& rows,
                check_state& state) {
    for (const fc_config_file_entry* row : rows) {
        if (fits_names(port, *row) || !state.named.emplace(&selected, row).second) {
            continue;
        }
        const bool is_vendor = !std::string_view(port.Mfg).starts_with(row->vendor);
        add_finding(state.result.findings, names_differ, at_row(*row),
                    fill_in("%s '%s' is not a prefix of '%s': it checks nothing there%s.",
                            is_vendor ? "vendor" : "model", is_vendor ? row->vendor : row->model,
                            is_vendor ? port.Mfg : port.Model,
                            selected.flashed_by.contains(row) ? ", and still flashes" : ""))
            .place.serial = port.SerialNo;
    }
}

// Why the check has not come to this port, though it came to the controller.
void judge_left_out(const controller& selected, const surveyed_port& left_out, check_state& state) {
    const hba_info& port = *left_out.port;
    const auto note = [&](const char* what) {
        add_finding(state.result.findings, not_on_chain, at_port(port), what);
    };
    const row_list& rows = state.rows[port.flash_port];
    if (!left_out.on_chain) {
        note(port.flash_port == &port
                 ? "no check visits it: the flash port is not on the chain that hangs on it."
                 : "no check visits it: it is not on the chain that hangs on its flash port.");
    } else if (std::ranges::any_of(rows, [&](auto* row) { return fits_names(port, *row); })) {
        note("no check visits it: the storage behind a port before it is not allowed.");
    } else {
        note_names(selected, port, rows, state);
    }
}

void judge_controller(const controller& selected, check_state& state) {
    if (!selected.has_step) {
        note_no_row(selected, state.result);
    }
    judge_identifiers(selected, state.result);
    for (const surveyed_port& member : selected.ports) {
        if (member.selected) {
            note_names(selected, *member.port, member.rows->by_four, state);
        }
        if (selected.has_step && member.checked_by == nullptr && is_fcoe(*member.port)) {
            judge_left_out(selected, member, state);
        }
    }
}

}  // namespace

void survey_check(const option_input* selection, survey& result) {
    check_state state{.result = result, .rows = {}, .named = {}};
    global_ctrl_flags flags;
    const check_observer observer{
        .comes_to = [&](const auto& port, const auto& row) { note_step(port, row, state); },
        .judges = [&](const auto& port, const auto& row,
                      auto* allowed_by) { note_judged(port, row, allowed_by, result); }};
    OverallSubSystemCheck(selection, &flags, observer);
    for (const controller& each : result.controllers) {
        if (each.selected) {
            judge_controller(each, state);
        }
    }
}
