#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

/// One selected controller. The walks read the four numbers and `next`; the texts are as typed,
/// cut to their fields, and only printed.
struct option_input {
    char vendor_name[20];
    char model[20];
    std::int32_t vendor_id;
    char vendor_id_text[8];
    std::int32_t subvendor_id;  ///< below 1: selected by vendor and device alone
    char subvendor_id_text[8];
    std::int32_t device_id;
    char device_id_text[8];
    std::int32_t subdevice_id;
    char subdevice_id_text[8];
    option_input* next;
};

/// The selected controllers, as the last list option left them; null when nothing is selected.
extern option_input* p_option_input;

/// The option whose list save_list_of_ctrl_options is given.
enum list_kind : unsigned {
    list_of_vendor_ids,
    list_of_subvendor_ids,
    list_of_vendor_names,
    list_of_device_ids,
    list_of_subdevice_ids,
    list_of_models,
};

/// The fields that a list of this kind fills.
struct list_field {
    std::span<char> (*text)(option_input&);
    std::int32_t option_input::*number;  ///< null where the entries are names
};
const list_field& field_of(list_kind kind);

/// The fields of a -pci-id group, in their order.
inline constexpr std::array pci_id_fields{list_of_vendor_ids, list_of_device_ids,
                                          list_of_subvendor_ids, list_of_subdevice_ids};

/// Whether the record selects by all four identifiers rather than by vendor and device alone.
bool selects_by_four_ids(const option_input& selection);

/// The group or entry that is being read, for a process that ends over it; empty: none is.
std::string_view group_being_read();

/// A new zeroed record, which lives until the process ends; null when memory ran out.
option_input* get_new_option_input_buffer();

/// Writes the entries of a comma list into one field of the chain's records, position by
/// position from the first record on; records are added as needed. Gives the chain's head, null
/// while there is no record. Ends the process with 55 at a bad identifier, 54 without memory.
option_input* save_list_of_ctrl_options(const char* list, list_kind kind);

/// The same for groups "vendor:device[:subvendor:subdevice]", one record a group, in a chain of
/// its own. `list` has at most 1023 characters. Ends the process with 3 at a group of 1 or 3
/// fields, with 55 at a bad identifier or a fifth field, with 54 without memory.
option_input* save_list_of_pci_ids(const char* list);

/// Releases both chains, and with them the selection, for a process that reads more than one
/// command line.
void release_selections();
