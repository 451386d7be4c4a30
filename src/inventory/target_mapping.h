#pragma once

#include "base/exit_status.h"
#include "base/lines.h"
#include "inventory/output_lines.h"
#include "inventory/port_records.h"

/// The end of the names of this stage's outputs.
inline constexpr char mapping_file_name[] = "target_mapping.out";

/// Third stage of the collection: asks each FC or FCoE port for its storage and hangs that on
/// it. Gives 0, 51 when an output cannot be read or its command was refused, 54 without memory; the
/// first of these ends the stage, and an interrupted process ends in it.
exit_status collect_target_mappings();

/// The keys of the mapping and the fields that they fill.
std::span<const key_row<target_mapping_entry>> target_mapping_keys();

/// Reads an output of the mapping command into the port's `target_mapping`, which stays null
/// when no line behind the head has a colon. Gives 0, 51 or 54.
exit_status read_target_mapping(const input_file& file, hba_info& port);
