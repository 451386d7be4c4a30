#include <gtest/gtest.h>

#include "flash/image_finder.h"
#include "support/support.h"

namespace {

using std::string;

TEST(ImageFinder, ThePatternIsThePrefixSide) {
    const string longest(200, 'x');
    struct {
        std::vector<string> names;  // one that ends in a slash is a directory
        string pattern, found;      // empty: nothing fits
    } const cases[] = {
        {{"image.grp"}, "*.gr", "image.grp"},
        {{"image.gr"}, "*.grp", ""},
        {{"image.GRP"}, "*.grp", ""},
        {{"fw.1.grp"}, "*.grp", "fw.1.grp"},
        {{"fw.grp.bak"}, "*.grp", ""},
        {{"a.tar.gz"}, "*.tar.gz", ""},
        {{"a.b"}, "*.", "a.b"},
        {{"noextension"}, "*.", ""},
        {{".hidden.grp"}, "*.grp", ""},
        {{".hidden"}, ".hid", ""},
        {{"a.grp", ".b.grp"}, "*.grp", "a.grp"},
        {{"xr_fw.bin.old"}, "xr_fw.bin", "xr_fw.bin.old"},
        {{"xr"}, "xr_fw.bin", ""},
        {{"*fw.bin"}, "*fw", "*fw.bin"},
        {{"fw.bin"}, "*fw", ""},
        {{"folder.grp/"}, "*.grp", "folder.grp"},
        {{"a.grp"}, "", ""},
        {{}, "*.grp", ""},
    };
    for (const auto& c : cases) {
        const scratch directory;
        const string path = directory.path.string() + "/";
        for (const string& name : c.names) {
            if (name.ends_with('/')) {
                std::filesystem::create_directory(path + name);
            } else {
                write_file(path + name, "x");
            }
        }
        char result[image_path_width] = "untouched";
        EXPECT_EQ(FindFlashImage(path.c_str(), result, c.pattern.c_str()),
                  c.found.empty() ? RET_FW_NOT_AVAILABLE : RET_OK)
            << c.pattern;
        EXPECT_EQ(result, c.found.empty() ? "untouched" : path + c.found);
        EXPECT_EQ(FindFlashImage((path + "gone/").c_str(), result, "a"), RET_FW_NOT_AVAILABLE);
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
}

}  // namespace
