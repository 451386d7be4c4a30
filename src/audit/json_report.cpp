#include <nlohmann/json.hpp>

#include "audit/reports.h"
#include "call/help.h"

namespace {

using json = nlohmann::ordered_json;

json text_or_null(const std::string& text) { return text.empty() ? json() : json(text); }

json number_or_null(int number) { return number == 0 ? json() : json(number); }

struct member {
    const char* name;
    json value;
};

// There are many of them. From a list of pairs the library makes an array of each first, and an
// object that grows copies its members.
template <std::size_t Count>
json object(member (&&members)[Count]) {
    json::object_t result;
    result.reserve(Count);
    for (member& each : members) {
        result.emplace_back(each.name, std::move(each.value));
    }
    return result;
}

// What `object_of` makes of each record.
template <typename Records, typename ObjectOf>
json list_of(const Records& records, const ObjectOf& object_of) {
    json list = json::array();
    for (const auto& each : records) {
        list.push_back(object_of(each));
    }
    return list;
}

json storage_of(const hba_info& port) {
    const target_mapping_entry* target = port.target_mapping;
    return target == nullptr ? json()
                             : object({{"vendor", target->VendorID},
                                       {"product", target->ProductID},
                                       {"version", target->ProductVersion}});
}

json allowed_by(const surveyed_port& port) {
    return port.checked_by == nullptr || port.allowed_by == nullptr
               ? json()
               : object({{"line", port.checked_by->line},
                         {"vendor", port.allowed_by->vendor},
                         {"products", port.allowed_by->product_list}});
}

json port_of(const surveyed_port& surveyed) {
    const hba_info& port = *surveyed.port;
    const fc_config_file_entry* row = surveyed.checked_by;
    const bool is_judged = row != nullptr && port.target_mapping != nullptr;
    return object({{"type", port.PortType},
                   {"function", port.PCIFunction},
                   {"number", port.PortNumber},
                   {"address", address_of(port)},
                   {"pci_id", text_or_null(pci_id_of(port))},
                   {"storage", storage_of(port)},
                   {"on_chain", surveyed.on_chain},
                   {"selected", surveyed.selected},
                   {"checked_by", row == nullptr ? json() : json(row->line)},
                   {"allowed", is_judged ? json(surveyed.allowed_by != nullptr) : json()},
                   {"allowed_by", allowed_by(surveyed)}});
}

json row_of(const fitting_row& each) {
    return object(
        {{"line", each.row->line}, {"ids", each.by_four ? 4 : 2}, {"names", each.fits_names}});
}

json controller_of(const controller* each) {
    const hba_info& first = *each->ports.front().port;
    const hba_info& flash_port = *first.flash_port;
    return object({{"serial", first.SerialNo},
                   {"vendor", first.Mfg},
                   {"model", first.Model},
                   {"selected", each->selected},
                   {"pci_ids", pci_ids_of(*each)},
                   {"versions", object({{"firmware", firmware_versions_of(*each)},
                                        {"bios", bios_versions_of(*each)}})},
                   {"flash_port", object({{"type", flash_port.PortType},
                                          {"function", flash_port.PCIFunction},
                                          {"number", flash_port.PortNumber},
                                          {"address", flash_port.PermanentMAC}})},
                   {"rows", list_of(each->rows, row_of)},
                   {"rows_by_two_ids", each->rows_by_two_ids},
                   {"ports", list_of(each->ports, port_of)}});
}

json port_without_serial(const hba_info* port) {
    return object({{"type", port->PortType},
                   {"function", port->PCIFunction},
                   {"number", port->PortNumber},
                   {"address", address_of(*port)},
                   {"model", port->Model}});
}

json download_of(const download& each) {
    return object({{"serial", each.port->SerialNo},
                   {"port", port_name(*each.port)},
                   {"address", each.port->flash_port->PermanentMAC},
                   {"row", each.row->line},
                   {"kind", each.kind},
                   {"image", each.image},
                   {"installed", each.installed},
                   {"sent", each.sent}});
}

json finding_of(const finding& each) {
    const finding_place& place = each.place;
    return object({{"code", name_of(each.code)},
                   {"severity", name_of(each.weight)},
                   {"accepted", each.accepted},
                   {"place", name_of(place)},
                   {"serial", text_or_null(place.serial)},
                   {"port", text_or_null(place.port)},
                   {"file", text_or_null(place.file)},
                   {"line", number_or_null(place.line)},
                   {"piece", number_or_null(place.piece)},
                   {"what", each.what},
                   {"do", each.advice}});
}

}  // namespace

std::string json_report(const survey& result) {
    const json report =
        object({{"format", 2},
                {"version", tool_version()},
                {"directory", result.directory},
                {"table", result.table},
                {"selection", result.selection},
                {"flash", result.flash},
                {"status", static_cast<int>(status_of(result))},
                {"controllers", list_of(result.shown, controller_of)},
                {"ports_without_serial", list_of(result.without_serial, port_without_serial)},
                {"downloads", list_of(result.downloads, download_of)},
                {"findings", list_of(result.findings, finding_of)}});
    return report.dump(2, ' ', false, json::error_handler_t::replace) + "\n";
}
