#include "inventory/port_ordering.h"

#include <algorithm>
#include <cstdlib>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "base/list.h"
#include "base/output.h"
#include "inventory/port_records.h"

namespace {

/// The list that is being ordered, with a number for the serial number of each port, and for each
/// serial number the places of its ports, so that the next port of a group is found without a
/// search.
struct port_order {
    std::span<hba_info*> ports;
    std::vector<std::size_t> serials;                  // by position
    std::vector<std::set<std::size_t>> places;         // by serial number: positions of its ports
    std::vector<std::vector<std::size_t>> beginnings;  // by serial number: those it begins with
};

port_order index_ports(std::span<hba_info*> ports) {
    port_order order{.ports = ports, .serials = {}, .places = {}, .beginnings = {}};
    std::map<std::string_view, std::size_t> numbers;
    for (std::size_t k = 0; k < ports.size(); ++k) {
        const std::size_t number =
            numbers.try_emplace(ports[k]->SerialNo, numbers.size()).first->second;
        order.serials.push_back(number);
        order.places.resize(numbers.size());
        order.places[number].insert(k);
    }
    order.beginnings.resize(numbers.size());
    for (const auto& [serial, number] : numbers) {
        for (std::size_t length = 0; length <= serial.size(); ++length) {
            const auto beginning = numbers.find(serial.substr(0, length));
            if (beginning != numbers.end()) {
                order.beginnings[number].push_back(beginning->second);
            }
        }
    }
    return order;
}

void exchange(port_order& order, std::size_t a, std::size_t b) {
    if (order.serials[a] != order.serials[b]) {
        std::set<std::size_t>& places_a = order.places[order.serials[a]];
        std::set<std::size_t>& places_b = order.places[order.serials[b]];
        places_a.erase(a);
        places_b.erase(b);
        places_a.insert(b);
        places_b.insert(a);
        std::swap(order.serials[a], order.serials[b]);
    }
    std::swap(order.ports[a], order.ports[b]);
}

// Whether the serial number of the port at a begins with the whole one of the port at b.
bool SerialBeginsWith(const port_order& order, std::size_t a, std::size_t b) {
    const std::vector<std::size_t>& beginnings = order.beginnings[order.serials[a]];
    return std::find(beginnings.begin(), beginnings.end(), order.serials[b]) != beginnings.end();
}

// The first position behind `position` whose port passes SerialBeginsWith for the port at k.
std::optional<std::size_t> next_of_group(const port_order& order, std::size_t k,
                                         std::size_t position) {
    std::optional<std::size_t> next;
    for (const std::size_t serial : order.beginnings[order.serials[k]]) {
        const std::set<std::size_t>& places = order.places[serial];
        if (places.empty() || *places.rbegin() <= position) {
            continue;
        }
        const std::size_t found = *places.upper_bound(position);
        next = std::min(found, next.value_or(found));
    }
    return next;
}

std::size_t last_position(const port_order& order) { return order.ports.size() - 1; }

// Exchanges the group's ports one by one to the places behind k. The ports that stood there go
// to where the pulled ones stood.
void PullGroup(port_order& order, std::size_t k) {
    std::size_t slot = k + 1;
    for (auto j = next_of_group(order, k, k); j; j = next_of_group(order, k, *j)) {
        exchange(order, slot, *j);
        ++slot;
    }
}

void RegroupTail(port_order& order, std::size_t k) {
    for (; k != last_position(order); ++k) {
        if (!SerialBeginsWith(order, k, k + 1)) {
            PullGroup(order, k);
        }
    }
}

// Like RegroupTail, but ends at the first port outside the group that begins at `pos`.
void RegroupAnchored(port_order& order, std::size_t pos) {
    for (std::size_t k = pos; SerialBeginsWith(order, k, pos) && k != last_position(order); ++k) {
        if (!SerialBeginsWith(order, k, k + 1)) {
            PullGroup(order, k);
        }
    }
}

std::size_t SkipGroup(const port_order& order, std::size_t pos) {
    while (pos != last_position(order) && SerialBeginsWith(order, pos, pos + 1)) {
        ++pos;
    }
    return pos;
}

bool has_type(std::span<hba_info* const> ports, const char* type) {
    return std::any_of(ports.begin(), ports.end(),
                       [type](const hba_info* port) { return is_of_type(*port, type); });
}

enum class search_result { found, nothing, list_ends };

// Brings a group with a port of this type to `pos` and moves `pos` to the group's last port.
search_result search_type(port_order& order, std::size_t& pos, const char* type) {
    if (is_of_type(*order.ports[pos], type)) {
        RegroupTail(order, pos);
        pos = SkipGroup(order, pos);
        return search_result::found;
    }
    if (pos == last_position(order)) {
        return search_result::list_ends;
    }
    for (std::size_t s = pos + 1; s <= last_position(order); ++s) {
        if (is_of_type(*order.ports[s], type)) {
            exchange(order, pos, s);
            RegroupAnchored(order, pos);
            pos = SkipGroup(order, pos);
            return search_result::found;
        }
    }
    return search_result::nothing;
}

void bring_groups_forward(port_order& order, bool fcoe_present, bool iscsi_present) {
    for (std::size_t pos = 0; pos < order.ports.size(); ++pos) {
        search_result result = search_result::nothing;
        if (fcoe_present) {
            result = search_type(order, pos, "FCoE");
        }
        if (result == search_result::nothing && iscsi_present) {
            result = search_type(order, pos, "iSCSI");
        }
        if (result != search_result::found) {
            return;
        }
    }
}

// Leading digits count; a text without any is 0.
long pci_function(const hba_info& port) { return std::strtol(port.PCIFunction, nullptr, 10); }

void sort_by_function(port_order& order) {
    for (std::size_t i = 0; i < order.ports.size(); ++i) {
        for (std::size_t j = i + 1; j < order.ports.size() && SerialBeginsWith(order, i, j); ++j) {
            if (pci_function(*order.ports[i]) > pci_function(*order.ports[j])) {
                exchange(order, i, j);
            }
        }
    }
}

void report_types(bool fcoe_present, bool iscsi_present) {
    if (fcoe_present && iscsi_present) {
        Print(6, "\nFC and iSCSI ports detected.\n");
    } else if (iscsi_present) {
        Print(6, "\nOnly iSCSI ports detected.\n");
    } else if (fcoe_present) {
        Print(6, "\nOnly FC ports detected.\n");
    }
}

// `lead` stands in front of the first port's line.
void list_ports(const char* title, const char* lead) {
    Print(6, "%s", title);
    int number = 0;
    for (const hba_info* port : entries(p_hba_info_list)) {
        Print(6, "%s%d\t%s %s %s %s %s\n", number == 0 ? lead : "", number, port->Model,
              port->PortType, port->SerialNo, port->PCIFunction, port->PortNumber);
        ++number;
    }
}

}  // namespace

int Classify_Ctrl_List() {
    list_ports("\n\nOriginal input list.\n", "\n");
    release_fc_ports();
    list_ports("\n\nList of CNA controller.\n", "\n");

    port_order order = index_ports(entries(p_hba_info_list));
    const bool fcoe_present = has_type(order.ports, "FCoE");
    const bool iscsi_present = has_type(order.ports, "iSCSI");
    if (!order.ports.empty()) {
        RegroupTail(order, 0);
    }
    report_types(fcoe_present, iscsi_present);
    bring_groups_forward(order, fcoe_present, iscsi_present);
    sort_by_function(order);

    list_ports("\n\nTotal Result after PCI function sort.\n\n", "");
    return 0;
}
