#pragma once

#include "base/exit_status.h"
#include "base/lines.h"
#include "inventory/output_lines.h"
#include "inventory/port_records.h"
#include "tool/tool_command.h"

/// Second stage of the collection: asks for the attributes of each port and hangs them on it.
/// Gives 0, 51 when an output cannot be read or its command was refused, 54 without memory;
/// the first of these ends the stage, and an interrupted process ends in it.
exit_status collect_port_attributes();

/// The command by which the management tool at `tool` is asked for the attributes of a port.
tool_command compose_attribute_query(const hba_info& port, const char* tool);

/// The keys of the attributes and the fields that they fill.
std::span<const key_row<hba_attributes_entry>> port_attribute_keys();

/// Reads an output of the attribute command into the port's `attributes`, which stays null when
/// the output has no head line. `identifier` is the port's name in the command. Gives 0, 51 or 54.
exit_status read_port_attributes(const input_file& file, hba_info& port, const char* identifier);
