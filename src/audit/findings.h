#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "conditions/conditions_file.h"
#include "inventory/port_records.h"

/// How serious a finding is. Error: a job fails, does the wrong thing, or judges less than the call
/// asks for. Warning: the answer says less than it seems to. Note: worth knowing, and never counts.
enum class severity : std::uint8_t { error, warning, note };

/// What can be found, in the order in which a report lists the findings of one severity.
enum class finding_code : std::uint8_t {
    not_installed,
    group_dropped,
    no_row,
    names_differ,
    many_flashes,
    flash_refused,
    image_missing,
    image_ambiguous,
    output_incomplete,
    lun_unjudged,
    row_zero_id,
    row_bars,
    row_long,
    no_storage,
    not_on_chain,
    output_old,
    directory_missing,
    ids_differ,
    port_skipped,
    row_unreachable,
    row_hidden,
    row_products,
    row_empty,
    row_bytes,
    accept_unused,
    count,
};

/// Where a finding is: a group or another word of the call, a port, a controller, or a file.
struct finding_place {
    std::string word = {};
    std::string serial = {};  ///< serial number of the controller; empty: none
    std::string port = {};    ///< function and number of the port; empty: none
    std::string file = {};    ///< full path; empty: the place is no file
    int line = 0;             ///< of the table, from 1; 0: the whole file
    int piece = 0;            ///< its number in messages of the tool; 0: the same
};

/// What a report is about: all, or the controllers that a selection concerns.
struct audit_scope {
    bool all = false;
    std::set<std::string> serials;                              ///< of the controllers
    std::set<std::pair<std::int32_t, std::int32_t>> model_ids;  ///< their vendor and device ids
};

/// One thing that an answer of the tool does not say, and its place.
struct finding {
    finding_code code;
    severity weight;
    finding_place place;
    std::string what;    ///< what is the matter
    std::string advice;  ///< what to do about it
    bool accepted = false;
};

using finding_list = std::vector<finding>;

finding_place at_port(const hba_info& port);
finding_place in_file(std::string path, int line = 0, int piece = 0);
finding_place at_row(const fc_config_file_entry& row);

/// The place in short, as reports and --accept have it.
std::string name_of(const finding_place& place);

/// The names by which they are known.
const char* name_of(finding_code code);
const char* name_of(severity weight);

/// Adds a finding with the severity and the advice of its code.
finding& add_finding(finding_list& findings, finding_code code, finding_place place,
                     std::string what);

/// What the caller accepts: all findings of a code, or those at one place.
struct accepted_finding {
    std::string entry;  ///< as typed
    finding_code code;
    std::optional<std::string> place;  ///< none: everywhere
};

/// Reads "CODE[@PLACE],..." and puts it behind `accepted`. Gives the text that should be a code and
/// is none; nothing if there is no such text.
std::optional<std::string_view> read_accepted(std::string_view list,
                                              std::vector<accepted_finding>& accepted);

/// Marks the findings that are accepted, and adds one for each entry that fits none.
void accept_findings(const std::vector<accepted_finding>& accepted, finding_list& findings);

/// Whether the finding keeps an audit from ending with 0.
bool counts(const finding& found);
