#include "inventory/port_query.h"

#include <string>

#include "frame/output.h"
#include "frame/paths.h"
#include "inventory/management_tool.h"

exit_status ask_about_port(const port_query& query, const hba_info& port, const char* identifier,
                           const char* shown, input_file& file) {
    tool_command command = compose_command(
        query.command_format, {pHBAFlashCmdPath, query.word, identifier, pHBAWorkingPath,
                               port.SerialNo, port.PCIFunction, query.file_name});
    // The serial number becomes part of a file name that the shell opens for writing.
    command.unsafe = command.unsafe || leaves_directory(port.SerialNo);
    Print(6, "%s", command.line.c_str());
    const std::optional<int> status = run_command(command);
    if (!status) {
        return RET_FATAL_ERROR;
    }
    Print(6, "%s, \"hbacmd %s %s\" command returned code %d.\n",
          *status == 0 ? query.success : query.failure, query.word, shown, *status);
    if (!has_serial_number(port)) {
        Print(1, "%sNo serial number => SKIP!\n", query.indent);
        return RET_OK;
    }
    const std::string path =
        fill_in("%s/%s_%s_%s", {pHBAWorkingPath, port.SerialNo, port.PCIFunction, query.file_name});
    file = open_for_reading(path.c_str());
    return file == nullptr ? STATUS_OUTPUT_FILE_MISSING : RET_OK;
}
