#include "call/typed_groups.h"

#include <algorithm>
#include <map>
#include <string_view>

#include "base/text.h"

namespace {

using std::string_view;

struct typed_group {
    std::string text;
    option_input record;
};

// No run reads these texts, so nothing here may end the process.
void store_entry(option_input& record, list_kind kind, string_view entry) {
    constexpr std::size_t most_digits = 16;  // more might overflow
    const list_field& field = field_of(kind);
    set_text(field.text(record), entry);
    if (field.number != nullptr) {
        record.*field.number = entry.size() > most_digits ? -1 : number_of(entry, 16);
    }
}

void add_groups(string_view list, std::vector<typed_group>& groups) {
    while (const auto group = next_part(list, ',')) {
        typed_group named{std::string(*group), {}};
        std::size_t count = 0;
        for (string_view rest = *group; const auto id = next_part(rest, ':'); ++count) {
            store_entry(named.record, pci_id_fields[std::min(count, pci_id_fields.size() - 1)],
                        *id);
        }
        if (count > 0) {
            groups.push_back(named);
        }
    }
}

/// The lists that name groups together, by their kind.
using list_turn = std::map<list_kind, string_view>;

// A list without vendors and devices of its own continues the records before it.
void add_turn(const list_turn& turn, std::vector<option_input>& records) {
    if (turn.contains(list_of_vendor_ids) && turn.contains(list_of_device_ids)) {
        records.clear();
    }
    for (auto [kind, list] : turn) {
        for (std::size_t i = 0; const auto entry = next_part(list, ','); ++i) {
            records.resize(std::max(records.size(), i + 1));
            store_entry(records[i], kind, *entry);
        }
    }
}

std::vector<typed_group> groups_of(const std::vector<typed_list>& lists) {
    std::vector<typed_group> groups;
    std::map<list_kind, std::size_t> counts;
    std::vector<list_turn> turns(lists.size());
    for (const typed_list& list : lists) {
        if (list.kind) {
            turns[counts[*list.kind]++][*list.kind] = list.value;
        } else {
            add_groups(list.value, groups);
        }
    }
    std::vector<option_input> records;
    for (const list_turn& turn : turns) {
        add_turn(turn, records);
        for (const option_input& record : records) {
            groups.push_back({group_name(record), record});
        }
    }
    return groups;
}

bool covers(const option_input& selected, const option_input& group) {
    return string_view(selected.vendor_name) == group.vendor_name &&
           string_view(selected.model) == group.model && selected.vendor_id == group.vendor_id &&
           selected.device_id == group.device_id &&
           (!selects_by_four_ids(selected) || (selected.subvendor_id == group.subvendor_id &&
                                               selected.subdevice_id == group.subdevice_id));
}

bool is_covered(const option_input& group, const option_input* selection) {
    while (selection != nullptr && !covers(*selection, group)) {
        selection = selection->next;
    }
    return selection != nullptr;
}

}  // namespace

std::vector<std::string> dropped_groups(const std::vector<typed_list>& lists,
                                        const option_input* selection) {
    std::vector<std::string> dropped;
    for (const typed_group& group : groups_of(lists)) {
        if (!is_covered(group.record, selection) &&
            std::ranges::find(dropped, group.text) == dropped.end()) {
            dropped.push_back(group.text);
        }
    }
    return dropped;
}

std::string group_name(const option_input& group) {
    std::vector<const char*> parts{group.vendor_name, group.model, group.vendor_id_text,
                                   group.device_id_text};
    if (selects_by_four_ids(group)) {
        parts.push_back(group.subvendor_id_text);
        parts.push_back(group.subdevice_id_text);
    }
    std::string name;
    for (const char* part : parts) {
        name.append(name.empty() || *part == '\0' ? "" : ":").append(part);
    }
    return name.empty() ? "(empty group)" : name;
}
