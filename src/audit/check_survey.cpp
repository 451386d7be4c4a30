#include <algorithm>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>

#include "audit/survey.h"
#include "check/check_walk.h"
#include "check/controller_check.h"
#include "check/subsystem_validation.h"
#include "inventory/management_tool.h"
#include "walk/matching.h"

namespace {

/// What the walk comes by, by flash port: the rows that it holds against the chain there.
struct chain_state {
    std::vector<hba_info*> members;
    std::vector<fc_config_file_entry*> rows;
};

using chain_map = std::unordered_map<const hba_info*, chain_state>;

struct check_state {
    chain_map chains;
    /// Of which controller and row it was said that their names differ.
    std::set<std::pair<const controller*, const fc_config_file_entry*>> named;
};

chain_state& chain_at(const hba_info& flash_port, chain_map& chains) {
    const auto [place, is_new] = chains.try_emplace(&flash_port);
    if (is_new) {
        place->second.members = chain_of(flash_port);
    }
    return place->second;
}

void note_judged(const hba_info& member, fc_config_file_entry& row, survey& result) {
    surveyed_port& port = *result.places.at(&member).second;
    port.checked_by = &row;
    if (member.target_mapping == nullptr) {
        result.findings.push_back(found_at_port(finding_code::no_storage, member,
                                                "no storage was seen behind it, and it passes."));
    } else {
        port.allowed_by = find_allowing_triple(*member.target_mapping, row);
    }
}

// Does the step of a check, and looks which ports of the chain have been judged in it.
void check_and_look(const hba_info* port, fc_config_file_entry** row, global_ctrl_flags* flags,
                    chain_map& chains, survey& result) {
    result.places.at(port).first->has_step = true;
    chain_state& chain = chain_at(*port->flash_port, chains);
    if (std::find(chain.rows.begin(), chain.rows.end(), *row) == chain.rows.end()) {
        chain.rows.push_back(*row);
    }
    std::vector<const hba_info*> unchecked;
    std::copy_if(chain.members.begin(), chain.members.end(), std::back_inserter(unchecked),
                 [](const hba_info* member) { return !member->check_done; });
    DoSubSystemCheck(port, row, flags);
    for (const hba_info* member : unchecked) {
        if (member->check_done) {
            note_judged(*member, **row, result);
        }
    }
}

std::string ids_of_selected(const controller& selected) {
    const auto member = std::find_if(selected.ports.begin(), selected.ports.end(),
                                     [](const surveyed_port& each) { return each.selected; });
    const hba_attributes_entry& ids = *member->port->attributes;
    return fill_in("%s:%s:%s:%s",
                   {ids.VendorSpecID, ids.DeviceID, ids.SubVendorID, ids.SubDeviceID});
}

void judge_identifiers(const controller& selected, survey& result) {
    const hba_info& port = *selected.ports.front().port;
    if (!selected.has_step) {
        result.findings.push_back(found_at_controller(
            finding_code::no_row, port,
            fill_in("no row has the identifiers %s by which it is selected: it is neither checked "
                    "nor flashed.",
                    {ids_of_selected(selected)})));
    }
    const fc_config_file_entry* by_two = nullptr;
    for (const surveyed_port& member : selected.ports) {
        for (const fitting_row& each : selected.rows) {
            if (!member.selected || !fits_row(*member.port, *each.row, false)) {
                continue;
            }
            if (fits_row(*member.port, *each.row, true)) {
                return;
            }
            by_two = by_two == nullptr ? each.row : by_two;
        }
    }
    if (by_two != nullptr) {
        result.findings.push_back(
            found_at_row(finding_code::ids_differ, *by_two,
                         "fits by vendor and device alone: a selection by these two is checked by "
                         "it, and nothing is flashed."));
        result.findings.back().serial = port.SerialNo;
    }
}

// A row is named once for a controller.
void note_names(const controller& selected, const hba_info& port, fc_config_file_entry& row,
                check_state& state, survey& result) {
    if (!state.named.emplace(&selected, &row).second) {
        return;
    }
    const bool is_flashed = port.attributes != nullptr && fits_row(port, row, true);
    result.findings.push_back(found_at_row(
        finding_code::names_differ, row,
        fill_in("'%s', '%s' are no beginnings of '%s', '%s': it checks nothing there%s.",
                {row.vendor, row.model, port.Mfg, port.Model,
                 is_flashed ? ", and still flashes" : ""})));
    result.findings.back().serial = port.SerialNo;
}

// A row with all identifiers of a selected port, but other names.
void judge_names(const controller& selected, check_state& state, survey& result) {
    for (const surveyed_port& member : selected.ports) {
        for (const fitting_row& each : selected.rows) {
            if (member.selected && fits_row(*member.port, *each.row, true) &&
                !fits_names(*member.port, *each.row)) {
                note_names(selected, *member.port, *each.row, state, result);
            }
        }
    }
}

// Why the check has not come to this port, though it came to the controller.
void judge_left_out(const controller& selected, const surveyed_port& left_out, check_state& state,
                    survey& result) {
    const hba_info& port = *left_out.port;
    const auto note = [&](const char* what) {
        result.findings.push_back(found_at_port(finding_code::not_on_chain, port, what));
    };
    if (!left_out.on_chain) {
        note(port.flash_port == &port
                 ? "no check visits it: the flash port is not on the chain that hangs on it."
                 : "no check visits it: it is not on the chain that hangs on its flash port.");
        return;
    }
    const chain_state& chain = chain_at(*port.flash_port, state.chains);
    const auto fits = [&](const fc_config_file_entry* row) { return fits_names(port, *row); };
    if (std::any_of(chain.rows.begin(), chain.rows.end(), fits)) {
        note("no check visits it: the storage behind a port before it is not allowed.");
        return;
    }
    for (fc_config_file_entry* row : chain.rows) {
        note_names(selected, port, *row, state, result);
    }
}

bool is_left_out(const surveyed_port& each) {
    return each.checked_by == nullptr && std::string_view(each.port->PortType).starts_with("FCoE");
}

}  // namespace

void survey_check(const option_input* selection, survey& result) {
    check_state state;
    global_ctrl_flags flags;
    OverallSubSystemCheck(
        selection, &flags,
        [&](const hba_info* port, fc_config_file_entry** row, global_ctrl_flags* found) {
            check_and_look(port, row, found, state.chains, result);
        });
    for (const controller& each : result.controllers) {
        if (!each.selected) {
            continue;
        }
        judge_identifiers(each, result);
        judge_names(each, state, result);
        for (const surveyed_port& member : each.ports) {
            if (each.has_step && is_left_out(member)) {
                judge_left_out(each, member, state, result);
            }
        }
    }
}
