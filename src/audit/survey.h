#pragma once

#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "audit/findings.h"
#include "call/selection.h"
#include "conditions/conditions_file.h"
#include "inventory/port_records.h"

/// A port with a serial number, and what a check does there.
struct surveyed_port {
    hba_info* port;
    bool selected = false;
    bool on_chain = false;                             ///< of its flash port
    const fc_config_file_entry* checked_by = nullptr;  ///< null: no check judges it
    const fc_periphery_info* allowed_by = nullptr;     ///< of that row; null: its storage is not
};

/// A row that fits ports of a controller by their identifiers.
struct fitting_row {
    fc_config_file_entry* row;
    bool by_four;     ///< all four identifiers agree, not only vendor and device
    bool fits_names;  ///< vendor and model are beginnings of the port's
};

/// The ports of one serial number, which have one flash port.
struct controller {
    std::vector<surveyed_port> ports;  ///< in the order of p_hba_info_list; never empty
    std::vector<fitting_row> rows;     ///< each once, in the table's order
    bool selected = false;
    bool has_step = false;  ///< a check comes from one of its ports to a row
    int flashes = 0;        ///< how often a flash goes through its flash port
};

/// One image that a flash sends.
struct download {
    const hba_info* port;  ///< the port that led there; the address is its flash port's
    const fc_config_file_entry* row;
    std::string image;
    bool sent;  ///< false: the flash has ended before
};

/// What the answer of a run rests on.
struct survey {
    std::vector<controller> controllers;
    std::vector<const hba_info*> without_serial;
    std::vector<download> downloads;
    std::vector<finding> findings;
    /// Where each port with a serial number stands in `controllers`.
    std::unordered_map<const hba_info*, std::pair<controller*, surveyed_port*>> places;
};

/// Groups the ports of p_hba_info_list, each of which has a flash port if it has a serial
/// number, and finds the rows that fit them.
survey survey_inventory();

/// Notes which controllers are selected, and which groups and controllers lead to nothing.
void survey_selection(const option_input* selection, survey& result);

/// Walks as a check does, and notes what it judges and what it leaves out. Marks the ports as
/// checked.
void survey_check(const option_input* selection, survey& result);

/// Walks as a flash does without sending anything, and notes what it would send. Marks the ports
/// as flashed.
void survey_flash(const option_input* selection, survey& result);

/// What the selected group names, in the form of -pci-id.
std::string group_name(const option_input& group);

// --- what both reports show ---------------------------------------------------------------

/// Whether a report shows the controller: all without a selection, else the selected ones and
/// those whose ports are checked along with them.
bool is_reported(const controller& each);

/// The port's WWN, or the MAC address of one that has none.
const char* address_of(const hba_info& port);

/// The port's identifiers as -pci-id takes them, two where it has no subsystem identifiers; empty
/// where they are not known.
std::string pci_id_of(const hba_info& port);

/// The different identifiers of the controller's ports.
std::vector<std::string> pci_ids_of(const controller& each);
