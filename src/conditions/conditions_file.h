#pragma once

#include <cstdint>
#include <string_view>

#include "base/exit_status.h"
#include "base/lines.h"

/// One allowed storage vendor of a row.
struct fc_periphery_info {
    char vendor[10];        ///< compared exactly with a target's VendorID
    char product_list[20];  ///< comma list of product prefixes; empty accepts every product
    char third[10];         ///< stored and echoed only
    fc_periphery_info* next;
};

/// One row of the conditions table: one controller model.
struct fc_config_file_entry {
    char vendor[20];  ///< compared as a prefix of a port's Mfg
    char model[20];   ///< compared as a prefix of a port's Model
    char vendor_id_text[6];
    char device_id_text[6];
    char subvendor_id_text[6];
    char subdevice_id_text[6];
    std::int32_t vendor_id;  ///< the numbers of the four texts; 0 where the column is missing
    std::int32_t device_id;
    std::int32_t subvendor_id;
    std::int32_t subdevice_id;
    char firmware_dir[20];  ///< below the firmware base directory; empty: the port's Model
    char col7_text[20];     ///< this one, 8, 11 and 12 are stored and echoed only
    char col8_text[20];
    char firmware_file[80];  ///< name pattern of the firmware image
    char bios_file[80];      ///< name pattern of the BIOS image; empty: none is flashed
    char col11_text[84];
    char col12_text[20];
    fc_periphery_info* periphery_list;  ///< null: no storage is allowed
    std::int32_t line;                  ///< of the file, counted from 1; no walk reads it
    std::int32_t piece;                 ///< the same as messages count it: by pieces
};

/// The table's rows in file order, ended by a null entry; null while there is no row. Rows and
/// their triples live until the process ends.
extern fc_config_file_entry** fc_config_entry_list;

/// A new zeroed row at the end of fc_config_entry_list; null when memory ran out.
fc_config_file_entry* get_new_config_file_entry();

/// A new zeroed entry, which the caller adds to a row; null when memory ran out.
fc_periphery_info* get_new_periphery_info_entry();

/// Reads the table at `path` into fc_config_entry_list. Gives 0, 15 when the file cannot be
/// opened, 54 without memory, 55 for a column that is longer than its field. A bad identifier
/// ends the process with 55.
exit_status Read_FC_Config_File(const char* path);

/// The same for a table that is open already. Gives 0, 54 or 55.
exit_status read_conditions(const input_file& file);

/// A piece of a table, which becomes a row or a comment: a line, or a part of a line that is too
/// long.
struct table_piece {
    std::string_view text;   ///< of `buffer`, behind a byte order mark
    std::int32_t line = 0;   ///< to which it belongs, counted from 1
    std::int32_t piece = 0;  ///< counted from 1
    bool ends_line = true;
    bool has_mark = false;  ///< a byte order mark was before it
    char buffer[line_width] = "";
};

/// Reads the piece behind `at`, or the first one into a new `at`. False at the end of the file.
bool next_piece(const input_file& file, table_piece& at);

/// Whether the reader passes over this piece as a comment: it holds a '#' or "--+--" anywhere.
bool is_comment(std::string_view piece);

/// Cuts the next column off `rest` of a piece and gives its text, cleaned, within `buffer`; null
/// when no column is left.
const char* next_column(std::string_view& rest, char (&buffer)[line_width]);

/// Releases all rows, for a process that reads more than one table.
void release_conditions();
