#pragma once

#include "base/exit_status.h"
#include "base/lines.h"
#include "inventory/output_lines.h"
#include "inventory/port_records.h"
#include "tool/tool_command.h"

/// First stage of the collection: runs the listing command and opens a port in p_hba_info_list
/// for each block of its output. Gives 0, 51 when the output cannot be read, 55 when the command
/// failed or was refused, 54 without memory; an interrupted process ends here.
exit_status collect_port_list();

/// The command by which the management tool at `tool` is asked for the list of ports.
tool_command compose_listing(const char* tool);

/// The keys of the listing and the fields that they fill.
std::span<const key_row<hba_info>> port_list_keys();

/// Reads an output of the listing command into p_hba_info_list. Gives 0, 51 or 54.
exit_status read_port_list(const input_file& file);
