#include "inventory/port_list.h"

#include "base/interruption.h"
#include "base/lines.h"
#include "base/output.h"
#include "base/progress.h"
#include "call/paths.h"
#include "tool/output_files.h"
#include "tool/tool_command.h"

namespace {

using port_key = key_row<hba_info>;

constexpr port_key port_keys[] = {
    {.key = "Port WWN", .field = text_of<&hba_info::PortWWN>, .echo = "PortWWN: ", .opens = true},
    {"Node WWN", text_of<&hba_info::NodeWWN>, "NodeWWN: "},
    {"Fabric Name", text_of<&hba_info::FabricName>, "Fabric_Name: "},
    {.key = "Permanent MAC",
     .field = text_of<&hba_info::PermanentMAC>,
     .echo = "PermanentMAC: ",
     .opens = true},
    {"Current MAC", text_of<&hba_info::CurrentMAC>, "CurrentMAC: "},
    {"Flags", text_of<&hba_info::Flags>, ""},
    {"Host Name", text_of<&hba_info::HostName>, ""},
    {"Mfg", text_of<&hba_info::Mfg>, ""},
    {"Serial No", text_of<&hba_info::SerialNo>, ""},
    {"Port Number", text_of<&hba_info::PortNumber>, ""},
    {.key = "Mode", .field = text_of<&hba_info::Mode>, .echo = "", .not_followed_by = 'l'},
    {"PCI Bus Number", text_of<&hba_info::PCIBusNumber>, ""},
    {"PCI Function", text_of<&hba_info::PCIFunction>, ""},
    {"Port Type", text_of<&hba_info::PortType>, ""},
    {"Model", text_of<&hba_info::Model>, ""},
};

// Only the model is echoed as it was stored; the others show the blanks in front of the value.
void echo_value(const port_key& row, hba_info& port, int number, const char* text) {
    const bool is_model = row.field(port).data() == port.Model;
    if (row.opens) {
        Print(6, "\n%d)\t%s%s\n", number, row.echo, text);
    } else {
        Print(6, "\t%s%s\n", row.echo, is_model ? port.Model : text);
    }
}

// What can become of a line, in the order of the tests:
//   - it begins with no key: passed over
//   - an opening key: a new port, which the lines behind it fill; then as any key
//   - a key ahead of the first opening line, or without a colon: passed over
//   - a key and a colon: the value fills the field of the port and is echoed
exit_status read_line(char* line, hba_info*& port, int& number) {
    const port_key* row = find_key(port_keys, line);
    if (row == nullptr) {
        return RET_OK;
    }
    if (row->opens) {
        port = get_new_hba_info_entry();
        if (port == nullptr) {
            print_out_of_memory();
            return RET_MEMALLOC_FAIL;
        }
        ++number;
    }
    if (port == nullptr) {
        return RET_OK;
    }
    if (const char* text = store_value(*row, *port, line)) {
        echo_value(*row, *port, number, text);
    }
    return RET_OK;
}

// With both levels at 0 the command's status is not looked at: the stage goes on with whatever
// the file holds.
exit_status judge_listing(int status) {
    if (!level_shows(1)) {
        return RET_OK;
    }
    if (status != 0) {
        Print(4, "\nFail, \"hbacmd listhbas\" command returned code %d.\n", status);
        return RET_FATAL_ERROR;
    }
    Print(6, "\nSuccess, \"hbacmd listhbas\" command returned code %d.\n", status);
    return RET_OK;
}

exit_status run_listing(const std::string& path) {
    const tool_command command = compose_listing(pHBAFlashCmdPath);
    Print(6, "%s", command.line.c_str());
    if (is_refused(command)) {
        return RET_FATAL_ERROR;
    }
    if (!remove_old_output(path)) {
        print_not_opened(path);
        return STATUS_OUTPUT_FILE_MISSING;
    }
    note_progress("Asking the management tool: list of ports ...");
    const exit_status status = judge_listing(run_query(command));
    if (status != RET_OK) {
        keep_status();
    }
    end_by_noted_signal();
    return status;
}

}  // namespace

tool_command compose_listing(const char* tool) {
    tool_command command =
        compose_command("%s %s > %s/%s \n", tool, "listhbas", pHBAWorkingPath, list_file_name);
    // The shell would write into the file that is named before the blank.
    if (holds_blank(pHBAWorkingPath)) {
        mark_unsafe(command, pHBAWorkingPath);
    }
    return command;
}

std::span<const port_key> port_list_keys() { return port_keys; }

exit_status read_port_list(const input_file& file) {
    hba_info* port = nullptr;
    int number = 0;
    char line[line_width];
    while (next_line(file, line)) {
        if (const exit_status status = read_line(line, port, number)) {
            return status;
        }
    }
    return status_at_end(file);
}

exit_status collect_port_list() {
    const std::string path = port_list_path();
    if (const exit_status status = run_listing(path)) {
        return status;
    }
    const input_file file = open_output(path);
    return file.stream == nullptr ? STATUS_OUTPUT_FILE_MISSING : read_port_list(file);
}
