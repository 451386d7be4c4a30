#include <gtest/gtest.h>

#include <map>
#include <set>

#include "base/list.h"
#include "base/output.h"
#include "conditions/conditions_file.h"
#include "support/support.h"

namespace {

using std::string;

exit_status read_text(const string& text) {
    reset_run();
    return status_of([&] { return read_conditions(text_file(text)); });
}

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

TEST(Conditions, LinesBecomeRowsOrEndTheRun) {
    for (test_case& c : cases("tables.txt")) {
        const exit_status status = read_text(c["table"]);
        EXPECT_EQ(std::to_string(status), c.contains("status") ? c["status"] : "0") << c["table"];
        if (!c.contains("status")) {
            EXPECT_EQ(rows_text(), c["rows"]) << c["table"];
            EXPECT_EQ(fc_config_entry_list == nullptr, c["rows"].empty());
        }
    }
    EXPECT_EQ(Read_FC_Config_File("no/such/table"), RET_FC_HBA_CONDITIONS_MISSING);
    EXPECT_EQ(Read_FC_Config_File("."), RET_OK);
}

// A column is refused where something is decided by it, and cut where it is only echoed.
TEST(Conditions, LongColumnsAreRefusedOrCut) {
    const std::map<std::size_t, std::size_t> rooms{{0, 19}, {1, 19},  {6, 19}, {9, 79}, {10, 79},
                                                   {13, 9}, {14, 19}, {16, 9}, {17, 19}};
    const std::map<std::size_t, std::size_t> rooms_cut{{7, 19},  {8, 19}, {11, 83},
                                                       {12, 19}, {15, 9}, {18, 9}};
    const auto line_with = [](std::size_t column, std::size_t length) {
        string line = "#\n";
        for (std::size_t i = 0; i < 20; ++i) {
            line += (i == column ? string(length, 'x') : i >= 2 && i <= 5 ? "1" : "v");
            line += i < 19 ? " | " : "\n";
        }
        return line;
    };
    for (const auto& [column, room] : rooms) {
        EXPECT_EQ(read_text(line_with(column, room)), RET_OK) << column;
        const string line = line_with(column, room + 1);
        EXPECT_EQ(output_of([&] { EXPECT_EQ(read_text(line), RET_FATAL_ERROR); }),
                  "\nError line 2: column " + std::to_string(column) + " is longer than " +
                      std::to_string(room) + " characters: " + string(room + 1, 'x') + "\n");
        EXPECT_EQ(read_text(line_with(column, 5000)), RET_FATAL_ERROR);
    }
    for (const auto& [column, room] : rooms_cut) {
        // What stands around the long column holds what it held.
        EXPECT_EQ(read_text(line_with(column, room + 800)), RET_OK) << column;
        const fc_config_file_entry& row = **fc_config_entry_list;
        EXPECT_EQ(row.vendor_id + row.subdevice_id, 2);
        EXPECT_STREQ(row.firmware_file, "v");
        EXPECT_STREQ(row.bios_file, "v");
        EXPECT_EQ(row.col12_text, column == 12 ? string(room, 'x') : "v");
        EXPECT_STREQ(row.periphery_list->next->next->vendor, "v");
    }
}

// The table of the sample server says what its writer meant.
TEST(Conditions, SampleTableIsSound) {
    EXPECT_EQ(read_text(read_file(string(SOURCE_DIRECTORY) + "/demo/server/FC_HBA_Conditions.txt")),
              RET_OK);
    std::set<string> seen;
    for (const fc_config_file_entry* row : entries(fc_config_entry_list)) {
        EXPECT_NE(row->vendor_id, 0) << row->model;
        EXPECT_TRUE(seen.insert(string(row->vendor) + "|" + row->model + "|" + row->vendor_id_text +
                                row->device_id_text + row->subvendor_id_text +
                                row->subdevice_id_text)
                        .second)
            << "unreachable behind a row of the same names and ids: " << row->model;
    }
    EXPECT_GE(seen.size(), 3U);
}

}  // namespace
