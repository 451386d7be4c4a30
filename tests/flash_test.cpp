#include <gtest/gtest.h>

#include <sstream>

#include "flash/image_finder.h"
#include "support/support.h"

namespace {

using std::string;

const bool images = add_cases("ImageFinder", "images.txt", {"names pattern found"}, [](auto& c) {
    const scratch directory;
    const string path = directory.path.string() + "/";
    std::istringstream names(c["names"]);
    for (string each; names >> each;) {
        if (each.ends_with('/')) {
            std::filesystem::create_directory(path + each);
        } else {
            write_file(path + each, "x");
        }
    }
    const std::filesystem::directory_iterator entries(path);
    const string name = c["found"] == "first" ? entries->path().filename().string() : c["found"];
    char result[image_path_width] = "untouched";
    const bool found = name != "none";
    EXPECT_EQ(FindFlashImage(path.c_str(), result, c["pattern"].c_str()),
              found ? RET_OK : RET_FW_NOT_AVAILABLE);
    EXPECT_EQ(result, found ? path + name : "untouched");
});

TEST(ImageFinder, PassesOverAnImageWhosePathDoesNotFit) {
    const scratch directory;
    write_file(directory.path / (string(101, 'x') + ".grp"), "x");
    write_file(directory.path / (string(100, 'y') + ".grp"), "y");
    string path = directory.path.string() + "/";
    path += string(image_path_width - 105 - path.size(), '/');
    char result[image_path_width] = "";
    EXPECT_EQ(FindFlashImage(path.c_str(), result, "*.grp"), RET_OK);
    EXPECT_EQ(result, path + string(100, 'y') + ".grp");
    EXPECT_EQ(FindFlashImage("no/such/directory/", result, "y"), RET_FW_NOT_AVAILABLE);
}

}  // namespace
