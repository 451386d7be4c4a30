#include <gtest/gtest.h>

#include <map>
#include <sstream>

#include "base/output.h"
#include "base/text.h"
#include "call/options.h"
#include "check/check_walk.h"
#include "check/subsystem_validation.h"
#include "conditions/conditions_file.h"
#include "inventory/flash_ports.h"
#include "support/support.h"

namespace {

using std::string;

// A row of the table for ids 1:2 that allows "vendor=products;...".
fc_config_file_entry** add_row(const string& allowed) {
    fc_config_file_entry& row = *get_new_config_file_entry();
    row.vendor_id = 1;
    row.device_id = 2;
    fc_periphery_info** link = &row.periphery_list;
    std::istringstream list(allowed);
    for (string word; std::getline(list, word, ';'); link = &(*link)->next) {
        *link = get_new_periphery_info_entry();
        set_text((*link)->vendor, word.substr(0, word.find('=')));
        set_text((*link)->product_list, word.substr(word.find('=') + 1));
    }
    return fc_config_entry_list;
}

// A port with ids 1:2 and the product Alpha1 of this vendor behind it; none for "-".
hba_info& add_port(const char* serial, const char* place, const char* type, const string& vendor) {
    hba_info& port = *get_new_hba_info_entry();
    set_text(port.SerialNo, serial);
    set_text(port.PCIFunction, place);
    set_text(port.PortNumber, place);
    set_text(port.PortType, type);
    port.attributes = get_new_hba_attributes_entry();
    port.attributes->vendor_id = 1;
    port.attributes->device_id = 2;
    if (vendor != "-") {
        port.target_mapping = get_new_target_mapping_entry();
        set_text(port.target_mapping->VendorID, vendor);
        set_text(port.target_mapping->ProductID, "Alpha1");
        set_text(port.target_mapping->ProductVersion, "1.0");
    }
    return port;
}

TEST(Validation, TriplesAreTriedInTheirOrder) {
    for (test_case& c : cases("validations.txt")) {
        reset_run();
        fc_config_file_entry** row = add_row(c["allowed"]);
        const hba_info& port = add_port("A", "0", "FCoE", "V");
        global_ctrl_flags flags;
        bool valid = false;
        EXPECT_EQ(output_of([&] { valid = DoIndividualSubSystemCheck(&port, row, &flags); }),
                  c["says"]);
        EXPECT_EQ(valid, c["valid"] == "1") << c["allowed"];
        EXPECT_EQ(flags.InvalidCtrlSubsystemCombinationFound, valid ? 0 : 1);
    }
}

TEST(Validation, GroupsHoldAtLeastOneReference) {
    reset_run();
    for (test_case& c : cases("groups.txt")) {
        const string& group = c["group"];
        const string& references = c["references"];
        bool found = false;
        EXPECT_EQ(output_of([&] {
                      found = CheckModelGroupConsistency(group.c_str(), references.c_str());
                  }),
                  "\tAlready identified reference subsystems: " + references +
                      "  Subsystem group: " + group + "\n" + c["says"]);
        EXPECT_EQ(found, c["found"] == "1") << group << " " << references;
    }
}

// Two controllers C and D of two FCoE ports behind an iSCSI flash port each.
std::map<string, const hba_info*> add_controllers(const string& vendors) {
    std::map<string, const hba_info*> ports{{"none", nullptr}};
    std::istringstream words(vendors);
    for (const char* controller : {"C", "D"}) {
        add_port(controller, "0", "iSCSI", "-");
        for (const char* number : {"1", "2"}) {
            string vendor;
            words >> vendor;
            ports[string(controller) + number] = &add_port(controller, number, "FCoE", vendor);
        }
    }
    Determine_Flash_Ports();
    return ports;
}

TEST(CheckWalk, FlagsAndResultsByMode) {
    int* const modes[] = {&active_option_valid_subsystem, &active_option_ctrl_wide_identical,
                          &active_option_ctrl_vendor_wide_identical};
    for (test_case& c : cases("walks.txt")) {
        std::istringstream results(c["passed"]);
        for (int* mode : modes) {
            reset_run();
            *mode = 1;
            add_row("V=;W=");
            const auto ports = add_controllers(c["vendors"]);
            option_input selection{};
            selection.vendor_id = 1;
            selection.device_id = 2;
            global_ctrl_flags flags;
            bool passed = false;
            output_of([&] { passed = OverallSubSystemCheck(&selection, &flags); });
            char text[32];
            std::snprintf(text, sizeof text, "%d %d %d %d",
                          flags.InvalidCtrlSubsystemCombinationFound,
                          flags.MatchingCtrlModelInstalled, flags.CtrlSpecificSubsystemEquality,
                          flags.CtrlVendorSpecificSubsystemEquality);
            EXPECT_EQ(text, c["flags"]) << c["vendors"];
            EXPECT_EQ(flags.vendor_reference, ports.at(c["reference"])) << c["vendors"];
            bool result = false;
            results >> result;
            EXPECT_EQ(passed, result) << c["vendors"];
        }
    }
}

}  // namespace
