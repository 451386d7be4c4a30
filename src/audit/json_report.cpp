#include "audit/json_report.h"

#include <nlohmann/json.hpp>

#include "base/text.h"
#include "call/help.h"
#include "call/options.h"
#include "call/paths.h"

namespace {

using json = nlohmann::ordered_json;

constexpr int form = 1;  // of the object; a change that breaks its readers raises it

json text_or_null(const std::string& text) { return text.empty() ? json() : json(text); }

json storage_of(const hba_info& port) {
    const target_mapping_entry* target = port.target_mapping;
    return target == nullptr ? json()
                             : json{{"vendor", target->VendorID},
                                    {"product", target->ProductID},
                                    {"version", target->ProductVersion}};
}

json allowed_by(const surveyed_port& port) {
    if (port.checked_by == nullptr || port.allowed_by == nullptr) {
        return nullptr;
    }
    return {{"line", port.checked_by->line},
            {"vendor", port.allowed_by->vendor},
            {"products", port.allowed_by->product_list}};
}

json port_of(const surveyed_port& surveyed) {
    const hba_info& port = *surveyed.port;
    return {
        {"type", port.PortType},
        {"function", port.PCIFunction},
        {"number", port.PortNumber},
        {"address", address_of(port)},
        {"pci_id", text_or_null(pci_id_of(port))},
        {"storage", storage_of(port)},
        {"on_chain", surveyed.on_chain},
        {"selected", surveyed.selected},
        {"checked_by", surveyed.checked_by == nullptr ? json() : json(surveyed.checked_by->line)},
        {"allowed_by", allowed_by(surveyed)}};
}

json controller_of(const controller& each) {
    const hba_info& first = *each.ports.front().port;
    const hba_info& flash_port = *first.flash_port;
    json result{{"serial", first.SerialNo},
                {"vendor", first.Mfg},
                {"model", first.Model},
                {"pci_ids", pci_ids_of(each)},
                {"flash_port",
                 {{"function", flash_port.PCIFunction},
                  {"number", flash_port.PortNumber},
                  {"type", flash_port.PortType},
                  {"address", flash_port.PermanentMAC}}},
                {"rows", json::array()},
                {"ports", json::array()}};
    for (const fitting_row& row : each.rows) {
        result["rows"].push_back(
            {{"line", row.row->line}, {"ids", row.by_four ? 4 : 2}, {"names", row.fits_names}});
    }
    for (const surveyed_port& port : each.ports) {
        result["ports"].push_back(port_of(port));
    }
    return result;
}

json port_without_serial(const hba_info& port) {
    return {{"type", port.PortType},
            {"function", port.PCIFunction},
            {"number", port.PortNumber},
            {"address", address_of(port)},
            {"model", port.Model}};
}

json download_of(const download& each) {
    return {{"serial", each.port->SerialNo},
            {"port", port_name(*each.port)},
            {"address", each.port->flash_port->PermanentMAC},
            {"row", each.row->line},
            {"image", each.image},
            {"sent", each.sent}};
}

json finding_of(const finding& each) {
    return {{"code", name_of(each.code)},
            {"place", place_of(each)},
            {"serial", text_or_null(each.serial)},
            {"port", text_or_null(each.port)},
            {"file", text_or_null(each.file)},
            {"line", each.line == 0 ? json() : json(each.line)},
            {"what", each.what},
            {"do", each.advice}};
}

}  // namespace

std::string json_report(const survey& result, audit_status status) {
    json report{{"format", form},
                {"version", tool_version()},
                {"directory", pHBAWorkingPath},
                {"table", pHBAConditionsPath},
                {"selection", json::array()},
                {"flash", active_option_flash != 0},
                {"status", static_cast<int>(status)},
                {"controllers", json::array()},
                {"ports_without_serial", json::array()},
                {"downloads", json::array()},
                {"findings", json::array()}};
    for (const option_input* group = p_option_input; group != nullptr; group = group->next) {
        report["selection"].push_back(group_name(*group));
    }
    for (const controller& each : result.controllers) {
        if (is_reported(each)) {
            report["controllers"].push_back(controller_of(each));
        }
    }
    for (const hba_info* port : result.without_serial) {
        if (p_option_input == nullptr) {
            report["ports_without_serial"].push_back(port_without_serial(*port));
        }
    }
    for (const download& each : result.downloads) {
        report["downloads"].push_back(download_of(each));
    }
    for (const finding& each : result.findings) {
        report["findings"].push_back(finding_of(each));
    }
    return report.dump(2, ' ', false, json::error_handler_t::replace) + "\n";
}
