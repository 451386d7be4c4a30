#include <gtest/gtest.h>

#include "check/subsystem_validation.h"
#include "support/support.h"

namespace {

using std::string;

const case_keys group_keys{"group references", "found missing"};

const bool groups = add_cases("Validation", "groups.txt", group_keys, [](test_case& c) {
    const string& group = c["group"];
    EXPECT_NE(c.contains("found"), c.contains("missing"));
    const string says = c.contains("found")
                            ? "Reference subsystem " + c["found"] + " found in Group: " + group
                            : "Reference subsystem '" + c["missing"] + "' not in Group: >" + group +
                                  "< => Skip this group.";
    bool found = false;
    EXPECT_EQ(output_of([&] {
                  found = CheckModelGroupConsistency(group.c_str(), c["references"].c_str());
              }),
              "\tAlready identified reference subsystems: " + c["references"] +
                  "  Subsystem group: " + group + "\n\t" + says + "\n");
    EXPECT_EQ(found, c.contains("found"));
});

}  // namespace
