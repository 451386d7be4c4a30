#pragma once

#include <string>

#include "base/exit_status.h"
#include "base/lines.h"
#include "inventory/port_records.h"

/// A command that asks for one port, and the texts around it.
struct port_query {
    const char* word;       ///< the command's name
    const char* file_name;  ///< end of the output file's name
    const char*
        command_format;   ///< tool, word, identifier, directory, serial number, function, file name
    const char* success;  ///< begins the message on a status of 0
    const char* failure;  ///< begins the message on any other status
    const char* indent;
};

/// The path of an output about a port with a serial number.
std::string output_path(const hba_info& port, const char* file_name);

/// Asks the management tool about a port and opens its output. `identifier` is the port's name
/// in the command, `shown` the one in the message on its status, which has no further effect.
/// Gives 0 with `file` open, 0 without for a port without a serial number (it is asked about, but
/// its output is not read), 51 when the output cannot be opened, was not to be replaced, or the
/// command was refused. An interrupted process ends here.
exit_status ask_about_port(const port_query& query, const hba_info& port, const char* identifier,
                           const char* shown, input_file& file);
