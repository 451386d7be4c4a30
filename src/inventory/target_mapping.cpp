#include "inventory/target_mapping.h"

#include <cstring>
#include <string_view>

#include "base/list.h"
#include "base/output.h"
#include "call/paths.h"
#include "inventory/port_query.h"
#include "tool/output_files.h"

namespace {

using entry = target_mapping_entry;

constexpr char head_line[] = "Target Mapping for";
constexpr char lun_key[] = "FCP LUN";
constexpr int head_lines = 4;  // a colon in them opens no entry

constexpr key_row<entry> mapping_keys[] = {
    {head_line},
    {lun_key, text_of<&entry::FCPLun>},
    {"SCSI OS Lun", text_of<&entry::SCSIOSLun>},
    {"Lun Device Name", text_of<&entry::LunDeviceName>},
    {"Vendor ID", text_of<&entry::VendorID>},
    {"Product ID", text_of<&entry::ProductID>},
    {"Product Version", text_of<&entry::ProductVersion>},
    {"Type", text_of<&entry::Type>},
    {"SCSI Capacity", text_of<&entry::SCSICapacity>},
    {"Block Size", text_of<&entry::BlockSize>},
};

constexpr port_query mapping_query{
    .word = "targetmapping",
    .file_name = mapping_file_name,
    .command_format = "\n\t\t\t%s %s %s > %s/%s_%s_%s\n",
    .success = "\n\t\t\tSuccess",
    .failure = "\n\n\t\t\tFail",
    .indent = "\t\t\t",
};

// What the line of a key says beside its value: the output has its head, or a LUN begins.
void note_key(const key_row<entry>& row, mapping_facts& facts) {
    if (row.field == nullptr) {
        facts.has_head = true;
    } else if (row.key == lun_key) {
        facts.other_luns.emplace_back();
    }
}

// What can become of a line, in the order of the tests; all LUNs of a port write into one entry:
//   - behind the head, the first line with a colon: an entry for the port; then as any line
//   - it begins with no key: passed over
//   - the head line: echoed
//   - a key while the port has no entry: passed over
//   - a key: the value, where the line has a colon, fills the field; then the field is echoed
exit_status read_line(char* line, int number, hba_info& port, mapping_facts* facts) {
    if (number > head_lines && port.target_mapping == nullptr &&
        std::strchr(line, ':') != nullptr) {
        port.target_mapping = get_new_target_mapping_entry();
        if (port.target_mapping == nullptr) {
            print_out_of_memory();
            return RET_MEMALLOC_FAIL;
        }
    }
    const key_row<entry>* row = find_key(mapping_keys, line);
    if (row == nullptr) {
        return RET_OK;
    }
    if (facts != nullptr) {
        note_key(*row, *facts);
    }
    if (row->field == nullptr) {
        Print(6, "\n\t\t\t%s %s\n", head_line, port.PortWWN);
        return RET_OK;
    }
    if (port.target_mapping == nullptr) {
        return RET_OK;
    }
    const bool is_stored = store_value(*row, *port.target_mapping, line) != nullptr;
    if (is_stored && facts != nullptr && !facts->other_luns.empty()) {
        set_text(row->field(facts->other_luns.back()), row->field(*port.target_mapping).data());
    }
    Print(6, "\t\t\t%s\n", row->field(*port.target_mapping).data());
    return RET_OK;
}

// Of all LUNs that were read.
void keep_other_luns(const entry* last, mapping_facts& facts) {
    std::erase_if(facts.other_luns, [&](const entry& lun) {
        return last == nullptr || lun.VendorID[0] == '\0' || lun.ProductID[0] == '\0' ||
               (std::string_view(lun.VendorID) == last->VendorID &&
                std::string_view(lun.ProductID) == last->ProductID);
    });
}

exit_status collect_mapping_of(hba_info& port) {
    input_file file;
    const exit_status status = ask_about_port(
        mapping_query, port, compose_mapping_query(port, pHBAFlashCmdPath), port.PortWWN, file);
    if (file.stream == nullptr) {
        return status;
    }
    return read_target_mapping(file, port);
}

}  // namespace

tool_command compose_mapping_query(const hba_info& port, const char* tool) {
    return compose_query(mapping_query, port, port.PortWWN, tool);
}

std::span<const key_row<entry>> target_mapping_keys() { return mapping_keys; }

exit_status read_target_mapping(const input_file& file, hba_info& port, mapping_facts* facts) {
    char line[line_width];
    for (int number = 1; next_line(file, line); ++number) {
        if (const exit_status status = read_line(line, number, port, facts)) {
            return status;
        }
    }
    if (facts != nullptr) {
        keep_other_luns(port.target_mapping, *facts);
    }
    return status_at_end(file);
}

exit_status collect_target_mappings() {
    for (hba_info* port : entries(p_hba_info_list)) {
        if (!is_fc_or_fcoe(*port)) {
            continue;
        }
        if (const exit_status status = collect_mapping_of(*port)) {
            return status;
        }
    }
    return RET_OK;
}
