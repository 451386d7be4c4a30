#include "inventory/flash_ports.h"

#include <algorithm>
#include <span>
#include <string_view>
#include <vector>

#include "base/list.h"

namespace {

// The ports that may be a flash port for this digit, in list order. Only the first character
// of function and port number counts.
std::vector<hba_info*> possible_candidates(char digit) {
    std::vector<hba_info*> candidates;
    for (hba_info* port : entries(p_hba_info_list)) {
        if (has_serial_number(*port) && port->PCIFunction[0] == digit &&
            port->PortNumber[0] == digit) {
            candidates.push_back(port);
        }
    }
    return candidates;
}

// The write goes one step deep at most: there is no walk to the chain's end.
void link(hba_info& port, hba_info& candidate) {
    if (candidate.next_ctrl_port == nullptr) {
        candidate.next_ctrl_port = &port;
    } else {
        candidate.next_ctrl_port->next_ctrl_port = &port;
    }
}

// All candidates are tried: the last one remains the flash port.
void take_candidates(hba_info& port, std::span<hba_info* const> candidates) {
    const std::string_view serial = port.SerialNo;
    for (hba_info* candidate : candidates) {
        if (!serial.starts_with(candidate->SerialNo)) {
            continue;
        }
        port.flash_port = candidate;
        if (is_fcoe(port)) {
            link(port, *candidate);
        }
    }
}

}  // namespace

int Determine_Flash_Ports() {
    const std::vector<hba_info*> first = possible_candidates('0');
    const std::vector<hba_info*> second = possible_candidates('1');
    for (hba_info* port : entries(p_hba_info_list)) {
        if (!has_serial_number(*port)) {
            continue;
        }
        take_candidates(*port, first);
        if (port->flash_port == nullptr) {
            take_candidates(*port, second);
        }
    }
    return 0;
}

const hba_info* port_without_flash_port() {
    const auto ports = entries(p_hba_info_list);
    const auto found = std::find_if(ports.begin(), ports.end(), [](const hba_info* port) {
        return has_serial_number(*port) && port->flash_port == nullptr;
    });
    return found == ports.end() ? nullptr : *found;
}
