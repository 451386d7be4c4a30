// Whole runs of the tool on the sample server: status, text, the calls that reached the
// stand-in for the management tool, and the files that are left. The cheap ones come first.

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
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

const bool calls = add_cases("Run", "calls.txt", {"status words says"}, [](test_case& c) {
    const server host;
    const string variables = "LONG=" + string(1024, '1') + " PATH_LONG=" + string(1002, 'p') + "; ";
    const string says = c["says"].ends_with(".txt") ? golden(c["says"]) : c["says"];
    std::istringstream alternatives(c["words"]);
    for (string words; std::getline(alternatives >> std::ws, words, '|');) {
        const run_result result = host.run(variables + "./cnatool " + words);
        const string first = replaced(words.substr(0, words.find(' ')), "/", "-");
        EXPECT_EQ(std::to_string(result.status), c["status"]) << words;
        EXPECT_EQ(result.out, replaced(says, "@", first)) << words;
        EXPECT_EQ(result.err, "") << words;
    }
    EXPECT_EQ(host.calls(), "");
});

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
const bool validations = add_cases("Run", "validations.txt", {"allowed status says"}, [](auto& c) {
    const string attached =
        "\n\t\tAttached storage sub-system:\n\t\t\t\tHELMSTOR\n\t\t\t\tArctis 400\n\t\t\t\t0401\n";
    const run_result result =
        server().run("echo 'N | NX | F1A0 | 4201 | F1A0 | 0011 | d | - | - | f | b | - | - " +
                     c["allowed"] + "' > FC_HBA_Conditions.txt; ./cnatool -v 5 -pci-id $C1");
    const string says = "PCI function: 2\n" + replaced(c["says"], "@", attached) + "\t\tTake";
    EXPECT_EQ(std::to_string(result.status), c["status"]);
    EXPECT_NE(result.out.find(says), string::npos) << says << "\n" << result.out;
});

// The downloads among the calls, a line each, or "none".
string downloads_of(const string& reached) {
    string downloads;
    std::istringstream lines(reached);
    for (string call; std::getline(lines, call);) {
        downloads += call.starts_with("download ") ? call.substr(9) + "\n" : "";
    }
    return downloads.empty() ? "none" : downloads;
}

const case_keys run_keys{"status run", "says lacks prints stderr reached needs controllers"};

// The run of a case, held against all that the case says of it; gives the standard output.
string expect_run(test_case& c) {
    const server host(c["controllers"]);
    const run_result result = host.run(c["run"]);
    SCOPED_TRACE("standard output:\n" + result.out + "standard error:\n" + result.err);
    EXPECT_EQ(std::to_string(result.status), c["status"]);
    EXPECT_NE(result.out.find(c["says"]), string::npos) << c["says"];
    EXPECT_NE(result.err.find(c["stderr"]), string::npos) << c["stderr"];
    if (c.contains("lacks")) {
        EXPECT_EQ(result.out.find(c["lacks"]), string::npos);
    }
    if (c.contains("prints")) {
        EXPECT_EQ(result.out, c["prints"]);
    }
    if (c.contains("reached")) {
        EXPECT_EQ(downloads_of(host.calls()), c["reached"]);
    }
    return result.out;
}

const bool runs = add_cases("Run", "runs.txt", run_keys, expect_run);
const bool flashes = add_cases("Run", "flashes.txt", run_keys, expect_run);
const bool interruptions = add_cases("Run", "interruptions.txt", run_keys, expect_run);
const bool misbehaving = add_cases("Run", "misbehaving.txt", run_keys, expect_run);

// No fault of the management tool passes as a flash that went well.
const bool faults = add_cases("Run", "faults.txt", run_keys, [](test_case& c) {
    EXPECT_EQ(expect_run(c).find("Success, flash"), string::npos);
});

// At the level a case names it says its text, and at the one below it does not.
const bool levels =
    add_cases("Run", "levels.txt", {"status from run says", "controllers"}, [](test_case& c) {
        const int from = std::stoi(c["from"]);
        const run_result result =
            server(c["controllers"]).run("V=" + std::to_string(from) + "; " + c["run"]);
        EXPECT_EQ(std::to_string(result.status), c["status"]);
        EXPECT_NE(result.out.find(c["says"]), string::npos) << result.out;
        const string below = "V=" + std::to_string(from - 1) + "; " + c["run"];
        EXPECT_EQ(server(c["controllers"]).run(below).out.find(c["says"]), string::npos) << below;
    });

}  // namespace
