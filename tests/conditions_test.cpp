#include <gtest/gtest.h>

#include <set>

#include "conditions/conditions_file.h"
#include "frame/list.h"
#include "frame/output.h"
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
        text += "\n";
    }
    return text;
}

const string ids = "V | M | 1A2B | 0C3D | 1 | 2 | dir | a | b | fw | bios | c | d";
const string ids_row = "V/M/1a2b:c3d:1:2/dir,fw,bios";

TEST(Conditions, LinesBecomeRows) {
    const std::pair<string, string> cases[] = {
        {"# only\n a # comment\n--+--\nx | --+--\n", ""},
        {"||||", ""},
        {"V | M", "V/M/0:0:0:0/,,\n"},
        {"\n",
         "/"
         "/0:0:0:0/,,\n"},
        {"||\n",
         "/"
         "/0:0:0:0/,,\n"},
        {"  \nV|M\n",
         "/"
         "/0:0:0:0/,,\nV/M/0:0:0:0/,,\n"},
        {ids, ids_row + "\n"},
        {ids + " |\n", ids_row + "{::}\n"},
        {ids + " | VENDA | A,B | x | VENDB", ids_row + "{VENDA:A,B:x}{VENDB::}\n"},
        {ids + " | VENDA | | x | VENDB |", ids_row + "{VENDA::x}{VENDB::}\n"},
        {ids + " | VENDA || x\n", ids_row + "{VENDA:x:}\n"},
        {ids + " | VENDA | \"A B\"\t| x\r\n", ids_row + "{VENDA:A B:x\r}\n"},
        {"V | M # no row\n" + ids + "\n", ids_row + "\n"},
        {ids + "|" + string(1100 - ids.size(), ' ') + "\n", ids_row + "{::}\n//0:0:0:0/,,\n"},
    };
    for (const auto& [text, rows] : cases) {
        EXPECT_EQ(read_text(text), RET_OK) << text;
        EXPECT_EQ(rows_text(), rows) << text;
        EXPECT_EQ(fc_config_entry_list == nullptr, rows.empty());
    }
}

TEST(Conditions, BadColumnsEndTheRun) {
    const std::pair<string, exit_status> cases[] = {
        {"V | M | zz", RET_FATAL_ERROR},
        {"V | M |\n", RET_FATAL_ERROR},
        {"V | M | 1 | | 3 | 4\n", RET_FATAL_ERROR},
        {"V | M | 1 | 2 | -3 | 4\n", RET_FATAL_ERROR},
        {"V | M | 1 || 3 | 4 | dir\n", RET_FATAL_ERROR},
        {"V | M | 0 | 0x2 | 0 | FFFF", RET_OK},
        {"V | M | 0x19A2", RET_FATAL_ERROR},
        {string(5000, 'x'), RET_FATAL_ERROR},
    };
    for (const auto& [text, status] : cases) {
        EXPECT_EQ(read_text(text), status) << text;
    }
    EXPECT_EQ(Read_FC_Config_File("no/such/table"), RET_FC_HBA_CONDITIONS_MISSING);
    EXPECT_EQ(Read_FC_Config_File("."), RET_OK);
}

// A column is refused where something is decided by it, and cut where it is only echoed.
TEST(Conditions, LongColumnsAreRefusedOrCut) {
    struct {
        int column, room;
        bool cut;
    } const cases[] = {
        {0, 19, false},  {1, 19, false},  {6, 19, false}, {7, 19, true},   {8, 19, true},
        {9, 79, false},  {10, 79, false}, {11, 83, true}, {12, 19, true},  {13, 9, false},
        {14, 19, false}, {15, 9, true},   {16, 9, false}, {17, 19, false}, {18, 9, true},
    };
    for (const auto& c : cases) {
        for (const std::size_t length : {0, 1, 800, 5000}) {
            string line;
            for (int column = 0; column < 20; ++column) {
                const bool is_id = column >= 2 && column <= 5;
                line += column == c.column ? string(static_cast<std::size_t>(c.room) + length, 'x')
                                           : string(is_id ? "1" : "v");
                line += column < 19 ? " | " : "";
            }
            exit_status status = RET_OK;
            const string out = output_of([&] { status = read_text("#\n" + line + "\n"); });
            const bool in_pieces =
                length == 5000;  // its next piece begins a row with a long vendor
            const bool refused = in_pieces || (length > 0 && !c.cut);
            EXPECT_EQ(status, refused ? RET_FATAL_ERROR : RET_OK) << c.column;
            if (in_pieces) {
                continue;
            }
            EXPECT_EQ(out, !refused
                               ? ""
                               : "\nError line 2: column " + std::to_string(c.column) +
                                     " is longer than " + std::to_string(c.room) + " characters: " +
                                     string(static_cast<std::size_t>(c.room) + length, 'x') + "\n");
            if (!refused) {
                // What stands around the long column holds what it held.
                const fc_config_file_entry& row = **fc_config_entry_list;
                EXPECT_EQ(row.vendor_id + row.subdevice_id, 2);
                EXPECT_EQ(string(row.col12_text).substr(0, 1), c.column == 12 ? "x" : "v");
                EXPECT_STREQ(row.periphery_list->next->next->vendor, "v");
            }
        }
    }
}

TEST(Conditions, ColumnsAreEchoedAsTheyAreStored) {
    const string table = ids + " | VENDA | A1,B2 | x | VENDB\nV | M | 1 | zz";
    reset_run();
    VerboseLevel = 5;
    const string echo = output_of([&] {
        EXPECT_EQ(status_of([&] { return read_conditions(text_file(table)); }), RET_FATAL_ERROR);
    });
    EXPECT_EQ(echo,
              "                  V |                M |   1A2B |   0C3D |      1 |      2 |"
              "          dir |            a |            b |           fw |         bios |"
              "            c |            d |        VENDA |              A1,B2 |            x"
              "        VENDB |\n"
              "                  V |                M |      1 |");
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
