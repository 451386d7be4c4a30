#include "inventory/port_records.h"

#include <cstdio>
#include <list>
#include <string_view>
#include <vector>

#include "base/list.h"
#include "base/text.h"

hba_info** p_hba_info_list = nullptr;

namespace {

std::list<hba_info> ports;
std::list<hba_attributes_entry> attributes;
std::list<target_mapping_entry> target_mappings;
std::vector<hba_info*> slots;

}  // namespace

hba_info* get_new_hba_info_entry() {
    hba_info* port = new_record(ports);
    return port != nullptr && append(slots, p_hba_info_list, port) ? port : nullptr;
}

hba_attributes_entry* get_new_hba_attributes_entry() { return new_record(attributes); }

target_mapping_entry* get_new_target_mapping_entry() { return new_record(target_mappings); }

bool is_of_type(const hba_info& port, const char* type) {
    return std::string_view(port.PortType) == type;
}

bool is_fcoe(const hba_info& port) { return std::string_view(port.PortType).starts_with("FCoE"); }

bool is_fc_or_fcoe(const hba_info& port) { return is_fcoe(port) || is_of_type(port, "FC"); }

bool has_serial_number(const hba_info& port) {
    return !std::string_view(port.SerialNo).starts_with("n/a");
}

const char* address_of(const hba_info& port) {
    return port.PortWWN[0] != '\0' ? port.PortWWN : port.PermanentMAC;
}

std::string port_name(const hba_info& port) {
    return fill_in("%s/%s", port.PCIFunction, port.PortNumber);
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

void release_fc_ports() {
    std::erase_if(slots,
                  [](const hba_info* port) { return port != nullptr && is_of_type(*port, "FC"); });
    ports.remove_if([](const hba_info& port) { return is_of_type(port, "FC"); });
}

void release_port_records() {
    ports.clear();
    attributes.clear();
    target_mappings.clear();
    slots.clear();
    p_hba_info_list = nullptr;
}
