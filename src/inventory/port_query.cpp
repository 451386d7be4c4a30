#include "inventory/port_query.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "base/interruption.h"
#include "base/list.h"
#include "base/output.h"
#include "base/progress.h"
#include "call/paths.h"
#include "tool/output_files.h"

namespace {

// Serial number and function become the name of a file that the shell opens for writing.
bool leads_to_another_file(const hba_info& port, std::string_view part) {
    if (!has_serial_number(port)) {
        // "n/a" gives a file in a directory "n", which nobody creates; only ".." leads out of it.
        return leaves_directory(part);
    }
    // The shell would open the file that is named before the blank, or a file in another directory,
    // for example the table or an image.
    return holds_blank(part) || part.find('/') != std::string_view::npos;
}

void note_question(const hba_info& port) {
    if (!progress_may_show()) {
        return;
    }
    const auto ports = entries(p_hba_info_list);
    const auto place = std::find(ports.begin(), ports.end(), &port) - ports.begin() + 1;
    note_progress(fill_in("Asking the management tool: port %s of %s ...", std::to_string(place),
                          std::to_string(ports.size())));
}

void run_and_report(const port_query& query, const tool_command& command, const char* shown) {
    const int status = run_query(command);
    Print(6, "%s, \"hbacmd %s %s\" command returned code %d.\n",
          status == 0 ? query.success : query.failure, query.word, shown, status);
    // Half an output could look like no storage.
    end_by_noted_signal();
}

}  // namespace

std::string output_path(const hba_info& port, const char* file_name) {
    return fill_in("%s/%s_%s_%s", pHBAWorkingPath, port.SerialNo, port.PCIFunction, file_name);
}

tool_command compose_query(const port_query& query, const hba_info& port, const char* identifier,
                           const char* tool) {
    tool_command command =
        compose_command(query.command_format, tool, query.word, identifier, pHBAWorkingPath,
                        port.SerialNo, port.PCIFunction, query.file_name);
    for (const char* part : {port.SerialNo, port.PCIFunction}) {
        if (leads_to_another_file(port, part)) {
            mark_unsafe(command, part);
        }
    }
    return command;
}

exit_status ask_about_port(const port_query& query, const hba_info& port,
                           const tool_command& command, const char* shown, input_file& file) {
    const std::string path = output_path(port, query.file_name);
    Print(6, "%s", command.line.c_str());
    const bool is_run = !is_refused(command) && remove_old_output(path);
    if (is_run) {
        note_question(port);
        run_and_report(query, command, shown);
    }
    if (!has_serial_number(port)) {
        Print(1, "%sNo serial number => SKIP!\n", query.indent);
        return RET_OK;
    }
    if (!is_run) {
        print_not_opened(path);
        return STATUS_OUTPUT_FILE_MISSING;
    }
    file = open_output(path);
    return file.stream == nullptr ? STATUS_OUTPUT_FILE_MISSING : RET_OK;
}
