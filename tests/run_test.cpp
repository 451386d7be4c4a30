// Whole runs of the tool on the sample server: status, text, the calls that reached the
// stand-in for the management tool, and the files that are left. The cheap ones come first.

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <sstream>

#include "run/program_run.h"
#include "support/support.h"

namespace {

using std::string;
namespace fs = std::filesystem;

// The whole text of a check and a flash, at each level.
TEST(Run, SaysEachLineFromItsLevelOn) {
    for (int level = 0; level <= 6; ++level) {
        const run_result result = server().run(
            "small_server; unset TMPDIR; ./cnatool --flash --check-for-valid-subsystem -pci-id $C1 "
            "-v " +
            std::to_string(level));
        EXPECT_EQ(result.out, golden("run.txt", level)) << level;
        EXPECT_EQ(result.status, 0) << level;
    }
}

TEST(Run, CallsThatEndOnTheCommandLineAreExact) {
    const server host;
    const string variables = "LONG=" + string(1024, '1') + " PATH_LONG=" + string(1002, 'p') + "; ";
    for (test_case& c : cases("calls.txt")) {
        const string says = c["says"].ends_with(".txt") ? golden(c["says"]) : c["says"];
        std::istringstream calls(c["words"]);
        for (string words; std::getline(calls >> std::ws, words, '|');) {
            const run_result result = host.run(variables + "./cnatool " + words);
            const string first = replaced(words.substr(0, words.find(' ')), "/", "-");
            EXPECT_EQ(std::to_string(result.status), c["status"]) << words;
            EXPECT_EQ(result.out, replaced(says, "@", first)) << words;
            EXPECT_EQ(result.err, "") << words;
        }
    }
    EXPECT_EQ(host.calls(), "");
}

// Wherever in a run the memory ends, the run says so and ends with the same status.
TEST(Run, MemoryThatRunsOutAnywhereEndsTheRun) {
    const server host;
    ASSERT_EQ(host.run("small_server; ./cnatool -pci-id $C1").status, 0);
    string all;
    int last = -1;
    for (long count = 0; last != RET_OK; ++count) {
        ASSERT_LT(count, 10000);
        const pid_t child = fork();
        if (child == 0) {
            if (chdir(host.path.c_str()) != 0 || freopen("said", "w", stdout) == nullptr) {
                _exit(99);
            }
            string words[] = {"./cnatool", "--simulate", "-pci-id", "F1A0:4201:F1A0:0011"};
            std::array<char*, 4> argv{};
            std::transform(std::begin(words), std::end(words), argv.begin(),
                           [](string& word) { return word.data(); });
            allocations_left = count;
            int status = 98;
            try {
                status = program_run(static_cast<int>(argv.size()), argv.data());
            } catch (const ended& end) {
                status = end.status;
            }
            std::fflush(stdout);
            _exit(status);
        }
        ASSERT_EQ(waitpid(child, &last, 0), child);
        ASSERT_TRUE(WIFEXITED(last)) << "after " << count << " allocations";
        last = WEXITSTATUS(last);
        ASSERT_TRUE(last == RET_OK || last == RET_MEMALLOC_FAIL) << last << " after " << count;
        const string said = read_file(host.path / "said");
        EXPECT_EQ(said.ends_with("Error: cnatool, Memory allocation failed!\n"),
                  last == RET_MEMALLOC_FAIL)
            << said << "after " << count << " allocations";
        all += said;
    }
    for (const char* what : {"fc_config_file entry", "fc_periphery_info"}) {
        EXPECT_NE(all.find(string("\nCould not allocate memory for new ") + what + ".\n"),
                  string::npos);
    }
}

// What C1's first port says of its storage, Arctis 400 of HELMSTOR, under a row with these triples.
TEST(Run, StorageIsHeldAgainstTheTriplesInTheirOrder) {
    const string attached =
        "\n\t\tAttached storage sub-system:\n\t\t\t\tHELMSTOR\n\t\t\t\tArctis 400\n\t\t\t\t0401\n";
    for (test_case& c : cases("validations.txt")) {
        const run_result result =
            server().run("echo 'N | NX | F1A0 | 4201 | F1A0 | 0011 | d | - | - | f | b | - | - " +
                         c["allowed"] + "' > FC_HBA_Conditions.txt; ./cnatool -v 5 -pci-id $C1");
        const string says = "PCI function: 2\n" + replaced(c["says"], "@", attached) + "\t\tTake";
        EXPECT_EQ(std::to_string(result.status), c["status"]) << c["allowed"];
        EXPECT_NE(result.out.find(says), string::npos) << says << "\n" << result.out;
    }
}

// A case with "from" is run at that level and at the one below, where what it says is missing.
void run_table(const char* name) {
    for (test_case& c : cases(name)) {
        if (SANITIZED && c.contains("without")) {
            continue;  // sanitizers need more address space than the case leaves
        }
        const server host;
        const run_result result = host.run("V=" + c["from"] + "; " + c["run"]);
        EXPECT_EQ(std::to_string(result.status), c["status"]) << c["run"] << "\n" << result.err;
        EXPECT_NE(result.out.find(c["says"]), string::npos) << c["run"] << "\n" << result.out;
        EXPECT_NE(result.err.find(c["stderr"]), string::npos) << c["run"] << "\n" << result.err;
        if (c.contains("reached")) {
            string downloads;
            std::istringstream calls(host.calls());
            for (string call; std::getline(calls, call);) {
                downloads += call.starts_with("download") ? call + "\n" : "";
            }
            EXPECT_EQ(downloads, c["reached"]) << c["run"] << "\n" << result.out;
        }
        if (!c["from"].empty()) {
            const string below = "V=" + std::to_string(std::stoi(c["from"]) - 1) + "; " + c["run"];
            EXPECT_EQ(server().run(below).out.find(c["says"]), string::npos) << below;
        }
    }
}

TEST(Run, EndsAsItsTableSays) { run_table("runs.txt"); }

TEST(Run, HoldsWhenInterruptedOrOvertaken) { run_table("interruptions.txt"); }

TEST(Run, HoldsWhenTheWorldMisbehaves) { run_table("misbehaving.txt"); }

TEST(Run, SaysTheRestFromItsLevelOn) { run_table("levels.txt"); }

TEST(Run, FlashReachesTheRightControllersAndNothingElse) { run_table("flashes.txt"); }

TEST(Run, FaultsOfTheManagementToolAreReported) { run_table("faults.txt"); }

// --- hostile values -----------------------------------------------------------------------

// One port, whose values go into every kind of command; one row that names no directory.
void lay_out_one_port(const server& host, const string& serial, const string& function,
                      const string& type, const string& address, const string& model) {
    const fs::path answers = host.stand_in() / "answers";
    write_file(answers / "listhbas.txt", (type == "FCoE" ? "Port WWN : " : "Permanent MAC : ") +
                                             address + "\nSerial No : " + serial +
                                             "\nPort Number : 0\nPCI Function : " + function +
                                             "\nPort Type : " + type + "\nModel : " + model + "\n");
    write_file(answers / "hbaattributes/MAC.txt",
               "HBA Attributes for MAC\nVendor Spec ID : 1\nDevice ID : 2\n");
    write_file(answers / "download/MAC.txt", "done\n");
    write_file(host.path / "FC_HBA_Conditions.txt", "V | M | 1 | 2 | 0 | 0 | | a | b | fw.bin");
}

// Which characters are unsafe is a matter of the command; here the places where they come from.
TEST(Run, HostileValuesReachNoShell) {
    for (int place = 0; place < 6; ++place) {
        const string value = place == 1 ? "0;" : "a;";
        const string image = place == 5 ? "fw.bin\"" : "fw.bin";
        const string model = place == 4 ? value : "M";
        const server host;
        lay_out_one_port(host, place == 0 ? value : "SN", place == 1 ? value : "0",
                         place == 2 ? "FCoE" : "iSCSI", place == 2 || place == 3 ? value : "MAC",
                         model);
        fs::create_directory(host.path / model);
        write_file(host.path / model / image, "image");
        const run_result result = host.run("./cnatool --flash -pci-id 1:2");
        EXPECT_EQ(result.status, place < 4 ? 51 : 10) << place << result.out;
        const std::size_t said = result.out.find("Error: Unsafe value '");
        ASSERT_NE(said, string::npos) << place << result.out;
        EXPECT_NE(result.out.find(place == 5 ? "./M/" + image : value, said), string::npos);
        EXPECT_EQ(host.calls(), place < 4 ? "listhbas\n" : "listhbas\nhbaattributes MAC\n");
        EXPECT_FALSE(fs::exists(host.path / "a"));
    }
}

}  // namespace
