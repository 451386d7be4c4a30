#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <functional>
#include <sstream>

#include "base/interruption.h"
#include "base/list.h"
#include "base/output.h"
#include "base/text.h"
#include "call/options.h"
#include "inventory/flash_ports.h"
#include "inventory/port_attributes.h"
#include "inventory/port_list.h"
#include "inventory/port_ordering.h"
#include "inventory/port_records.h"
#include "inventory/target_mapping.h"
#include "support/support.h"
#include "tool/command_run.h"
#include "tool/tool_command.h"

namespace {

using std::string;

// --- the readers of the management tool's output --------------------------------------------

string read_list(const string& text) {
    EXPECT_EQ(read_port_list(text_file(text)), RET_OK);
    string kept;
    for (const hba_info* port : entries(p_hba_info_list)) {
        for (const char* field : {port->PortWWN, port->PermanentMAC, port->SerialNo, port->Mode,
                                  port->Model, port->PCIFunction}) {
            kept += string(field) + ";";
        }
        kept += string(port->PortType) + ", ";
    }
    return kept.substr(0, kept.rfind(','));
}

string read_attributes(const string& text) {
    hba_info port{};
    EXPECT_EQ(read_port_attributes(text_file(text), port, "WWN"), RET_OK);
    if (port.attributes == nullptr) {
        return "none";
    }
    const hba_attributes_entry& a = *port.attributes;
    char ids[64];
    std::snprintf(ids, sizeof ids, " %x:%x:%x:%x", a.vendor_id, a.device_id, a.subvendor_id,
                  a.subdevice_id);
    return string(a.ModelDesc) + ids;
}

string read_mapping(const string& text) {
    hba_info port{};
    set_text(port.PortWWN, "WWN");
    EXPECT_EQ(read_target_mapping(text_file(text), port), RET_OK);
    const target_mapping_entry* entry = port.target_mapping;
    return entry == nullptr ? "none" : string(entry->VendorID) + "/" + entry->ProductID;
}

const bool readings = add_results("Readers", "readings.txt", "reader output", [](test_case& c) {
    const std::map<string, string (*)(const string&)> readers{
        {"list", read_list}, {"attributes", read_attributes}, {"mapping", read_mapping}};
    VerboseLevel = 6;
    string kept;
    const string echo = output_of([&] { kept = readers.at(c["reader"])(c["output"]); });
    return echo + "=>" + kept;
});

// A value of 5,000 characters fills the field of its key, which is as wide as is said here, and of
// the record nothing else; so no key stands behind one that it begins with.
template <typename Record>
void expect_kept(std::span<const key_row<Record>> keys, const char* widths,
                 Record& (*read)(const string&)) {
    static const Record empty{};
    string found;
    for (const key_row<Record>& row : keys) {
        if (row.field == nullptr) {
            continue;
        }
        Record record = read(string(row.key) + " : " + string(5000, 'x') + "\n");
        const std::span<char> field = row.field(record);
        found.append(std::to_string(field.size())).append(" ");
        EXPECT_EQ(field.data(), string(field.size() - 1, 'x')) << row.key;
        std::fill(field.begin(), field.end(), '\0');
        if (row.number != nullptr) {
            record.*row.number = 0;
        }
        EXPECT_EQ(std::memcmp(&record, &empty, sizeof empty), 0) << row.key;
    }
    EXPECT_EQ(found, widths);
}

TEST(Readers, LongValuesStayInTheirField) {
    reset_run();
    expect_kept<hba_info>(port_list_keys(), "24 24 24 18 18 10 64 64 24 6 16 4 4 16 64 ",
                          [](const string& text) -> hba_info& {
                              EXPECT_EQ(read_port_list(text_file("Port WWN :\n" + text)), RET_OK);
                              return *entries(p_hba_info_list).back();
                          });
    static hba_info port;
    expect_kept<hba_attributes_entry>(
        port_attribute_keys(),
        "64 64 24 256 64 24 256 16 16 5 4 32 5 64 16 18 10 16 16 16 5 16 5 5 5 16 16 16 16 16 16 "
        "16 16 16 16 16 16 16 16 16 10 ",
        [](const string& text) -> hba_attributes_entry& {
            EXPECT_EQ(read_port_attributes(text_file("HBA Attributes for\n" + text), port, ""),
                      RET_OK);
            return *port.attributes;
        });
    expect_kept<target_mapping_entry>(
        target_mapping_keys(), "24 5 128 64 64 16 5 12 12 ",
        [](const string& text) -> target_mapping_entry& {
            port.target_mapping = nullptr;
            EXPECT_EQ(read_target_mapping(text_file("\n\n\n\n" + text), port), RET_OK);
            return *port.target_mapping;
        });
}

// A key that no line of the sample server begins with is misspelt.
template <typename Record>
void expect_said(std::span<const key_row<Record>> keys, const char* folder) {
    string lines;
    for (const auto& file : std::filesystem::directory_iterator(folder)) {
        lines.append("\n").append(read_file(file.path()));
    }
    for (const key_row<Record>& row : keys) {
        EXPECT_NE(lines.find(string("\n").append(row.key).append(" ")), string::npos) << row.key;
    }
}

TEST(Readers, KeysAreThoseOfTheSampleServer) {
    expect_said(port_list_keys(), SOURCE_DIRECTORY "/demo/answers");
    expect_said(port_attribute_keys(), SOURCE_DIRECTORY "/demo/answers/hbaattributes");
    expect_said(target_mapping_keys(), SOURCE_DIRECTORY "/demo/answers/targetmapping");
}

// --- order and flash ports ----------------------------------------------------------------

// Ports "TYPE SERIAL FUNCTION[/NUMBER]", separated by commas.
void make_ports(const string& text) {
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

const bool orders = add_results("PortOrdering", "orders.txt", "ports", [](test_case& c) {
    make_ports(c["ports"]);
    EXPECT_EQ(Classify_Ctrl_List(), 0);
    string order;
    for (const hba_info* port : entries(p_hba_info_list)) {
        order += string(order.empty() ? "" : ", ") + port->PortType + " " + port->SerialNo + " " +
                 port->PCIFunction;
    }
    // A port that comes behind the removed ones is the next of the list.
    const std::size_t left = entries(p_hba_info_list).size();
    get_new_hba_info_entry();
    EXPECT_EQ(entries(p_hba_info_list).size(), left + 1);
    return order;
});

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

const bool chains = add_results("FlashPorts", "chains.txt", "ports", [](test_case& c) {
    make_ports(c["ports"]);
    EXPECT_EQ(Determine_Flash_Ports(), 0);
    string flash_ports;
    for (const hba_info* port : entries(p_hba_info_list)) {
        flash_ports += place_of(port->flash_port) + " ";
    }
    return flash_ports + "->" + chain_of(p_hba_info_list[0]->flash_port);
});

// --- commands -----------------------------------------------------------------------------

// Behind the word "x" a value stands as an argument, behind ">" as the target, in both within
// words.
TEST(ManagementTool, UnsafeValuesAreTheOnesThatAShellActsOn) {
    const struct {
        fill_format<1> format;
        string characters;
    } places[] = {{"x %s > f\n", "|&;<>()$`\\\"'{\n*?["},
                  {"x %s > f\n", "~#"},
                  {"x > d/%s\n", "|{\n"},
                  {"%s\n", "~#"},
                  {"x > %s\n", "~#"}};
    for (const auto& [format, characters] : places) {
        for (const char c : characters) {
            const string value{c, 'a'};
            EXPECT_EQ(compose_command(format, value).unsafe_value, value) << format.text;
        }
    }
    for (const fill_format<1> format :
         std::initializer_list<fill_format<1>>{"x > d/%s\n", "x >> d/%s\n"}) {
        EXPECT_EQ(compose_command(format, "a~#*?[ b\r}~").unsafe_value, "");
        EXPECT_EQ(compose_command(format, "a b*").unsafe_value, "a b*");
        EXPECT_EQ(compose_command(format, "a #").unsafe_value, "a #");
    }
    EXPECT_EQ(compose_command("x y%s %s", "~#", "a~#\r").unsafe_value, "");
    EXPECT_EQ(compose_command("x %s %s %s", "a", "b;", "c;").unsafe_value, "b;");
}

TEST(ManagementTool, UnsafeAndLongCommandsAreRefused) {
    reset_run();
    const auto refusal = [](const tool_command& command) {
        return output_of([&] { is_refused(command); });
    };
    const tool_command unsafe = compose_command("true %s", "a;b");
    const tool_command lengthy = compose_command("true %s", string(1019, 'x'));
    const string too_long =
        "Error: Command or file name is too long: true " + string(1019, 'x') + "\n";
    EXPECT_EQ(refusal(unsafe), "Error: Unsafe value 'a;b' in command: true a;b\n");
    EXPECT_EQ(refusal(lengthy), too_long);
    EXPECT_EQ(refusal(compose_command("true %s", string(1018, 'x'))), "");
    EXPECT_EQ(run_query(compose_command("test %s", "a = b\r")), 256);
    active_option_simulate = 1;  // nothing would be run, and only what is too long is refused
    EXPECT_EQ(refusal(unsafe), "");
    EXPECT_EQ(refusal(lengthy), too_long);
    for (const auto& [name, leaves] : std::map<string, bool>{
             {"..", true}, {"../x", true}, {"x/../y", true}, {"n/a", false}, {"a..b", false}}) {
        EXPECT_EQ(leaves_directory(name), leaves) << name;
    }
}

// The status of a process of its own, which has noted a signal and in which another one is pending.
int status_of_interrupted(const std::function<int()>& act) {
    const pid_t child = fork();
    if (child == 0) {
        const sigset_t signals = ending_signals();
        note_signals(signals);
        raise(SIGRTMAX);
        sigprocmask(SIG_BLOCK, &signals, nullptr);
        raise(SIGRTMIN);
        _exit(act());
    }
    int status = -1;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    return status;
}

TEST(ManagementTool, SignalsKeepADownloadFromBeingStartedAndDoNotReachIt) {
    EXPECT_EQ(status_of_interrupted([] { return run_download_in_shell("exit 0") ? 1 : 0; }), 0);
    EXPECT_EQ(status_of_interrupted([] {
                  drop_noted_signals();
                  const sigset_t signals = ending_signals();
                  sigprocmask(SIG_UNBLOCK, &signals, nullptr);
                  return 0;
              }),
              0);
}

}  // namespace
