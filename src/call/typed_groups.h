#pragma once

#include <optional>
#include <string>
#include <vector>

#include "call/selection.h"

/// A list of the call by which controllers are selected.
struct typed_list {
    std::optional<list_kind> kind;  ///< none: groups of -pci-id
    std::string value;
};

/// The groups that the lists name and the selection does not cover, each once, as typed. The first
/// lists of each kind name groups together, then the second ones, and so on.
std::vector<std::string> dropped_groups(const std::vector<typed_list>& lists,
                                        const option_input* selection);

/// What the record selects, in the form of -pci-id.
std::string group_name(const option_input& group);
