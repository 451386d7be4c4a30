// The management tool's output through its three readers and on to order and chains. Lines of
// "====" cut the input into the listing, the attributes and the mapping of every port.

#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "base/list.h"
#include "base/output.h"
#include "check/controller_check.h"
#include "inventory/flash_ports.h"
#include "inventory/port_attributes.h"
#include "inventory/port_list.h"
#include "inventory/port_ordering.h"
#include "inventory/target_mapping.h"
#include "support/process.h"

namespace {

constexpr std::size_t max_ports = 64;  // chains of more ports only cost time

void check_every_chain() {
    for (const hba_info* port : entries(p_hba_info_list)) {
        if (!has_serial_number(*port) && port->flash_port != nullptr) {
            std::abort();
        }
        if (port->flash_port != nullptr) {
            global_ctrl_flags flags;
            fc_config_file_entry row{};
            fc_config_file_entry* slot = &row;
            DoSubSystemCheck(port, &slot, &flags);
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    reset_run();
    VerboseLevel = 6;
    std::string_view rest(reinterpret_cast<const char*>(data), size);
    const std::string_view listing = next_section(rest);
    const std::string_view attributes = next_section(rest);
    try {
        read_port_list(text_file(listing));
        if (entries(p_hba_info_list).size() > max_ports) {
            return 0;
        }
        for (hba_info* port : entries(p_hba_info_list)) {
            read_port_attributes(text_file(attributes), *port, port->PortWWN);
            read_target_mapping(text_file(rest), *port);
        }
        Classify_Ctrl_List();
        Determine_Flash_Ports();
        check_every_chain();
    } catch (const ended&) {
        // A number that overflows ends the process.
    }
    return 0;
}
