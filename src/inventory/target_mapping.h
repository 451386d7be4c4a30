#pragma once

#include <vector>

#include "base/exit_status.h"
#include "base/lines.h"
#include "inventory/output_lines.h"
#include "inventory/port_records.h"
#include "tool/tool_command.h"

/// Third stage of the collection: asks each FC or FCoE port for its storage and hangs that on
/// it. Gives 0, 51 when an output cannot be read or its command was refused, 54 without memory; the
/// first of these ends the stage, and an interrupted process ends in it.
exit_status collect_target_mappings();

/// The command by which the management tool at `tool` is asked for the storage of a port.
tool_command compose_mapping_query(const hba_info& port, const char* tool);

/// What a mapping says beside the one entry that all its LUNs write into.
struct mapping_facts {
    bool has_head = false;
    /// LUNs whose vendor or product is not that of the last one, which the entry holds.
    std::vector<target_mapping_entry> other_luns;
};

/// The keys of the mapping and the fields that they fill.
std::span<const key_row<target_mapping_entry>> target_mapping_keys();

/// Reads an output of the mapping command into the port's `target_mapping`, which stays null
/// when no line behind the head has a colon; `facts`, where they are given, are filled beside it.
/// Gives 0, 51 or 54.
exit_status read_target_mapping(const input_file& file, hba_info& port,
                                mapping_facts* facts = nullptr);
