#include "audit/survey.h"

#include <algorithm>
#include <cstdio>
#include <map>
#include <string_view>
#include <tuple>

#include "base/list.h"
#include "check/controller_check.h"
#include "walk/matching.h"

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

// The rows that fit identifiers; the ports of a server have few different ones.
using row_list = std::vector<fc_config_file_entry*>;
using ids = std::tuple<std::int32_t, std::int32_t, std::int32_t, std::int32_t>;
using rows_by_ids = std::map<ids, row_list>;

const row_list& rows_by_two_ids(const hba_info& port, rows_by_ids& known) {
    const hba_attributes_entry& its = *port.attributes;
    const auto [place, is_new] =
        known.try_emplace({its.vendor_id, its.device_id, its.subvendor_id, its.subdevice_id});
    if (is_new) {
        const auto rows = entries(fc_config_entry_list);
        std::copy_if(rows.begin(), rows.end(), std::back_inserter(place->second),
                     [&](const fc_config_file_entry* row) { return fits_row(port, *row, false); });
    }
    return place->second;
}

void note_fitting_row(controller& owner, const hba_info& port, fc_config_file_entry& row) {
    const fitting_row fit{&row, fits_row(port, row, true), fits_names(port, row)};
    const auto known = std::find_if(owner.rows.begin(), owner.rows.end(),
                                    [&](const fitting_row& each) { return each.row == &row; });
    if (known == owner.rows.end()) {
        owner.rows.push_back(fit);
    } else if (fit.by_four && !known->by_four) {
        *known = fit;
    }
}

void find_rows(survey& result) {
    rows_by_ids known;
    for (controller& each : result.controllers) {
        for (const surveyed_port& member : each.ports) {
            if (member.port->attributes == nullptr) {
                continue;
            }
            for (fc_config_file_entry* row : rows_by_two_ids(*member.port, known)) {
                note_fitting_row(each, *member.port, *row);
            }
        }
        std::ranges::sort(each.rows, {}, [](const fitting_row& fit) { return fit.row->line; });
    }
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

void note_not_installed(const option_input& group, survey& result) {
    result.findings.push_back(found_at_group(finding_code::not_installed, group_name(group),
                                             "no port that a run looks at has these identifiers."));
}

}  // namespace

std::string group_name(const option_input& group) {
    std::vector<const char*> parts{group.vendor_name, group.model, group.vendor_id_text,
                                   group.device_id_text};
    if (selects_by_four_ids(group)) {
        parts.push_back(group.subvendor_id_text);
        parts.push_back(group.subdevice_id_text);
    }
    std::string name;
    for (const char* part : parts) {
        name.append(name.empty() || *part == '\0' ? "" : ":").append(part);
    }
    return name.empty() ? "(empty group)" : name;
}

survey survey_inventory() {
    survey result;
    group_ports(result);
    mark_chains(result);
    find_rows(result);
    return result;
}

void survey_selection(const option_input* selection, survey& result) {
    for (; selection != nullptr; selection = selection->next) {
        if (!mark_selected(*selection, result)) {
            note_not_installed(*selection, result);
        }
    }
}

bool is_reported(const controller& each) {
    return p_option_input == nullptr || each.selected ||
           std::any_of(each.ports.begin(), each.ports.end(),
                       [](const surveyed_port& port) { return port.checked_by != nullptr; });
}

const char* address_of(const hba_info& port) {
    return port.PortWWN[0] != '\0' ? port.PortWWN : port.PermanentMAC;
}

std::string pci_id_of(const hba_info& port) {
    const hba_attributes_entry* ids = port.attributes;
    if (ids == nullptr || ids->vendor_id <= 0 || ids->device_id <= 0) {
        return "";
    }
    const auto as_unsigned = [](std::int32_t id) { return static_cast<unsigned>(id); };
    char text[64];
    if (ids->subvendor_id > 0 && ids->subdevice_id >= 0) {
        std::snprintf(text, sizeof text, "%04X:%04X:%04X:%04X", as_unsigned(ids->vendor_id),
                      as_unsigned(ids->device_id), as_unsigned(ids->subvendor_id),
                      as_unsigned(ids->subdevice_id));
    } else {
        std::snprintf(text, sizeof text, "%04X:%04X", as_unsigned(ids->vendor_id),
                      as_unsigned(ids->device_id));
    }
    return text;
}

std::vector<std::string> pci_ids_of(const controller& each) {
    std::vector<std::string> ids;
    for (const surveyed_port& port : each.ports) {
        const std::string id = pci_id_of(*port.port);
        if (!id.empty() && std::find(ids.begin(), ids.end(), id) == ids.end()) {
            ids.push_back(id);
        }
    }
    return ids;
}
