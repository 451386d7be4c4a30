#include "call/selection.h"

#include <array>
#include <list>
#include <span>
#include <string_view>

#include "base/end_process.h"
#include "base/list.h"
#include "base/output.h"
#include "base/text.h"

option_input* p_option_input = nullptr;

namespace {

struct kind_row {
    const char* title;  ///< what the list holds
    const char* label;  ///< what one entry is
    list_field field;
};

// In the order of list_kind.
constexpr std::array<kind_row, 6> kinds{{
    {"vendor-ids", "Vendor-Id", {text_of<&option_input::vendor_id_text>, &option_input::vendor_id}},
    {"sub-vendor-ids",
     "SubVendor-Id",
     {text_of<&option_input::subvendor_id_text>, &option_input::subvendor_id}},
    {"vendor-names", "Vendor", {text_of<&option_input::vendor_name>, nullptr}},
    {"device-ids", "Device-Id", {text_of<&option_input::device_id_text>, &option_input::device_id}},
    {"sub-device-ids",
     "SubDevice-Id",
     {text_of<&option_input::subdevice_id_text>, &option_input::subdevice_id}},
    {"controller-model strings", "Model", {text_of<&option_input::model>, nullptr}},
}};

std::list<option_input> records;
option_input* comma_lists = nullptr;
option_input* pci_ids = nullptr;
std::string_view being_read;

// The two kinds of list report their errors at different levels.
void store_entry(option_input& record, const kind_row& kind, std::string_view entry,
                 int error_level) {
    set_text(kind.field.text(record), entry);
    if (kind.field.number == nullptr) {
        return;
    }
    record.*kind.field.number = number_of(entry, 16);
    if (record.*kind.field.number < 0) {
        Print(error_level, "Error: %s %s is not a valid hex value!\n", kind.label,
              kind.field.text(record).data());
        end_process(RET_FATAL_ERROR);
    }
}

// The record that `link` leads to; made when there is none yet.
option_input& follow(option_input*& link) {
    if (link == nullptr) {
        link = get_new_option_input_buffer();
    }
    if (link == nullptr) {
        print_out_of_memory();
        end_process(RET_MEMALLOC_FAIL);
    }
    return *link;
}

// The text before the first comma; `rest` keeps the text behind it. A part of a comma list is never
// empty, but a group can be, and an empty one ends the list.
std::string_view next_group(std::string_view& rest) {
    const std::size_t comma = rest.find(',');
    const std::string_view group = rest.substr(0, comma);
    rest = comma == std::string_view::npos ? std::string_view{} : rest.substr(comma + 1);
    return group;
}

void save_group(option_input& record, std::string_view group, const char* list) {
    std::size_t count = 0;
    while (const auto field = next_part(group, ':')) {
        if (count == pci_id_fields.size()) {
            end_process(RET_FATAL_ERROR);
        }
        store_entry(record, kinds[pci_id_fields[count++]], *field, 2);
    }
    if (count == 1 || count == 3) {
        Print(2, "Error: List of PCI-IDs %s is incomplete!\n", list);
        end_process(RET_BAD_CALL);
    }
}

}  // namespace

const list_field& field_of(list_kind kind) { return kinds[kind].field; }

bool selects_by_four_ids(const option_input& selection) { return selection.subvendor_id > 0; }

std::string_view group_being_read() { return being_read; }

option_input* get_new_option_input_buffer() { return new_record(records); }

option_input* save_list_of_ctrl_options(const char* list, list_kind kind) {
    const kind_row& row = kinds[kind];
    Print(3, "List of input %s: %s\n", row.title, list);

    std::string_view rest = list;
    option_input** link = &comma_lists;
    for (int number = 0; const auto entry = next_part(rest, ','); ++number) {
        option_input& record = follow(*link);
        being_read = *entry;
        store_entry(record, row, *entry, 1);
        if (row.field.number != nullptr) {
            Print(3, "%d. %s: 0x%x\n", number, row.label,
                  static_cast<unsigned>(record.*row.field.number));
        } else {
            Print(3, "%d. %s: %s\n", number, row.label, row.field.text(record).data());
        }
        link = &record.next;
    }
    being_read = {};
    return comma_lists;
}

option_input* save_list_of_pci_ids(const char* list) {
    Print(3, "\nList of input pci-ids: \"%s\"\n", list);

    std::string_view rest = list;
    std::string_view group = next_group(rest);
    option_input* record = &follow(pci_ids);
    while (!group.empty()) {
        being_read = group;
        save_group(*record, group, list);
        group = next_group(rest);
        if (!group.empty()) {
            record = &follow(record->next);
        }
    }
    being_read = {};
    for (record = pci_ids; record != nullptr; record = record->next) {
        Print(6, "\n\tVendor-Id 0x%x\n", static_cast<unsigned>(record->vendor_id));
        Print(6, "\tDevice-Id 0x%x\n", static_cast<unsigned>(record->device_id));
        Print(6, "\tSubVendor-Id 0x%x\n", static_cast<unsigned>(record->subvendor_id));
        Print(6, "\tSubDevice-Id 0x%x\n", static_cast<unsigned>(record->subdevice_id));
    }
    return pci_ids;
}

void release_selections() {
    records.clear();
    comma_lists = nullptr;
    pci_ids = nullptr;
    p_option_input = nullptr;
}
