#include <gtest/gtest.h>

#include <sstream>

#include "base/text.h"
#include "call/paths.h"
#include "flash/flash_engine.h"
#include "flash/image_finder.h"
#include "support/support.h"

namespace {

using std::string;

TEST(ImageFinder, ThePatternIsThePrefixSide) {
    for (test_case& c : cases("images.txt")) {
        const scratch directory;
        const string path = directory.path.string() + "/";
        std::istringstream names(c["names"]);
        for (string name; names >> name;) {
            if (name.ends_with('/')) {
                std::filesystem::create_directory(path + name);
            } else {
                write_file(path + name, "x");
            }
        }
        char result[image_path_width] = "untouched";
        const bool found = !c["found"].empty();
        EXPECT_EQ(FindFlashImage(path.c_str(), result, c["pattern"].c_str()),
                  found ? RET_OK : RET_FW_NOT_AVAILABLE)
            << c["names"] << " " << c["pattern"];
        EXPECT_EQ(result, found ? path + c["found"] : "untouched");
    }
}

TEST(ImageFinder, PassesOverAnImageWhosePathDoesNotFit) {
    const scratch directory;
    write_file(directory.path / (string(200, 'x') + ".grp"), "x");
    write_file(directory.path / "y.grp", "y");
    string path = directory.path.string() + "/";
    path += string(image_path_width - 100 - path.size(), '/');
    char result[image_path_width] = "";
    EXPECT_EQ(FindFlashImage(path.c_str(), result, "*.grp"), RET_OK);
    EXPECT_EQ(result, path + "y.grp");
    EXPECT_EQ(FindFlashImage(path.c_str(), result, "xx"), RET_FW_NOT_AVAILABLE);
    EXPECT_EQ(FindFlashImage("no/such/directory/", result, "y"), RET_FW_NOT_AVAILABLE);
}

// What a whole run does not reach: base directory, directory or management tool go away under it.
TEST(FlashEngine, SaysWhatIsGone) {
    const scratch directory;
    const string base = directory.path.string() + "/";
    write_file(base + "fw.bin", "x");
    const string no_room = base + string(path_width - 30 - base.size(), '/');
    struct {
        string base, tool;
        exit_status status;
        string says;
    } const cases[] = {
        {"gone/", "/bin/true", RET_FW_NOT_AVAILABLE,
         "\t\tFirmware directory is not available: gone/\n\n"},
        {base, "gone", RET_SCLI_NOT_INSTALLED,
         "Error: Flash command gone is not available: No such file or directory\n\n"},
        {no_room, "/bin/true", RET_FLASH_ERROR,
         "Error: Command or file name is too long: " + no_room},
    };
    for (const auto& c : cases) {
        reset_run();
        set_text(pHBAFirmwarePath, c.base);
        set_text(pHBAFlashCmdPath, c.tool);
        set_text(get_new_config_file_entry()->firmware_file, "fw.bin");
        hba_info port{};
        set_text(port.Model, string(40, 'm'));
        port.flash_port = &port;
        global_ctrl_flags flags;
        const string out = output_of(
            [&] { EXPECT_EQ(FlashBladeEngine(&port, fc_config_entry_list, &flags), c.status); });
        EXPECT_NE(out.find(c.says), string::npos) << out;
        EXPECT_FALSE(port.flash_done);
        EXPECT_EQ(flags.MatchingCtrlModelInstalled, 1);
    }
}

}  // namespace
