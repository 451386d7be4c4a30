#pragma once

#include <array>
#include <map>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "audit/audit_call.h"
#include "audit/findings.h"
#include "audit/outputs.h"
#include "call/selection.h"
#include "conditions/conditions_file.h"
#include "inventory/port_records.h"
#include "walk/matching.h"

/// A port with a serial number, and what a check does there.
struct surveyed_port {
    hba_info* port;
    bool selected = false;
    bool on_chain = false;                             ///< of its flash port
    const row_lists* rows = nullptr;                   ///< null: its identifiers are not known
    const fc_config_file_entry* checked_by = nullptr;  ///< null: no check judges it
    const fc_periphery_info* allowed_by = nullptr;     ///< of that row; null: its storage is not
};

/// A row that fits ports of a controller by their identifiers, as a report shows it.
struct fitting_row {
    const fc_config_file_entry* row;
    bool by_four;     ///< all four identifiers agree, not only vendor and device
    bool fits_names;  ///< vendor and model are beginnings of the port's
};

/// The ports of one serial number, which have one flash port.
struct controller {
    std::vector<surveyed_port> ports;  ///< in the order of p_hba_info_list; never empty
    std::vector<fitting_row> rows;     ///< by four, else the first ten by two
    std::size_t rows_by_two_ids = 0;   ///< how many fit by vendor and device alone
    bool selected = false;
    /// Rows by which a flash goes from one of its ports, whether there are images or not.
    std::set<const fc_config_file_entry*> flashed_by;
    bool has_step = false;  ///< a check comes from one of its ports to a row
    int flashes = 0;        ///< how often a flash goes through its flash port
};

/// One image that a flash sends.
struct download {
    const hba_info* port;  ///< the port that led there; the address is its flash port's
    const fc_config_file_entry* row;
    const char* kind;  ///< "firmware" or "bios"
    std::string image;
    std::vector<std::string> installed;  ///< versions of its kind on the controller now
    bool sent;                           ///< false: the flash has ended before
};

/// What the answer of a run rests on: all that a report needs.
struct survey {
    std::string directory;  ///< of the outputs, with its slash
    std::string table;
    std::vector<std::string> selection;  ///< the selected groups; none: all controllers are shown
    bool flash;                          ///< the report says what a flash does
    std::vector<controller> controllers;
    std::vector<const controller*> shown;  ///< with a selection, selected or checked along with it
    std::vector<const hba_info*> without_serial;  ///< none with a selection
    std::vector<download> downloads;
    finding_list findings;
    output_facts outputs;
    std::map<std::array<std::int32_t, 4>, row_lists> rows;  ///< by identifiers
    /// Where each port with a serial number stands in `controllers`.
    std::unordered_map<const hba_info*, std::pair<controller*, surveyed_port*>> places;
};

/// Groups the ports of p_hba_info_list, each of which has a flash port if it has a serial
/// number, and finds the rows that fit them.
survey survey_inventory();

/// Notes which controllers are selected, and which groups and ports lead to nothing.
void survey_selection(const option_input* selection, survey& result);

/// Walks as a flash does without sending anything, and notes by which rows it goes, and with
/// --flash what it would send. Marks the ports as flashed.
void survey_flash(const option_input* selection, survey& result);

/// Walks as a check does, behind the flash, and notes what it judges and what it leaves out. Marks
/// the ports as checked.
void survey_check(const option_input* selection, survey& result);

/// Decides which controllers a report shows, and gives what it is about.
audit_scope choose_controllers(survey& result);

/// Notes what is odd in the table that fc_config_entry_list was read from. Also notes the rows that
/// have no effect, or only a part of it, as an earlier row is taken.
void judge_table(const audit_scope& scope, finding_list& findings);

/// How an audit with this outcome ends.
audit_status status_of(const survey& result);

/// What the ports of a controller say, each text once, in their order, without empty ones.
using port_texts = std::vector<std::string>;
port_texts pci_ids_of(const controller& each);
port_texts firmware_versions_of(const controller& each);
port_texts bios_versions_of(const controller& each);
