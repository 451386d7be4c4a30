// Whole runs of the tool on the sample server: status, text, the calls that reached the
// stand-in for the management tool, and the files that are left.

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>

#include "frame/program_run.h"
#include "support/support.h"

namespace {

using std::string;
namespace fs = std::filesystem;

#if defined(__SANITIZE_ADDRESS__)
constexpr bool address_sanitizer = true;
#elif defined(__has_feature)
constexpr bool address_sanitizer = __has_feature(address_sanitizer);
#else
constexpr bool address_sanitizer = false;
#endif

const string c1 = "F1A0:4201:F1A0:0011";
const string c2 = "F1A0:4201:F2B0:0012";
const string c3 = "F1A0:8402:F1A0:0021";
const string c4 = "F1A0:8402:F2B0:0022";
const string select_all = " -pci-id " + c1 + "," + c2 + "," + c3 + "," + c4;

// --- statuses -----------------------------------------------------------------------------

// A is the folder of the stand-in's answers; what is said must stand in the standard output or,
// where a line of its own begins with "2:", in the standard error.
TEST(Run, EveryStatusHasItsRuns) {
    const string lonely =
        "sed -n '/10:00:02:00:5e:10:01:03/,/^$/p' $A/listhbas.txt > x; mv x $A/listhbas.txt; ";
    struct {
        string command;
        int status;
        string said;
    } const cases[] = {
        {"./cnatool -pci-id " + c1, 0, "--> OK"},
        {"./cnatool -pci-id " + c1 +
             " --check-for-valid-subsystem --ctrl-wide-identical "
             "--ctrl-vendor-wide-identical",
         0, ""},
        {"./cnatool -vid F1A0 -dev 4201 -subvid F1A0 -subdev 11", 0, ""},
        {"./cnatool -pci-id " + c2 + " --ctrl-wide-identical", 1, ""},
        {"./cnatool -pci-id " + c2 + " --ctrl-wide-identical --check-for-valid-subsystem", 1, ""},
        {"./cnatool -pci-id 1:10000000000000000", 1, "2:strtoul: "},
        {"./cnatool -pci-id " + c1 + "," + c3 + " --ctrl-vendor-wide-identical", 2, ""},
        {"./cnatool -pci-id " + c2 + " --ctrl-wide-identical --ctrl-vendor-wide-identical", 2, ""},
        {"./cnatool --nonsense", 3, "\n\nInvalid argument '--nonsense' !\n\n"},
        {"./cnatool -v 2 -pci-id 1:2:3", 3, "Error: List of PCI-IDs 1:2:3 is incomplete!\n"},
        {"./cnatool -pci-id " + c4, 4, "--> Invalid subsystem!"},
        {"./cnatool -pci-id " + c4 + "," + c2 + " --ctrl-wide-identical", 4, ""},
        {"./cnatool -pci-id F1A0:2101", 12, ""},
        {"./cnatool -pci-id F1A0:1101", 12, "\t\tNo serial number => SKIP!\n"},
        {"./cnatool", 12, ""},
        {"./cnatool --flash", 12, ""},
        {"./cnatool -vn Norvik", 12, ""},
        {"./cnatool --vox-mode", 0, ""},
        {"sed -i /nx4200-oem/d FC_HBA_Conditions.txt; ./cnatool -pci-id " + c2, 0, ""},
        {"sed -i 's/^Port Type.*/Port Type : FC/' $A/listhbas.txt; ./cnatool -pci-id " + c1, 12,
         ""},
        {": > $A/listhbas.txt; ./cnatool", 13, "\nNo Blade Engine was found in this system.\n\n"},
        {": > $A/listhbas.txt; ./cnatool --vox-mode", 0, "No Blade Engine"},
        {"rm FC_HBA_Conditions.txt; rm -r opt; ./cnatool", 15,
         "Error: Could not open file ./FC_HBA_Conditions.txt\n\nCann't access file "
         "./FC_HBA_Conditions.txt.\n\n"},
        {"rm -r opt; ./cnatool --simulate", 21,
         "Info: Flash command ./usr/sbin/brcmocmanager/brcmhbacmd is not available.\n\n"
         "Info: Flash command ./opt/emulex/ocmanager/bin/hbacmd is not available.\n\n"
         "Error: Flash command ./usr/sbin/ocmanager/hbacmd is not available "
         "(no flash command at all found)\n\n"},
        {REAL_TOOL " --conpath .", 21,
         "Info: Flash command /usr/sbin/brcmocmanager/brcmhbacmd is "},
        {lonely + "./cnatool -pci-id " + c1, 22, ""},
        {"./cnatool --simulate", 51, "Error: Could not open file .//local_hba_list.out\n"},
        {"echo 'listhbas - cut 99999 exit 9' > $A/faults.txt; ./cnatool -v 0 -pci-id " + c1, 0, ""},
        {"echo 'listhbas - exit 9' > $A/faults.txt; ./cnatool", 55, ""},
        {"echo 'listhbas - exit 9' > $A/faults.txt; ./cnatool -v 4", 55,
         "\nFail, \"hbacmd listhbas\" command returned code 2304.\n"},
        {"./cnatool -vid 1,zz", 55, "Error: Vendor-Id zz is not a valid hex value!\n"},
        {"./cnatool -v 2 -pci-id zz:1", 55, "Error: Vendor-Id zz is not a valid hex value!\n"},
        {"echo 'a | b | zz' >> FC_HBA_Conditions.txt; ./cnatool", 55, ""},
        {"echo 'a vendor of twenty c | b' > FC_HBA_Conditions.txt; ./cnatool", 55,
         "\nError line 1: column 0 is longer than 19 characters: a vendor of twenty c\n"
         "Error: Fatal error!\n"},
        {"mkdir x; cp -r opt x; mv FC_HBA_Conditions.txt x; ./cnatool --conpath x -pci-id " + c1, 0,
         ""},
    };
    for (const auto& c : cases) {
        const server host;
        const run_result result = host.run("A=opt/emulex/ocmanager/bin/answers; " + c.command);
        EXPECT_EQ(result.status, c.status) << c.command << "\n" << result.out << result.err;
        const bool on_stderr = c.said.starts_with("2:");
        EXPECT_NE((on_stderr ? result.err : result.out).find(c.said.substr(on_stderr ? 2 : 0)),
                  string::npos)
            << c.command << "\n"
            << result.out;
    }
}

TEST(Run, MemoryThatRunsOutIsSaid) {
    if (address_sanitizer) {
        GTEST_SKIP() << "the sanitizer needs more address space than the limit leaves";
    }
    const std::pair<string, string> cases[] = {
        {"yes '' | head -c 1000000 > FC_HBA_Conditions.txt",
         "Could not allocate memory for new fc_config_file entry.\n"
         "Error: cnatool, Memory allocation failed!\n"},
        {"yes 'Port WWN : 1' | head -c 3000000 > opt/emulex/ocmanager/bin/answers/listhbas.txt",
         "Error: cnatool, Memory allocation failed!\n"},
    };
    for (const auto& [setup, said] : cases) {
        const server host;
        const run_result result = host.run(setup + "; ulimit -v 60000; ./cnatool");
        EXPECT_EQ(result.status, 54) << result.out << result.err;
        EXPECT_NE(result.out.find(said), string::npos) << result.out;
    }
}

// Wherever in a run the memory ends, the run ends with the same status.
TEST(Run, MemoryThatRunsOutAnywhereEndsTheRun) {
    const server host;
    ASSERT_EQ(host.run("./cnatool" + select_all).status, 4);
    bool ran_through = false;
    for (long count = 0; !ran_through; count += count < 300 ? 1 : 37) {
        const pid_t child = fork();
        if (child == 0) {
            if (chdir(host.path.c_str()) != 0) {
                _exit(99);
            }
            string words[] = {"./cnatool", "--silent", "--simulate", "-pci-id",
                              select_all.substr(9)};
            std::array<char*, 5> argv{};
            std::transform(std::begin(words), std::end(words), argv.begin(),
                           [](string& word) { return word.data(); });
            allocations_left = count;
            int status = 98;
            try {
                status = program_run(static_cast<int>(argv.size()), argv.data());
            } catch (const ended& end) {
                status = end.status;
            }
            _exit(status);
        }
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFEXITED(status)) << "after " << count << " allocations";
        ran_through = WEXITSTATUS(status) == 4;
        ASSERT_TRUE(ran_through || WEXITSTATUS(status) == 54)
            << WEXITSTATUS(status) << " after " << count << " allocations";
    }
}

// --- the command line ---------------------------------------------------------------------

TEST(Run, RefusedCallsSayWhy) {
    const string level_v =
        "Please enter a valid verbose-level (-v <verbose-level>; min 0 - max 6)!\n";
    const string level_d = "Please enter a valid debug-level (-d <debug-level>; min 0 - max 6)!\n";
    const string both = "\nUsing options --debug and -v simultaneously is not supported!\n";
    const string path = "Please enter a path for file FC_HBA_Conditions.txt and/or HBA firmware!\n";
    const string id = "Please enter at least one controller ";
    const string hex = "-id (\"1A0F,2B03,...hex-value\")!\n";
    const string pair =
        "Please enter at least one pair of vendor- and device-id (\"1A0F:2B03,...hex-value\")";
    const string combined =
        "\n\nCombining options \"-vid\", \"-subvid\", \"-dev\", \"-subdev\" together with option ";
    const string please = "\n\nPlease, also specify ";
    const string models =
        "Please enter at least one controller-model string (\"LPe11002-M4, TQ900-HV31k, QLE2460... "
        "\")!\n";
    const string names = id + "vendor-name (\"Emulex, QLogic, ... \")!\n";
    const string invalid = "\n\nInvalid argument '";
    const string long_value(1024, '1');
    const std::pair<string, string> cases[] = {
        {"-v", level_v},
        {"-v 7", level_v},
        {"-v 3x", level_v},
        {"-v -1", level_v},
        {"-v3", level_v},
        {"-vendor", level_v},
        {"--help -v ''", level_v},
        {"-v " + long_value, level_v},
        {"--silent -v 2 -v 9", level_v},
        {"-v 2 -v 9 --silent", level_v},
        {"-v 9 --silent", ""},
        {"-d", level_d},
        {"--debug 7", level_d},
        {"-debug 3", level_d},
        {"--debugger 3", level_d},
        {"-d 3 -v 3", both},
        {"--silent -v 0 /d 1", both},
        {"-subvid", id + "sub-vendor" + hex},
        {"-subvid -x", id + "sub-vendor" + hex},
        {"-vid", id + "vendor" + hex},
        {"-vid ''", id + "vendor" + hex},
        {"-vid " + long_value, id + "vendor" + hex},
        {"-mod", models},
        {"-model /x", models},
        {"-vn", names},
        {"-vn -x", names},
        {"-dev", id + "device" + hex},
        {"-device -1", id + "device-id (\"hex-value\")!\n"},
        {"-subdev", id + "sub-device" + hex},
        {"-subdev -1", id + "sub-device-id (\"hex-value\")!\n"},
        {"-pci-id", pair + "!\n"},
        {"-pci-id -1", pair + "\n"},
        {"--conpath", path},
        {"--conpath /etc", path},
        {"--conpath " + string(1002, 'p'), path},
        {"-vid 1 -vn a", combined + "\"-vn\" is not supported.\t!\n"},
        {"-subdev 1 -mod a", combined + "\"-mod\" is not supported.\t!\n"},
        {"-mod a", please + "vendor-names (option \"-vn\")\n, if using option \"-mod\"!\n"},
        {"-dev 1",
         please + "one or more vendor-ids (option \"-vid\")\n, if using option \"-dev\"!\n"},
        {"-subvid 1",
         please + "one or more device-ids (option \"-dev\")\n, if using option \"-subvid\"!\n"},
        {"-subdev 1",
         please +
             "one or more subvendor-ids (option \"-subvid\")\n, if using option \"-subdev\"!\n"},
        {"-vid 1 -dev 1 -subvid 1",
         please +
             "one or more subdevice-ids (option \"-subdev\")\n, if using option \"-subvid\"!\n"},
        {"--version1", invalid + "--version1' !\n\n"},
        {"-sr", invalid + "-sr' !\n\n"},
        {"/-silent-not", ""},
        {"/silent", invalid + "-silent' !\n\n"},
        {"--flash1", invalid + "--flash1' !\n\n"},
        {"--simulated", invalid + "--simulated' !\n\n"},
        {"-check-for-valid-subsystem", invalid + "-check-for-valid-subsystem' !\n\n"},
        {"x --help", invalid + "x' !\n\n"},
        {"--silent x", ""},
        {"x --silent -v 1", invalid + "x' !\n\n"},
    };
    const server host;
    for (const auto& [words, said] : cases) {
        const run_result result = host.run("./cnatool " + words);
        EXPECT_EQ(result.status, words == "/-silent-not" ? 12 : 3) << words;
        EXPECT_EQ(result.out, said) << words;
        EXPECT_EQ(words == "/-silent-not" ? "" : result.err, "");
    }
    EXPECT_NE(host.calls(), "");  // of the one call that went on
}

TEST(Run, HelpVersionAndListsAreExact) {
    const std::pair<string, string> cases[] = {
        {"--help", golden("help.txt")},
        {"/h x", golden("help.txt")},
        {"-?", golden("help.txt")},
        {"--hiddenhelp --flash", golden("help.txt")},
        {"--info", "\ncnatool version 1.4.0.0\n"},
        {"--version", "1.4.0.0\n"},
        {"--show-return-codes", golden("return_codes.txt")},
        {"--show-return-code", golden("return_codes.txt")},
        {"-d 6 --help", ""},
        {"-v 0 --version", ""},
        {"--help --silent", ""},
        {"--version --silent -v 1", "1.4.0.0\n"},
    };
    const server host;
    for (const auto& [words, said] : cases) {
        const run_result result = host.run("./cnatool " + words);
        EXPECT_EQ(result.status, 0) << words;
        EXPECT_EQ(result.out, said) << words;
    }
    EXPECT_EQ(host.calls(), "");
    EXPECT_EQ(host.run("cp -L cnatool a-name-longer-than-its-text-field-holds; "
                       "./a-name-longer-than-its-text-field-holds --info")
                  .out,
              "\na-name-longer-than-its-text-fie version 1.4.0.0\n");
}

// --- texts --------------------------------------------------------------------------------

TEST(Run, TextsOfACheckAndAFlashAreExact) {
    const std::pair<string, string> cases[] = {
        {"-v 1 -pci-id " + c2 + "," + c4, "check_1.txt"},
        {"-v 2 -pci-id " + c2 + "," + c3, "check_2.txt"},
        {"-v 4 -pci-id " + c1, "check_4.txt"},
        {"-v 6 -pci-id " + c2 + "," + c4, "check_6.txt"},
        {"-v 1 --flash -pci-id " + c2 + "," + c3, "flash_1.txt"},
        {"-v 6 --flash -pci-id " + c1, "flash_6.txt"},
    };
    for (const auto& [words, expected] : cases) {
        const server host;
        EXPECT_EQ(host.run("unset TMPDIR; ./cnatool " + words).out, golden(expected)) << words;
    }
}

TEST(Run, SimulationReadsWhatARealRunLeft) {
    const server host;
    const run_result real = host.run("./cnatool -v 5" + select_all);
    EXPECT_NE(host.calls(), "");
    const run_result simulated = host.run("./cnatool --simulate -v 5" + select_all);
    EXPECT_EQ(simulated.status, real.status);
    EXPECT_EQ(simulated.out, real.out);
    EXPECT_EQ(host.calls(), "");
}

// --- flashing -----------------------------------------------------------------------------

string download(const string& controller, const string& image) {
    return "download 02-00-5E-10-" + controller + "-00 ./" + image + "\n";
}

TEST(Run, FlashReachesTheRightControllersAndNothingElse) {
    const string flash_c1 =
        download("01", "nx4200/nx4200-4.2.18.grp") + download("01", "nx4200/nx4200-bios-2.07.prg");
    const string flash_c2 = download("02", "nx4200-4.0.3-oem.grp");
    const string flash_c3 =
        download("03", "NX-8400/nx8400-5.6.2.grp") + download("03", "NX-8400/nx8400-bios-3.12.prg");
    struct {
        string setup, words;
        int status;
        string calls;
    } const cases[] = {
        {"", "--flash -pci-id " + c1, 0, flash_c1},
        {"", "--flash -pci-id " + c1 + "," + c1, 0, flash_c1},
        {"", "--flash -pci-id F1A0:4201", 0, flash_c1 + flash_c2},
        {"", "--flash -pci-id " + c3 + "," + c2, 0, flash_c3 + flash_c2},
        {"", "--flash --simulate -pci-id " + c1, 51, ""},
        {"./cnatool --silent", "--flash --simulate -pci-id " + c1, 0, ""},
        {"", "--flash --check-for-valid-subsystem -pci-id " + c1, 0, flash_c1},
        {"", "--flash --check-for-valid-subsystem -pci-id " + c1 + "," + c4, 4, ""},
        {"", "--flash --ctrl-wide-identical -pci-id " + c2, 1, ""},
        {"", "--flash --ctrl-vendor-wide-identical -pci-id " + c1 + "," + c3, 2, ""},
        {"", "--flash --check-for-valid-subsystem --ctrl-wide-identical -pci-id " + c2, 1,
         flash_c2},
        {"", "--flash -pci-id " + c4, 20, ""},
        {"rm nx4200/*.prg", "--flash -pci-id " + c1, 20, ""},
        {"rm nx4200-4.0.3*", "--flash -pci-id " + c2, 20, ""},
        {"sed -i 's/0011/0013/' FC_HBA_Conditions.txt", "--flash -pci-id " + c1, 0, ""},
        {"echo 'download 02-00-5E-10-02-00 exit 3' > $A/faults.txt",
         "--flash -pci-id " + c1 + "," + c2 + "," + c3, 10, flash_c1 + flash_c2},
        {"echo 'download * signal KILL' > $A/faults.txt", "--vox-mode --flash -pci-id " + c2, 10,
         flash_c2},
        {"rm $A/download/*", "--flash -pci-id " + c2, 10, flash_c2},
        {"mv nx4200/nx4200-4.2.18.grp 'nx4200/nx4200-4.2.18.grp;touch x'", "--flash -pci-id " + c1,
         10, ""},
        {"sed -i 's/nx4200 /nx4200-long-nam/' FC_HBA_Conditions.txt", "--flash -pci-id " + c1, 20,
         ""},
        {"sed -i 's,^Model .*NX-8400,Model : ../NX-8400,' $A/listhbas.txt; mkdir x; cp -r * .[!.]* "
         "x "
         "2>/dev/null; cd x",
         "--flash -pci-id " + c3, 10, ""},
        {"sed -i 's/^Permanent MAC .*-03-00/Permanent MAC : $(touch x)/' $A/listhbas.txt",
         "--flash -pci-id " + c3, 55, ""},
    };
    for (const auto& c : cases) {
        const server host;
        const run_result result = host.run(
            "A=opt/emulex/ocmanager/bin/answers; " + (c.setup.empty() ? "true" : c.setup) +
            "; : > opt/emulex/ocmanager/bin/calls.log; ./cnatool -v 1 " + c.words +
            "; echo $? > status; cp opt/emulex/ocmanager/bin/calls.log calls.log; cd \"$OLDPWD\"");
        (void)result;
        const fs::path ran_in = fs::exists(host.path / "x/status") ? host.path / "x" : host.path;
        EXPECT_EQ(read_file(ran_in / "status"), std::to_string(c.status) + "\n")
            << c.words << result.out;
        string downloads;
        std::istringstream calls(read_file(ran_in / "calls.log"));
        for (string line; std::getline(calls, line);) {
            downloads += line.starts_with("download") ? line + "\n" : "";
        }
        EXPECT_EQ(downloads, c.calls) << c.setup << " " << c.words << result.out;
        EXPECT_FALSE(fs::is_regular_file(ran_in / "x"));
    }
}

}  // namespace
