#include "inventory/port_query.h"

#include <string>

#include "base/output.h"
#include "call/paths.h"
#include "inventory/management_tool.h"

namespace {

// Serial number and function become the name of a file that the shell opens for writing. Behind a
// blank it would open the file of another name, behind a slash one in another directory: the
// table or an image, say. All that begins "n/a" leads to no file, as nothing makes its directory.
bool names_a_file(const hba_info& port) {
    const std::string name = std::string(port.SerialNo) + port.PCIFunction;
    return has_serial_number(port) ? name.find_first_of(" /") == std::string::npos
                                   : !leaves_directory(name);
}

}  // namespace

exit_status ask_about_port(const port_query& query, const hba_info& port, const char* identifier,
                           const char* shown, input_file& file) {
    tool_command command = compose_command(
        query.command_format, {pHBAFlashCmdPath, query.word, identifier, pHBAWorkingPath,
                               port.SerialNo, port.PCIFunction, query.file_name});
    command.unsafe = command.unsafe || !names_a_file(port);
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
