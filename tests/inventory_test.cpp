#include <gtest/gtest.h>

#include <sstream>

#include "base/list.h"
#include "base/output.h"
#include "base/text.h"
#include "call/options.h"
#include "call/paths.h"
#include "inventory/flash_ports.h"
#include "inventory/management_tool.h"
#include "inventory/port_attributes.h"
#include "inventory/port_list.h"
#include "inventory/port_ordering.h"
#include "inventory/port_records.h"
#include "inventory/target_mapping.h"
#include "support/support.h"

namespace {

using std::string;

string list_echo(const string& text) {
    reset_run();
    VerboseLevel = 6;
    return output_of([&] { EXPECT_EQ(read_port_list(text_file(text)), RET_OK); });
}

TEST(PortList, BlocksBecomePorts) {
    EXPECT_EQ(list_echo("Manageable HBA List\n\nSerial No : EARLY\n"
                        "Port WWN    :   10:00\nNode WWN : 20:00\n Mfg : no key\nSerial No : one\n"
                        "Serial No : SN-1\nMode : Initiator\nModel :  M \"1\"\nPort Type: FCoE\n"
                        "PCI Function SN\nHost Name :\n"
                        "Permanent MAC : 02-00\nPort Typex :\"iSCSI\"\nPort Number:1\n\n"
                        "Port WWN without a colon\nFlags :"),
              "\n1)\tPortWWN:   10:00\n\tNodeWWN: 20:00\n\tone\n\tSN-1\n\tInitiator\n\tM  1\n"
              "\tFCoE\n\t\n\n2)\tPermanentMAC: 02-00\n\tiSCSI\n\t\n\t\n");
    ASSERT_EQ(entries(p_hba_info_list).size(), 3U);
    const hba_info& first = *p_hba_info_list[0];
    EXPECT_STREQ(first.PortWWN, "10:00");
    EXPECT_STREQ(first.PermanentMAC, "");
    EXPECT_STREQ(first.SerialNo, "SN-1");
    EXPECT_STREQ(first.Mode, "Initiator");
    EXPECT_STREQ(first.Model, "M  1");
    EXPECT_STREQ(first.PCIFunction, "");
    EXPECT_STREQ(p_hba_info_list[1]->PermanentMAC, "02-00");
    EXPECT_STREQ(p_hba_info_list[1]->PortWWN, "");
    EXPECT_STREQ(p_hba_info_list[1]->PortType, "iSCSI");
    EXPECT_STREQ(p_hba_info_list[1]->PortNumber, "");
    EXPECT_STREQ(p_hba_info_list[2]->PortWWN, "");

    EXPECT_EQ(list_echo("Serial No : 1\nModel : 2\n"), "");
    EXPECT_EQ(p_hba_info_list, nullptr);
}

hba_info read_attributes(const string& text, string* echo = nullptr) {
    hba_info port{};
    const string out =
        output_of([&] { EXPECT_EQ(read_port_attributes(text_file(text), port, "WWN-1"), RET_OK); });
    if (echo != nullptr) {
        *echo = out;
    }
    return port;
}

TEST(PortAttributes, LinesBehindTheHeadFillTheEntry) {
    reset_run();
    VerboseLevel = 6;
    string echo;
    hba_info port = read_attributes(
        "Device ID : 1111\nHBA Attributes for x\nDevice ID\nModel Desc : long\nModel : M1\n"
        "Vendor Spec ID : 0x19A2\nDevice ID : 0710\nSub Vendor ID : oops\nSub Device ID :\n",
        &echo);
    EXPECT_EQ(
        echo,
        "\n\t\tHBA Attributes for WWN-1\n\n\t\t\n\t\tM1\n\t\t0x19\n\t\t0710\n\t\toops\n\t\t\n");
    ASSERT_NE(port.attributes, nullptr);
    EXPECT_STREQ(port.attributes->ModelDesc, "long");
    EXPECT_EQ(port.attributes->vendor_id, 0x19a2);  // of the whole value, not of its cut text
    EXPECT_EQ(port.attributes->device_id, 0x710);
    EXPECT_EQ(port.attributes->subvendor_id, -1);
    EXPECT_EQ(port.attributes->subdevice_id, -1);

    port = read_attributes("HBA Attributes for a\nDevice ID : 1\nHBA Attributes for b\n");
    EXPECT_EQ(port.attributes->device_id, 0);

    VerboseLevel = 1;
    EXPECT_EQ(read_attributes("Device ID : 1\n", &echo).attributes, nullptr);
    EXPECT_EQ(echo, "\t\tNo attributes => SKIP!\n");
}

TEST(TargetMapping, TheLastUnitStands) {
    for (test_case& c : cases("mappings.txt")) {
        reset_run();
        hba_info port{};
        EXPECT_EQ(read_target_mapping(text_file(c["output"]), port), RET_OK);
        const target_mapping_entry* entry = port.target_mapping;
        EXPECT_EQ(entry == nullptr ? "none" : string(entry->VendorID) + "/" + entry->ProductID,
                  c["storage"]);
    }
}

// --- order and flash ports ----------------------------------------------------------------

// Ports "TYPE SERIAL FUNCTION[/NUMBER]", separated by commas.
void make_ports(const string& text) {
    reset_run();
    std::istringstream list(text);
    for (string word; std::getline(list >> std::ws, word, ',');) {
        hba_info& port = *get_new_hba_info_entry();
        std::istringstream parts(word);
        string type, serial, place;
        std::getline(parts, type, ' ');
        std::getline(parts, serial, ' ');
        parts >> place;
        set_text(port.PortType, type);
        set_text(port.SerialNo, serial);
        set_text(port.PCIFunction, place.substr(0, place.find('/')));
        set_text(port.PortNumber, place.substr(place.find('/') + 1));
    }
}

string place_of(const hba_info* port) {
    return port == nullptr ? "none" : string(port->PCIFunction) + "/" + port->PortNumber;
}

TEST(PortOrdering, PortsComeTogetherByController) {
    for (test_case& c : cases("orders.txt")) {
        make_ports(c["ports"]);
        EXPECT_EQ(Classify_Ctrl_List(), 0);
        string text;
        for (const hba_info* port : entries(p_hba_info_list)) {
            text += (text.empty() ? "" : ", ") + string(port->PortType) + " " + port->SerialNo +
                    " " + port->PCIFunction;
        }
        EXPECT_EQ(text, c["order"]) << c["ports"];
    }
}

string chain_of(const hba_info* flash_port) {
    string chain;
    for (const hba_info* member = flash_port; member != nullptr && member->next_ctrl_port;) {
        member = member->next_ctrl_port;
        chain.append(chain.empty() ? "" : " ");
        if (member == flash_port) {
            return chain + "=";
        }
        chain += place_of(member);
    }
    return chain;
}

TEST(FlashPorts, CandidatesAndChains) {
    for (test_case& c : cases("chains.txt")) {
        make_ports(c["ports"]);
        EXPECT_EQ(Determine_Flash_Ports(), 0);
        for (const hba_info* port : entries(p_hba_info_list)) {
            EXPECT_EQ(place_of(port->flash_port), c["flash"]) << c["ports"];
        }
        EXPECT_EQ(chain_of(p_hba_info_list[0]->flash_port), c["chain"]) << c["ports"];
    }
    make_ports("FCoE AB 1/1, iSCSI ABC 0/0");
    Determine_Flash_Ports();
    EXPECT_EQ(p_hba_info_list[0]->flash_port, p_hba_info_list[0]);
    EXPECT_EQ(p_hba_info_list[1]->flash_port, p_hba_info_list[1]);
}

// --- hostile values -----------------------------------------------------------------------

// Reads all keys with the value "v" and then one with 5,000 characters: of the whole record
// only the characters of that field may change, and its terminator not.
template <typename Record>
void expect_kept(test_case keys, const std::function<Record(const string&)>& read) {
    string block = keys.extract("head").mapped();
    for (const auto& [key, width] : keys) {
        block += key + " : v\n";
    }
    const Record before = read(block);
    for (const auto& [key, width_text] : keys) {
        const std::size_t width = std::stoul(width_text);
        const Record after = read(block + key + " : " + string(5000, 'x') + "\n");
        const auto* a = reinterpret_cast<const char*>(&before);
        const auto* b = reinterpret_cast<const char*>(&after);
        const auto [first, second] = std::mismatch(a, a + sizeof before, b);
        EXPECT_STREQ(first, "v") << key;
        EXPECT_EQ(string(second), string(width - 1, 'x')) << key;
        EXPECT_TRUE(std::equal(first + width, a + sizeof before, second + width)) << key;
    }
}

TEST(LongValues, StayInTheirField) {
    reset_run();
    const std::vector<test_case> keys = cases("keys.txt");
    expect_kept<hba_info>(keys.at(0), [](const string& text) {
        release_port_records();
        EXPECT_EQ(read_port_list(text_file(text)), RET_OK);
        return *p_hba_info_list[0];
    });
    expect_kept<hba_attributes_entry>(
        keys.at(1), [](const string& text) { return *read_attributes(text).attributes; });
    expect_kept<target_mapping_entry>(keys.at(2), [](const string& text) {
        hba_info port{};
        EXPECT_EQ(read_target_mapping(text_file(text), port), RET_OK);
        return *port.target_mapping;
    });
    release_port_records();
    read_port_list(text_file("Port WWN : " + string(5000, 'x') +
                             "\nPermanent MAC : " + string(5000, 'y') + "\n"));
    EXPECT_EQ(p_hba_info_list[0]->PortWWN, string(23, 'x'));
    EXPECT_STREQ(p_hba_info_list[0]->NodeWWN, "");
    EXPECT_EQ(p_hba_info_list[1]->PermanentMAC, string(17, 'y'));
    EXPECT_STREQ(p_hba_info_list[1]->CurrentMAC, "");
}

// --- commands -----------------------------------------------------------------------------

// Behind the word "x" a value stands as an argument, behind ">" as the target, in both within
// words.
TEST(ManagementTool, UnsafeValuesAreTheOnesThatAShellActsOn) {
    const std::pair<const char*, string> places[] = {{"x %s > f\n", "|&;<>()$`\\\"'{\n*?["},
                                                     {"x %s > f\n", "~#"},
                                                     {"x > d/%s\n", "|{\n"},
                                                     {"x > %s\n", "~#"}};
    for (const auto& [format, characters] : places) {
        for (const char c : characters) {
            const string value{c, 'a'};
            EXPECT_EQ(compose_command(format, {value}).unsafe_value, value) << format;
        }
    }
    for (const char* format : {"x > d/%s\n", "x >> d/%s\n"}) {
        EXPECT_EQ(compose_command(format, {"a~#*?[ b\r}~"}).unsafe_value, "");
        EXPECT_EQ(compose_command(format, {"a b*"}).unsafe_value, "a b*");
        EXPECT_EQ(compose_command(format, {"a #"}).unsafe_value, "a #");
    }
    EXPECT_EQ(compose_command("x y%s %s", {"~#", "a~#\r"}).unsafe_value, "");
    EXPECT_EQ(compose_command("x %s %s %s", {"a", "b;", "c;"}).unsafe_value, "b;");
}

TEST(ManagementTool, UnsafeAndLongCommandsAreRefused) {
    reset_run();
    const auto refusal = [](const tool_command& command) {
        return output_of([&] { is_refused(command); });
    };
    const tool_command unsafe = compose_command("true %s", {"a;b"});
    const tool_command lengthy = compose_command("true %s", {string(1019, 'x')});
    const string too_long =
        "Error: Command or file name is too long: true " + string(1019, 'x') + "\n";
    EXPECT_EQ(refusal(unsafe), "Error: Unsafe value 'a;b' in command: true a;b\n");
    EXPECT_EQ(refusal(lengthy), too_long);
    EXPECT_EQ(refusal(compose_command("true %s", {string(1018, 'x')})), "");
    EXPECT_EQ(run_command(compose_command("test %s", {"a = b\r"}), command_kind::query), 256);
    active_option_simulate = 1;  // nothing would be run, and only what is too long is refused
    EXPECT_EQ(refusal(unsafe), "");
    EXPECT_EQ(refusal(lengthy), too_long);
    for (const auto& [name, leaves] : std::map<string, bool>{
             {"..", true}, {"../x", true}, {"x/../y", true}, {"n/a", false}, {"a..b", false}}) {
        EXPECT_EQ(leaves_directory(name), leaves) << name;
    }
}

}  // namespace
