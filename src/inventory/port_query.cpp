#include "inventory/port_query.h"

#include <string>
#include <string_view>

#include "base/output.h"
#include "call/paths.h"
#include "inventory/management_tool.h"

namespace {

// Serial number and function become the name of a file that the shell opens for writing.
bool leads_to_another_file(const hba_info& port, std::string_view part) {
    if (!has_serial_number(port)) {
        // "n/a" names a file in a directory "n", which nothing makes; only ".." leads out of it.
        return leaves_directory(part);
    }
    // The shell would open the file that is named before the blank, or one in another directory:
    // the table or an image, say.
    return part.find_first_of(" /") != std::string_view::npos;
}

tool_command compose_query(const port_query& query, const hba_info& port, const char* identifier) {
    tool_command command = compose_command(
        query.command_format, {pHBAFlashCmdPath, query.word, identifier, pHBAWorkingPath,
                               port.SerialNo, port.PCIFunction, query.file_name});
    for (const char* part : {port.SerialNo, port.PCIFunction}) {
        if (leads_to_another_file(port, part)) {
            mark_unsafe(command, part);
        }
    }
    return command;
}

void run_query(const port_query& query, const tool_command& command, const char* shown) {
    const int status = run_command(command, command_kind::query);
    Print(6, "%s, \"hbacmd %s %s\" command returned code %d.\n",
          status == 0 ? query.success : query.failure, query.word, shown, status);
    // Half an output would say that there is no storage, say.
    end_by_noted_signal();
}

}  // namespace

std::string output_path(const hba_info& port, const char* file_name) {
    return fill_in("%s/%s_%s_%s", {pHBAWorkingPath, port.SerialNo, port.PCIFunction, file_name});
}

exit_status ask_about_port(const port_query& query, const hba_info& port, const char* identifier,
                           const char* shown, input_file& file) {
    const tool_command command = compose_query(query, port, identifier);
    const std::string path = output_path(port, query.file_name);
    Print(6, "%s", command.line.c_str());
    const bool is_run = !is_refused(command) && remove_old_output(path);
    if (is_run) {
        run_query(query, command, shown);
    }
    if (!has_serial_number(port)) {
        Print(1, "%sNo serial number => SKIP!\n", query.indent);
        return RET_OK;
    }
    if (!is_run) {
        print_not_opened(path);
        return STATUS_OUTPUT_FILE_MISSING;
    }
    file = open_for_reading(path);
    return file.stream == nullptr ? STATUS_OUTPUT_FILE_MISSING : RET_OK;
}
