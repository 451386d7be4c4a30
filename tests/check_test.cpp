#include <gtest/gtest.h>

#include <array>

#include "check/check_walk.h"
#include "check/controller_check.h"
#include "check/subsystem_validation.h"
#include "conditions/conditions_file.h"
#include "frame/options.h"
#include "frame/output.h"
#include "frame/text.h"
#include "inventory/flash_ports.h"
#include "support/support.h"

namespace {

using std::string;

using storage = std::pair<string, string>;  // vendor and products, or vendor and product

// A row of the table for ids 1:2, whose storage is given.
fc_config_file_entry** add_row(const std::vector<storage>& allowed) {
    fc_config_file_entry& row = *get_new_config_file_entry();
    row.vendor_id = 1;
    row.device_id = 2;
    fc_periphery_info** link = &row.periphery_list;
    for (const auto& [vendor, products] : allowed) {
        *link = get_new_periphery_info_entry();
        set_text((*link)->vendor, vendor);
        set_text((*link)->product_list, products);
        link = &(*link)->next;
    }
    return fc_config_entry_list;
}

hba_info& add_port(const char* serial, const char* place, const char* type,
                   const storage& attached) {
    hba_info& port = *get_new_hba_info_entry();
    set_text(port.SerialNo, serial);
    set_text(port.PCIFunction, place);
    set_text(port.PortNumber, place);
    set_text(port.PortType, type);
    port.attributes = get_new_hba_attributes_entry();
    port.attributes->vendor_id = 1;
    port.attributes->device_id = 2;
    if (!attached.first.empty()) {
        port.target_mapping = get_new_target_mapping_entry();
        set_text(port.target_mapping->VendorID, attached.first);
        set_text(port.target_mapping->ProductID, attached.second);
        set_text(port.target_mapping->ProductVersion, "1.0");
    }
    return port;
}

const string block = "\n\t\tAttached storage sub-system:\n\t\t\t\tV\n\t\t\t\tAlpha1\n\t\t\t\t1.0\n";

string three_tabs(const string& member) {
    return "\t\t\tCheck subsystem: '" + member + "' Attached subsystem: 'Alpha1'";
}

string two_tabs(const string& member) { return three_tabs(member).substr(1); }

const string ok = "\t\t\t--> OK\n";
const string invalid = "\t\t\t--> Invalid subsystem!\n";

string group_passed(const string& reference, const string& group) {
    return "\tAlready identified reference subsystems: " + reference +
           "  Subsystem group: " + group + "\n\tReference subsystem " + reference +
           " found in Group: " + group +
           "\n\t\t\tAll reference subsystems appear in the same group: " + group + "\n";
}

TEST(Validation, TriplesAreTriedInTheirOrder) {
    struct {
        std::vector<storage> allowed;
        bool valid;
        string text;
    } const cases[] = {
        {{}, false, ""},
        {{{"W", ""}, {"v", ""}, {"", ""}, {"  ", ""}, {"Vx", ""}}, false, ""},
        {{{"V", ""}}, true, block + "\n"},
        {{{"V", "Alpha"}},
         true,
         block + two_tabs("Alpha") + ok + group_passed("Alpha", "Alpha") + "\n"},
        {{{"V", "Alpha10"}}, false, block + two_tabs("Alpha10") + invalid},
        {{{"V", "B,Alp,Alpha1"}},
         true,
         block + three_tabs("B") + invalid + three_tabs("Alp") + ok +
             group_passed("Alp", "B,Alp,Alpha1") + "\n"},
        {{{"V", "B,A"}},
         true,
         block + three_tabs("B") + invalid + two_tabs("A") + ok + group_passed("A", "B,A") + "\n"},
        {{{"V", ",B"}}, true, block + three_tabs("") + ok + "\n"},
        {{{"V", "B,"}}, false, block + three_tabs("B") + invalid + two_tabs("") + invalid},
        {{{"V", "B"}, {"V", "A"}, {"V", "C"}},
         true,
         block + two_tabs("B") + invalid + block + two_tabs("A") + ok + group_passed("A", "A") +
             "\n"},
        {{{"V", ""}, {"V", "B,C"}, {"V", "D"}},
         true,
         block + block + three_tabs("B") + invalid + block + "\n"},
    };
    for (const auto& c : cases) {
        reset_run();
        fc_config_file_entry** row = add_row(c.allowed);
        const hba_info& port = add_port("A", "0", "FCoE", {"V", "Alpha1"});
        global_ctrl_flags flags;
        bool valid = false;
        EXPECT_EQ(output_of([&] { valid = DoIndividualSubSystemCheck(&port, row, &flags); }),
                  c.text);
        EXPECT_EQ(valid, c.valid) << c.text;
        EXPECT_EQ(flags.InvalidCtrlSubsystemCombinationFound, c.valid ? 0 : 1);
    }
}

TEST(Validation, GroupsHoldAtLeastOneReference) {
    struct {
        const char *group, *references, *said;  // "+name" found, "-name" not
    } const cases[] = {
        {"B,C", "A,B", "+B"}, {"A,C", "A,B", "+A"},    {"A,C", "X,Y", "-X"},
        {"A,B", "A", "+A"},   {"A", "A", "+A"},        {"AB", "A", "-A"},
        {"A,,B", "A", "+A"},  {"A,B,", "A,B", "+A"},   {"A,B", "A,B,", "-A,B"},
        {"A,B,", "B", "+B"},  {"X,A,", "Y,X,A", "-Y"}, {"", "A", "-A"},
    };
    reset_run();
    for (const auto& c : cases) {
        const string group = c.group;
        const string name = string(c.said).substr(1);
        const bool found = c.said[0] == '+';
        bool result = false;
        string out = output_of([&] { result = CheckModelGroupConsistency(c.group, c.references); });
        EXPECT_EQ(result, found) << group << " " << c.references;
        EXPECT_EQ(out,
                  string("\tAlready identified reference subsystems: ") + c.references +
                      "  Subsystem group: " + group + "\n" +
                      (found ? "\tReference subsystem " + name + " found in Group: " + group + "\n"
                             : "\tReference subsystem '" + name + "' not in Group: >" + group +
                                   "< => Skip this group.\n"));
    }
}

// Two controllers C and D of two FCoE ports behind an iSCSI flash port each.
TEST(CheckWalk, FlagsAndResultsByMode) {
    struct {
        std::array<storage, 4> attached;  // C1, C2, D1, D2; an empty vendor: none
        std::array<int, 4> flags;         // invalid, matching, controller-wide, vendor-wide
        int reference;                    // index of the port, -1: none
        std::array<bool, 3> passed;       // valid, controller-wide, vendor-wide
    } const cases[] = {
        {{{{"V", "P"}, {"V", "P"}, {}, {}}}, {0, 1, 1, 1}, 0, {true, true, true}},
        {{{{"X", "P"}, {"V", "P"}, {}, {}}}, {1, 1, 0, 0}, 1, {false, false, false}},
        {{{{"V", "P"}, {"W", "P"}, {}, {}}}, {0, 1, 0, 0}, 0, {true, false, false}},
        {{{{"V", "P"}, {"V", "P"}, {"W", "P"}, {"W", "P"}}}, {0, 1, 1, 0}, 0, {true, true, false}},
        {{{{}, {}, {"W", "P"}, {"W", "P"}}}, {0, 1, 1, 1}, 2, {true, true, true}},
        {{{{"V", "P"}, {"X", "P"}, {}, {}}}, {1, 1, 0, 0}, 0, {false, false, false}},
        {{{{}, {}, {}, {}}}, {0, 1, 1, 1}, -1, {true, true, true}},
    };
    int* const modes[] = {&active_option_valid_subsystem, &active_option_ctrl_wide_identical,
                          &active_option_ctrl_vendor_wide_identical};
    for (const auto& c : cases) {
        for (std::size_t mode = 0; mode < 3; ++mode) {
            reset_run();
            *modes[mode] = 1;
            add_row({{"V", ""}, {"W", ""}});
            std::vector<const hba_info*> ports;
            for (std::size_t k = 0; k < 4; ++k) {
                const char* serial = k < 2 ? "C" : "D";
                if (k % 2 == 0) {
                    add_port(serial, "0", "iSCSI", {});
                }
                ports.push_back(&add_port(serial, k % 2 == 0 ? "2" : "3", "FCoE", c.attached[k]));
            }
            Determine_Flash_Ports();
            option_input selection{};
            selection.vendor_id = 1;
            selection.device_id = 2;
            global_ctrl_flags flags;
            bool passed = false;
            output_of([&] { passed = OverallSubSystemCheck(&selection, &flags); });
            EXPECT_EQ(
                (std::array{flags.InvalidCtrlSubsystemCombinationFound,
                            flags.MatchingCtrlModelInstalled, flags.CtrlSpecificSubsystemEquality,
                            flags.CtrlVendorSpecificSubsystemEquality}),
                c.flags);
            EXPECT_EQ(flags.vendor_reference,
                      c.reference < 0 ? nullptr : ports[static_cast<std::size_t>(c.reference)]);
            EXPECT_EQ(passed, c.passed[mode]);
        }
    }
}

// FCoE 0/1 and 1/1 of one serial number link back to each other.
TEST(CheckWalk, AChainThatLeadsBackEnds) {
    reset_run();
    fc_config_file_entry** row = add_row({{"V", ""}});
    hba_info& a = add_port("A", "0", "FCoE", {"V", "P"});
    hba_info& b = add_port("A", "1", "FCoE", {"V", "P"});
    a.flash_port = &a;
    a.next_ctrl_port = &b;
    b.next_ctrl_port = &a;
    global_ctrl_flags flags;
    output_of([&] { DoSubSystemCheck(&a, row, &flags); });
    EXPECT_TRUE(a.check_done && b.check_done);
    EXPECT_EQ(flags.vendor_reference, &b);
}

}  // namespace
