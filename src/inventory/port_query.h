#pragma once

#include <string>

#include "base/exit_status.h"
#include "base/lines.h"
#include "base/text.h"
#include "inventory/port_records.h"
#include "tool/tool_command.h"

/// A command that asks for one port, and the texts around it.
struct port_query {
    const char* word;       ///< the command's name
    const char* file_name;  ///< end of the output file's name
    /// Of tool, word, identifier, directory, serial number, function and file name.
    fill_format<7> command_format;
    const char* success;  ///< begins the message on a status of 0
    const char* failure;  ///< begins the message on any other status
    const char* indent;   ///< of the message on a port without a serial number
};

/// The path of an output about a port with a serial number.
std::string output_path(const hba_info& port, const char* file_name);

/// The command by which the management tool at `tool` is asked about a port, whose name in it is
/// `identifier`.
tool_command compose_query(const port_query& query, const hba_info& port, const char* identifier,
                           const char* tool);

/// Asks the management tool about a port and opens its output. `shown` is the port's name in the
/// message on the status of the command, which has no further effect.
/// Gives 0 with `file` open, 0 without for a port without a serial number (it is asked about, but
/// its output is not read), 51 when the output cannot be opened, was not to be replaced, or the
/// command was refused. An interrupted process ends here.
exit_status ask_about_port(const port_query& query, const hba_info& port,
                           const tool_command& command, const char* shown, input_file& file);
