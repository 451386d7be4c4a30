#include "inventory/port_outputs.h"

#include <algorithm>
#include <initializer_list>
#include <string_view>

#include "tool/output_files.h"

namespace {

using std::string_view;

bool one_is_empty(std::initializer_list<string_view> fields) {
    return std::ranges::any_of(fields, &string_view::empty);
}

bool lacks_ids(const hba_info& port) {
    const hba_attributes_entry& ids = *port.attributes;
    return std::min({ids.vendor_id, ids.device_id, ids.subvendor_id, ids.subdevice_id}) < 0 ||
           one_is_empty({ids.VendorSpecID, ids.DeviceID, ids.SubVendorID, ids.SubDeviceID});
}

bool lacks_names(const hba_info& port) {
    const target_mapping_entry* target = port.target_mapping;
    return target != nullptr && one_is_empty({target->VendorID, target->ProductID});
}

}  // namespace

constexpr port_output attributes_output{
    attributes_file_name,
    compose_attribute_query,
    [](auto& file, auto& port, auto& /*mapping*/) { return read_port_attributes(file, port, ""); },
    [](auto& port, auto& /*mapping*/) { return port.attributes != nullptr; },
    lacks_ids,
    "its four identifiers are not all there: it fits no selection, or the wrong row.",
};

constexpr port_output mapping_output{
    mapping_file_name,
    compose_mapping_query,
    [](auto& file, auto& port, auto& mapping) { return read_target_mapping(file, port, &mapping); },
    [](auto& /*port*/, auto& mapping) { return mapping.has_head; },
    lacks_names,
    "vendor or product of the storage is missing in it.",
};

bool lacks_list_values(const hba_info& port) {
    return one_is_empty({port.SerialNo}) ||
           (has_serial_number(port) && !is_of_type(port, "FC") &&
            one_is_empty({port.Mfg, port.PortNumber, port.PCIFunction, port.PortType, port.Model}));
}
