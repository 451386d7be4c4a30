#include "check/subsystem_validation.h"

#include <optional>
#include <string>
#include <string_view>

#include "base/output.h"
#include "base/text.h"

namespace {

using std::string_view;

/// What the products of a row's triples have shown so far.
struct product_state {
    bool accepted = false;
    std::string identified_refs;  // the members that matched, joined by commas
};

void print_subsystem(int level, const target_mapping_entry& target) {
    Print(level, "\t\t\t\t%s\n", target.VendorID);
    Print(level, "\t\t\t\t%s\n", target.ProductID);
    Print(level, "\t\t\t\t%s\n", target.ProductVersion);
}

void accept(product_state& state, string_view member) {
    state.accepted = true;
    Print(1, "\t\t\t--> OK\n");
    if (!state.identified_refs.empty()) {
        state.identified_refs += ',';
    }
    state.identified_refs += member;
}

void print_member(const char* indent, string_view member, const char* product) {
    Print(1, "%sCheck subsystem: '%.*s' Attached subsystem: '%s'", indent,
          static_cast<int>(member.size()), member.data(), product);
}

// The members before a comma are always tested, and an empty one fits every product. The last
// member is tested only while nothing is accepted, and an empty one fits nothing.
void test_products(product_state& state, string_view products, const char* product) {
    if (products.empty()) {
        state.accepted = true;
        return;
    }
    for (auto comma = products.find(','); comma != string_view::npos; comma = products.find(',')) {
        const string_view member = products.substr(0, comma);
        print_member("\t\t\t", member, product);
        if (string_view(product).starts_with(member)) {
            accept(state, member);
            return;
        }
        Print(1, "\t\t\t--> Invalid subsystem!\n");
        products.remove_prefix(comma + 1);
    }
    if (state.accepted) {
        return;
    }
    print_member("\t\t", products, product);
    if (!products.empty() && string_view(product).starts_with(products)) {
        accept(state, products);
    } else {
        Print(1, "\t\t\t--> Invalid subsystem!\n");
    }
}

// Whether the members found so far decide about the port; if not, the next triple is tested.
bool group_settles(const product_state& state, const char* products) {
    if (!state.accepted || state.identified_refs.empty()) {
        return false;
    }
    if (CheckModelGroupConsistency(products, state.identified_refs.c_str())) {
        Print(1, "\t\t\tAll reference subsystems appear in the same group: %s\n", products);
        return true;
    }
    Print(1,
          "\t\t\tAt least one reference subsystem is not member of group: %s\n"
          "\tSkip this group.\n",
          products);
    return false;
}

void print_invalid(const target_mapping_entry& target) {
    Print(6, "\n");
    Print(6, "\n\t\tInvaild attached storage sub-system found.\n");
    print_subsystem(6, target);
    Print(6, "\n");
}

/// What a comma with nothing behind it means on the way from the last member to the first.
enum class empty_member { ends_the_walk, is_passed_over };

// Cuts the last member off `list`; no value when no comma is left.
std::optional<string_view> cut_last_member(string_view& list) {
    const std::size_t comma = list.rfind(',');
    if (comma == string_view::npos) {
        return std::nullopt;
    }
    const string_view member = list.substr(comma + 1);
    list = list.substr(0, comma);
    return member;
}

bool is_member(string_view group, string_view reference, empty_member rule) {
    while (const auto member = cut_last_member(group)) {
        if (member->empty() && rule == empty_member::ends_the_walk) {
            break;
        }
        if (!member->empty() && *member == reference) {
            return true;
        }
    }
    return group == reference;
}

bool find_reference(const char* group, string_view reference, empty_member rule) {
    const bool found = is_member(group, reference, rule);
    if (found) {
        Print(1, "\tReference subsystem %.*s found in Group: %s\n",
              static_cast<int>(reference.size()), reference.data(), group);
    }
    return found;
}

}  // namespace

bool CheckModelGroupConsistency(const char* group, const char* references) {
    Print(1, "\tAlready identified reference subsystems: %s  Subsystem group: %s\n", references,
          group);
    string_view rest = references;
    for (auto reference = cut_last_member(rest); reference && !reference->empty();
         reference = cut_last_member(rest)) {
        if (find_reference(group, *reference, empty_member::ends_the_walk)) {
            return true;
        }
    }
    if (find_reference(group, rest, empty_member::is_passed_over)) {
        return true;
    }
    Print(1, "\tReference subsystem '%.*s' not in Group: >%s< => Skip this group.\n",
          static_cast<int>(rest.size()), rest.data(), group);
    return false;
}

const fc_periphery_info* find_allowing_triple(const target_mapping_entry& target,
                                              const fc_config_file_entry& row) {
    const fc_periphery_info* allowing = nullptr;
    product_state state;
    for (const fc_periphery_info* triple = row.periphery_list; triple != nullptr;
         triple = triple->next) {
        if (is_blank(triple->vendor) || string_view(triple->vendor) != target.VendorID) {
            continue;
        }
        Print(1, "\n");
        Print(1, "\t\tAttached storage sub-system:\n");
        print_subsystem(1, target);
        test_products(state, triple->product_list, target.ProductID);
        if (state.accepted && allowing == nullptr) {
            allowing = triple;
        }
        if (group_settles(state, triple->product_list)) {
            break;
        }
    }
    return allowing;
}

bool DoIndividualSubSystemCheck(const hba_info* port, fc_config_file_entry** row,
                                global_ctrl_flags* flags, const fc_periphery_info** allowed_by) {
    const target_mapping_entry& target = *port->target_mapping;
    const fc_periphery_info* allowing = find_allowing_triple(target, **row);
    if (allowed_by != nullptr) {
        *allowed_by = allowing;
    }
    if (allowing != nullptr) {
        Print(1, "\n");
        return true;
    }
    flags->InvalidCtrlSubsystemCombinationFound = 1;
    print_invalid(target);
    return false;
}
