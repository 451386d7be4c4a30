#include <gtest/gtest.h>

#include "base/list.h"
#include "base/output.h"
#include "conditions/conditions_file.h"
#include "support/support.h"

namespace {

using std::string;

// "vendor/model/ids/images{storage:products:third...}" of each row.
string rows_text() {
    string text;
    for (const fc_config_file_entry* row : entries(fc_config_entry_list)) {
        char ids[64];
        std::snprintf(ids, sizeof ids, "%x:%x:%x:%x", row->vendor_id, row->device_id,
                      row->subvendor_id, row->subdevice_id);
        text += string(row->vendor) + "/" + row->model + "/" + ids + "/" + row->firmware_dir + "," +
                row->firmware_file + "," + row->bios_file;
        for (const auto* storage = row->periphery_list; storage; storage = storage->next) {
            text += string("{") + storage->vendor + ":" + storage->product_list + ":" +
                    storage->third + "}";
        }
        text += ";";
    }
    return text;
}

const bool tables = add_results("Conditions", "tables.txt", "table", [](test_case& c) {
    exit_status status = RET_OK;
    output_of([&] { status = status_of([&] { return read_conditions(text_file(c["table"])); }); });
    return status == RET_OK ? rows_text() : std::to_string(status);
});

TEST(Conditions, WhatCannotBeReadEndsTheRun) {
    reset_run();
    for (const char* name : {"Vendor-Id", "Device-Id", "Sub-Vendor-Id", "Sub-System-Id"}) {
        static string row = "V | M | ";
        DebugLevel = 1;
        testing::internal::CaptureStderr();
        status_of([] { return read_conditions(text_file(row + "zz")); });
        EXPECT_EQ(testing::internal::GetCapturedStderr(),
                  string("\nError line 1: ") + name + " zz is not a valid hex value!\n");
        row += "1 | ";
    }
    EXPECT_EQ(Read_FC_Config_File("no/such/table"), RET_FC_HBA_CONDITIONS_MISSING);
    EXPECT_EQ(Read_FC_Config_File("."), RET_FC_HBA_CONDITIONS_MISSING);
}

}  // namespace
