#include "audit/survey.h"

#include <algorithm>

#include "base/list.h"
#include "call/options.h"
#include "call/paths.h"
#include "check/controller_check.h"
#include "inventory/port_outputs.h"

namespace {

void group_ports(survey& result) {
    std::map<std::string_view, std::size_t> numbers;
    for (hba_info* port : entries(p_hba_info_list)) {
        if (!has_serial_number(*port)) {
            result.without_serial.push_back(port);
            continue;
        }
        const auto [place, is_new] = numbers.try_emplace(port->SerialNo, result.controllers.size());
        if (is_new) {
            result.controllers.emplace_back();
        }
        result.controllers[place->second].ports.push_back({.port = port});
    }
    for (controller& each : result.controllers) {
        for (surveyed_port& member : each.ports) {
            result.places.emplace(member.port, std::pair(&each, &member));
        }
    }
}

void mark_chains(survey& result) {
    for (const controller& each : result.controllers) {
        const hba_info* flash_port = each.ports.front().port->flash_port;
        for (const hba_info* member : chain_of(*flash_port)) {
            if (member->flash_port == flash_port) {
                result.places.at(member).second->on_chain = true;
            }
        }
    }
}

// The ports of a server have few different identifiers.
void find_rows(survey& result) {
    for (auto& [port, place] : result.places) {
        if (port->attributes != nullptr) {
            const hba_attributes_entry& its = *port->attributes;
            const auto [rows, is_new] = result.rows.try_emplace(
                {its.vendor_id, its.device_id, its.subvendor_id, its.subdevice_id});
            if (is_new) {
                rows->second = rows_of(*port);
            }
            place.second->rows = &rows->second;
        }
    }
}

void add_rows(controller& owner, const hba_info& port, bool by_four, const row_list& rows) {
    for (const fc_config_file_entry* row : rows) {
        owner.rows.push_back({row, by_four, fits_names(port, *row)});
    }
}

// Of the ports with the same identifiers only the first is looked at.
void choose_rows(controller& owner) {
    std::map<std::pair<std::int32_t, std::int32_t>, const surveyed_port*> by_two;
    std::set<const row_lists*> by_four;
    for (const surveyed_port& member : owner.ports) {
        if (member.rows == nullptr) {
            continue;
        }
        by_two.try_emplace({member.port->attributes->vendor_id, member.port->attributes->device_id},
                           &member);
        if (by_four.insert(member.rows).second) {
            add_rows(owner, *member.port, true, member.rows->by_four);
        }
    }
    const std::size_t count = owner.rows.size();
    for (const auto& [ids, member] : by_two) {
        owner.rows_by_two_ids += member->rows->count;
        if (count == 0) {
            add_rows(owner, *member->port, false, member->rows->by_two);
        }
    }
    owner.rows_by_two_ids -= count;
    std::ranges::sort(owner.rows, {}, [](const fitting_row& fit) { return fit.row->piece; });
    owner.rows.resize(count == 0 ? std::min(owner.rows.size(), most_rows_by_two) : count);
}

// Whether some port fits the group; marks all that do.
bool mark_selected(const option_input& group, survey& result) {
    bool any = false;
    for (controller& each : result.controllers) {
        for (surveyed_port& member : each.ports) {
            if (fits_selection(*member.port, group)) {
                member.selected = each.selected = any = true;
            }
        }
    }
    return any;
}

bool is_of_selected_model(const hba_info& port, const survey& result) {
    const auto is_like = [&](const surveyed_port& member) {
        return std::string_view(member.port->Mfg) == port.Mfg &&
               std::string_view(member.port->Model) == port.Model;
    };
    return result.selection.empty() ||
           std::ranges::any_of(result.controllers, [&](const controller& each) {
               return each.selected && std::ranges::any_of(each.ports, is_like);
           });
}

void judge_skipped(survey& result) {
    for (const hba_info* port : result.without_serial) {
        if (is_fcoe(*port) && is_of_selected_model(*port, result)) {
            const finding_place place{.serial = "n/a", .port = port_name(*port)};
            add_finding(result.findings, finding_code::port_skipped, place,
                        "an FCoE port without a serial number is never checked.");
        }
    }
}

bool has_ids(const hba_info& port) {
    return port.attributes != nullptr && !attributes_output.lacks_values(port);
}

// Whether it is of a selected model, and the identifiers of its storage ports are not known.
bool may_be_selected(const controller& each, const survey& result) {
    const auto is_known = [](const surveyed_port& member) {
        return is_fcoe(*member.port) && has_ids(*member.port);
    };
    const auto may_be_meant = [&](const surveyed_port& member) {
        return !has_ids(*member.port) && is_of_selected_model(*member.port, result);
    };
    return std::ranges::none_of(each.ports, is_known) &&
           std::ranges::any_of(each.ports, may_be_meant);
}

void add_model_ids(const hba_info& port, audit_scope& scope) {
    const hba_attributes_entry* ids = port.attributes;
    if (ids != nullptr && ids->vendor_id > 0 && ids->device_id > 0) {
        scope.model_ids.emplace(ids->vendor_id, ids->device_id);
    }
}

void add_once(port_texts& texts, const std::string& text) {
    if (!text.empty() && std::ranges::find(texts, text) == texts.end()) {
        texts.push_back(text);
    }
}

using version_field = char (hba_attributes_entry::*)[16];

port_texts versions_of(const controller& each, std::initializer_list<version_field> fields) {
    port_texts versions;
    for (const surveyed_port& port : each.ports) {
        for (const version_field field : fields) {
            add_once(versions,
                     port.port->attributes == nullptr ? "" : port.port->attributes->*field);
        }
    }
    return versions;
}

}  // namespace

survey survey_inventory() {
    survey result;
    result.directory = pHBAWorkingPath;
    result.table = pHBAConditionsPath;
    result.flash = active_option_flash != 0;
    group_ports(result);
    mark_chains(result);
    find_rows(result);
    std::ranges::for_each(result.controllers, choose_rows);
    return result;
}

void survey_selection(const option_input* selection, survey& result) {
    for (; selection != nullptr; selection = selection->next) {
        result.selection.push_back(group_name(*selection));
        if (!mark_selected(*selection, result)) {
            add_finding(result.findings, finding_code::not_installed,
                        {.word = result.selection.back()},
                        "no port that a run looks at has these identifiers.");
        }
    }
    judge_skipped(result);
}

audit_scope choose_controllers(survey& result) {
    audit_scope scope{.all = result.selection.empty(), .serials = {}, .model_ids = {}};
    for (const controller& each : result.controllers) {
        const auto is_checked = [](const auto& port) { return port.checked_by != nullptr; };
        if (scope.all || each.selected || std::ranges::any_of(each.ports, is_checked)) {
            result.shown.push_back(&each);
            scope.serials.emplace(each.ports.front().port->SerialNo);
            for (const surveyed_port& port : each.ports) {
                add_model_ids(*port.port, scope);
            }
        } else if (may_be_selected(each, result)) {
            scope.serials.emplace(each.ports.front().port->SerialNo);
        }
    }
    if (!scope.all) {
        result.without_serial.clear();
    }
    return scope;
}

audit_status status_of(const survey& result) {
    return std::ranges::any_of(result.findings, counts) ? AUDIT_FINDINGS : AUDIT_NO_FINDING;
}

port_texts pci_ids_of(const controller& each) {
    port_texts ids;
    for (const surveyed_port& port : each.ports) {
        add_once(ids, pci_id_of(*port.port));
    }
    return ids;
}

port_texts firmware_versions_of(const controller& each) {
    return versions_of(each, {&hba_attributes_entry::FWVersion});
}

port_texts bios_versions_of(const controller& each) {
    return versions_of(
        each, {&hba_attributes_entry::FCoEx86BIOSVersion, &hba_attributes_entry::UEFIBIOSVersion});
}
