#include <nlohmann/json.hpp>

#include "audit/reports.h"
#include "call/help.h"

namespace {

using json = nlohmann::ordered_json;

json text_or_null(const std::string& text) { return text.empty() ? json() : json(text); }

json number_or_null(int number) { return number == 0 ? json() : json(number); }

json storage_of(const hba_info& port) {
    const target_mapping_entry* target = port.target_mapping;
    return target == nullptr ? json()
                             : json{{"vendor", target->VendorID},
                                    {"product", target->ProductID},
                                    {"version", target->ProductVersion}};
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

json allowed_by(const surveyed_port& port) {
    return port.checked_by == nullptr || port.allowed_by == nullptr
               ? json()
               : json{{"line", port.checked_by->line},
                      {"vendor", port.allowed_by->vendor},
                      {"products", port.allowed_by->product_list}};
}

json basics_of(const hba_info& port, const char* address) {
    return {{"type", port.PortType},
            {"function", port.PCIFunction},
            {"number", port.PortNumber},
            {"address", address}};
}

// As there are many of them, not by a list of pairs, each of which would be an array first.
json port_of(const surveyed_port& surveyed) {
    const hba_info& port = *surveyed.port;
    const bool is_judged = surveyed.checked_by != nullptr && port.target_mapping != nullptr;
    json result;
    result["type"] = port.PortType;
    result["function"] = port.PCIFunction;
    result["number"] = port.PortNumber;
    result["address"] = address_of(port);
    result["pci_id"] = text_or_null(pci_id_of(port));
    result["storage"] = storage_of(port);
    result["on_chain"] = surveyed.on_chain;
    result["selected"] = surveyed.selected;
    result["checked_by"] =
        surveyed.checked_by == nullptr ? json() : json(surveyed.checked_by->line);
    result["allowed"] = is_judged ? json(surveyed.allowed_by != nullptr) : json();
    result["allowed_by"] = allowed_by(surveyed);
    return result;
}

json row_of(const fitting_row& each) {
    return {{"line", each.row->line}, {"ids", each.by_four ? 4 : 2}, {"names", each.fits_names}};
}

json controller_of(const controller* each) {
    const hba_info& first = *each->ports.front().port;
    return {{"serial", first.SerialNo},
            {"vendor", first.Mfg},
            {"model", first.Model},
            {"selected", each->selected},
            {"pci_ids", pci_ids_of(*each)},
            {"versions",
             {{"firmware", firmware_versions_of(*each)}, {"bios", bios_versions_of(*each)}}},
            {"flash_port", basics_of(*first.flash_port, first.flash_port->PermanentMAC)},
            {"rows", list_of(each->rows, row_of)},
            {"rows_by_two_ids", each->rows_by_two_ids},
            {"ports", list_of(each->ports, port_of)}};
}

json port_without_serial(const hba_info* port) {
    json result = basics_of(*port, address_of(*port));
    result["model"] = port->Model;
    return result;
}

json download_of(const download& each) {
    return {{"serial", each.port->SerialNo},
            {"port", port_name(*each.port)},
            {"address", each.port->flash_port->PermanentMAC},
            {"row", each.row->line},
            {"kind", each.kind},
            {"image", each.image},
            {"installed", each.installed},
            {"sent", each.sent}};
}

json finding_of(const finding& each) {
    const finding_place& place = each.place;
    return {{"code", name_of(each.code)},
            {"severity", name_of(each.weight)},
            {"accepted", each.accepted},
            {"place", name_of(place)},
            {"serial", text_or_null(place.serial)},
            {"port", text_or_null(place.port)},
            {"file", text_or_null(place.file)},
            {"line", number_or_null(place.line)},
            {"piece", number_or_null(place.piece)},
            {"what", each.what},
            {"do", each.advice}};
}

}  // namespace

std::string json_report(const survey& result) {
    json report{{"format", 2},
                {"version", tool_version()},
                {"directory", result.directory},
                {"table", result.table},
                {"selection", result.selection},
                {"flash", result.flash},
                {"status", static_cast<int>(status_of(result))},
                {"controllers", list_of(result.shown, controller_of)},
                {"ports_without_serial", list_of(result.without_serial, port_without_serial)},
                {"downloads", list_of(result.downloads, download_of)},
                {"findings", list_of(result.findings, finding_of)}};
    return report.dump(2, ' ', false, json::error_handler_t::replace) + "\n";
}
