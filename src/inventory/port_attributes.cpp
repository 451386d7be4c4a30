#include "inventory/port_attributes.h"

#include <string_view>

#include "base/list.h"
#include "base/output.h"
#include "call/paths.h"
#include "inventory/port_query.h"
#include "tool/output_files.h"

namespace {

using entry = hba_attributes_entry;

constexpr char head_line[] = "HBA Attributes for";

// "Model" comes behind "Model Desc", which begins with it.
constexpr key_row<entry> attribute_keys[] = {
    {.key = head_line, .opens = true},
    {"Host Name", text_of<&entry::HostName>},
    {"Manufacturer", text_of<&entry::Manufacturer>},
    {"Serial Number", text_of<&entry::SerialNumber>, ""},
    {"Model Desc", text_of<&entry::ModelDesc>},
    {"Model", text_of<&entry::Model>, ""},
    {"Node WWN", text_of<&entry::NodeWWN>},
    {"Node Symname", text_of<&entry::NodeSymname>},
    {"HW Version", text_of<&entry::HWVersion>, ""},
    {"FW Version", text_of<&entry::FWVersion>, ""},
    {"Vendor Spec ID", text_of<&entry::VendorSpecID>, "", &entry::vendor_id},
    {"Number of Ports", text_of<&entry::NumberOfPorts>},
    {"Driver Name", text_of<&entry::DriverName>},
    {"Device ID", text_of<&entry::DeviceID>, "", &entry::device_id},
    {"HBA Type", text_of<&entry::HBAType>, ""},
    {"Operational FW", text_of<&entry::OperationalFW>, ""},
    {"IEEE Address", text_of<&entry::IEEEAddress>},
    {"PXE Boot", text_of<&entry::PXEBoot>},
    {"Driver Version", text_of<&entry::DriverVersion>, ""},
    {"Board Temperature", text_of<&entry::BoardTemperature>},
    {"Function Type", text_of<&entry::FunctionType>, ""},
    {"Sub Device ID", text_of<&entry::SubDeviceID>, "", &entry::subdevice_id},
    {"Port Number", text_of<&entry::PortNumber>},
    {"PCI Bus Number", text_of<&entry::PCIBusNumber>},
    {"PCI Func Number", text_of<&entry::PCIFuncNumber>},
    {"Sub Vendor ID", text_of<&entry::SubVendorID>, "", &entry::subvendor_id},
    {"Firmware Status", text_of<&entry::FirmwareStatus>},
    {"Service Processor FW Name", text_of<&entry::ServiceProcessorFWName>},
    {"ULP FW Name", text_of<&entry::ULPFWName>},
    {"IPL Filename", text_of<&entry::IPLFilename>, ""},
    {"NCSI Version", text_of<&entry::NCSIVersion>},
    {"Start-up Boot Code Version", text_of<&entry::StartupBootCodeVersion>},
    {"FCoE Universal Version", text_of<&entry::FCoEUniversalVersion>},
    {"FCoE x86 BIOS Version", text_of<&entry::FCoEx86BIOSVersion>},
    {"FCoE EFI Version", text_of<&entry::FCoEEFIVersion>},
    {"FCoE FCODE Version", text_of<&entry::FCoEFCODEVersion>},
    {"UEFI BIOS Version", text_of<&entry::UEFIBIOSVersion>},
    {"UEFI NIC Version", text_of<&entry::UEFINICVersion>},
    {"UEFI FCODE Version", text_of<&entry::UEFIFCODEVersion>},
    {"UEFI iSCSI Version", text_of<&entry::UEFIiSCSIVersion>},
    {"PCI Express Link Speed", text_of<&entry::PCIExpressLinkSpeed>},
    {"PCI Express Bus Width", text_of<&entry::PCIExpressBusWidth>},
};

constexpr port_query attribute_query{
    .word = "hbaattributes",
    .file_name = attributes_file_name,
    .command_format = "\n\t\t%s %s %s > %s/%s_%s_%s\n",
    .success = "\n\t\tSuccess",
    .failure = "\n\t\tFail",
    .indent = "\t\t",
};

// FC and FCoE ports are known by their WWN, all others by their MAC address.
const char* port_identifier(const hba_info& port) {
    return is_fc_or_fcoe(port) ? port.PortWWN : port.PermanentMAC;
}

// What can become of a line, in the order of the tests:
//   - it begins with no key: passed over
//   - the head line: a new entry for the port, which the lines behind it fill
//   - a key ahead of the head line: passed over
//   - a key and a colon: the value fills the field and the number; then the field is echoed
//     where the key has an echo
//   - a key without a colon: the field is echoed as it is, likewise
exit_status read_line(char* line, hba_info& port, const char* identifier) {
    const key_row<entry>* row = find_key(attribute_keys, line);
    if (row == nullptr) {
        return RET_OK;
    }
    if (row->opens) {
        port.attributes = get_new_hba_attributes_entry();
        if (port.attributes == nullptr) {
            print_out_of_memory();
            return RET_MEMALLOC_FAIL;
        }
        Print(6, "\n\t\t%s %s\n\n", head_line, identifier);
        return RET_OK;
    }
    if (port.attributes == nullptr) {
        return RET_OK;
    }
    store_value(*row, *port.attributes, line);
    if (row->echo != nullptr) {
        Print(6, "\t\t%s\n", row->field(*port.attributes).data());
    }
    return RET_OK;
}

exit_status collect_attributes_of(hba_info& port) {
    const char* identifier = port_identifier(port);
    const bool shown_by_wwn = std::string_view(port.PortType).starts_with("FC");
    input_file file;
    const exit_status status =
        ask_about_port(attribute_query, port, compose_attribute_query(port, pHBAFlashCmdPath),
                       shown_by_wwn ? port.PortWWN : port.PermanentMAC, file);
    if (file.stream == nullptr) {
        return status;
    }
    return read_port_attributes(file, port, identifier);
}

}  // namespace

tool_command compose_attribute_query(const hba_info& port, const char* tool) {
    return compose_query(attribute_query, port, port_identifier(port), tool);
}

std::span<const key_row<entry>> port_attribute_keys() { return attribute_keys; }

exit_status read_port_attributes(const input_file& file, hba_info& port, const char* identifier) {
    char line[line_width];
    while (next_line(file, line)) {
        if (const exit_status status = read_line(line, port, identifier)) {
            return status;
        }
    }
    const exit_status status = status_at_end(file);
    if (status == RET_OK && port.attributes == nullptr) {
        Print(1, "\t\tNo attributes => SKIP!\n");
    }
    return status;
}

exit_status collect_port_attributes() {
    for (hba_info* port : entries(p_hba_info_list)) {
        if (const exit_status status = collect_attributes_of(*port)) {
            return status;
        }
    }
    return RET_OK;
}
