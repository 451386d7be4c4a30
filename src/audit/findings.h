#pragma once

#include <cstdint>
#include <string>

#include "conditions/conditions_file.h"
#include "inventory/port_records.h"

/// What can be found, in the order in which a report lists it.
enum class finding_code : std::uint8_t {
    not_installed,
    no_row,
    ids_differ,
    names_differ,
    no_storage,
    not_on_chain,
    many_flashes,
    flash_refused,
    image_missing,
    directory_missing,
    image_ambiguous,
    output_incomplete,
    output_old,
    row_unreachable,
    row_odd,
};

/// One thing that an answer of the tool does not say, and where it is.
struct finding {
    finding_code code;
    std::string what;    ///< what is the matter
    std::string advice;  ///< what to do about it
    std::string group;   ///< the selected group, where the place is none of the following
    std::string serial;  ///< serial number of the controller; empty: the place is none
    std::string port;    ///< function and number of the port; empty: the place is none
    std::string file;    ///< full path; empty: the place is no file
    int line = 0;        ///< of the table, from 1; 0: the whole file
};

/// The name by which a code is known.
const char* name_of(finding_code code);

/// "function/number", by which a controller's ports are told apart.
std::string port_name(const hba_info& port);

/// What `path` names within its directory.
std::string file_name_of(const std::string& path);

/// The place in short: group, file and line, or serial number and port.
std::string place_of(const finding& found);

// A finding with this place, and the advice that is usual for its code.
finding found_at_group(finding_code code, std::string group, std::string what);
finding found_in_file(finding_code code, std::string path, std::string what);
finding found_at_port(finding_code code, const hba_info& port, std::string what);
finding found_at_controller(finding_code code, const hba_info& port, std::string what);
finding found_at_row(finding_code code, const fc_config_file_entry& row, std::string what);
