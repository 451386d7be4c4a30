#include <gtest/gtest.h>

#include "check/subsystem_validation.h"
#include "support/support.h"

namespace {

using std::string;

TEST(Validation, GroupsHoldAtLeastOneReference) {
    reset_run();
    for (test_case& c : cases("groups.txt")) {
        const string& group = c["group"];
        const string says = c["missing"].empty()
                                ? "Reference subsystem " + c["found"] + " found in Group: " + group
                                : "Reference subsystem '" + c["missing"] + "' not in Group: >" +
                                      group + "< => Skip this group.";
        bool found = false;
        EXPECT_EQ(output_of([&] {
                      found = CheckModelGroupConsistency(group.c_str(), c["references"].c_str());
                  }),
                  "\tAlready identified reference subsystems: " + c["references"] +
                      "  Subsystem group: " + group + "\n\t" + says + "\n");
        EXPECT_EQ(found, c["missing"].empty()) << group << " " << c["references"];
    }
}

}  // namespace
