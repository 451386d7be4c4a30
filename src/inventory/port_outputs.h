#pragma once

#include "inventory/port_attributes.h"
#include "inventory/target_mapping.h"

/// How an output about a port is asked for and read, and what it must hold.
struct port_output {
    const char* file_name;
    tool_command (*compose)(const hba_info& port, const char* tool);
    exit_status (*read)(const input_file& file, hba_info& port, mapping_facts& mapping);
    bool (*has_head)(const hba_info& port, const mapping_facts& mapping);
    bool (*lacks_values)(const hba_info& port);
    const char* values;  ///< what is said of one that lacks them
};

extern const port_output attributes_output;
extern const port_output mapping_output;

/// Whether the list of ports lacks a value of this port that a run goes by; of a plain FC port it
/// goes by none.
bool lacks_list_values(const hba_info& port);
