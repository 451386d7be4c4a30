#include "inventory/port_records.h"

#include <algorithm>
#include <list>
#include <string_view>
#include <vector>

#include "base/list.h"

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

bool is_fc_or_fcoe(const hba_info& port) {
    return std::string_view(port.PortType).starts_with("FCoE") || is_of_type(port, "FC");
}

bool has_serial_number(const hba_info& port) {
    return !std::string_view(port.SerialNo).starts_with("n/a");
}

void release_fc_ports() {
    const auto list = entries(p_hba_info_list);
    const auto kept = std::remove_if(list.begin(), list.end(),
                                     [](const hba_info* port) { return is_of_type(*port, "FC"); });
    std::fill(kept, list.end(), nullptr);
    ports.remove_if([](const hba_info& port) { return is_of_type(port, "FC"); });
}

void release_port_records() {
    ports.clear();
    attributes.clear();
    target_mappings.clear();
    slots.clear();
    p_hba_info_list = nullptr;
}
