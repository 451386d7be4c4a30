#include "conditions/conditions_file.h"

#include <array>
#include <cstring>
#include <list>
#include <span>
#include <string_view>
#include <vector>

#include "base/end_process.h"
#include "base/lines.h"
#include "base/list.h"
#include "base/output.h"
#include "base/text.h"

fc_config_file_entry** fc_config_entry_list = nullptr;

namespace {

std::list<fc_config_file_entry> rows;
std::list<fc_periphery_info> triples;
std::vector<fc_config_file_entry*> slots;

// How a column is stored and echoed. A column that decides something is never cut.
struct column_format {
    int echo_width;
    const char* echo_end;
    bool may_be_cut;
};

constexpr column_format model_format{16, " |", false};
constexpr column_format id_format{6, " |", false};
constexpr column_format name_format{12, " |", false};
constexpr column_format echoed_format{12, " |", true};
constexpr column_format wide_format{18, " |", false};
constexpr column_format third_format{12, "", true};

struct row_column {
    std::span<char> (*field)(fc_config_file_entry&);
    column_format format;
    std::int32_t fc_config_file_entry::*number = nullptr;
    const char* id_name = nullptr;
};

using entry = fc_config_file_entry;

constexpr std::array row_columns{
    row_column{text_of<&entry::vendor>, wide_format},
    row_column{text_of<&entry::model>, model_format},
    row_column{text_of<&entry::vendor_id_text>, id_format, &entry::vendor_id, "Vendor-Id"},
    row_column{text_of<&entry::device_id_text>, id_format, &entry::device_id, "Device-Id"},
    row_column{text_of<&entry::subvendor_id_text>, id_format, &entry::subvendor_id,
               "Sub-Vendor-Id"},
    row_column{text_of<&entry::subdevice_id_text>, id_format, &entry::subdevice_id,
               "Sub-System-Id"},
    row_column{text_of<&entry::firmware_dir>, name_format},
    row_column{text_of<&entry::col7_text>, echoed_format},
    row_column{text_of<&entry::col8_text>, echoed_format},
    row_column{text_of<&entry::firmware_file>, name_format},
    row_column{text_of<&entry::bios_file>, name_format},
    row_column{text_of<&entry::col11_text>, echoed_format},
    row_column{text_of<&entry::col12_text>, echoed_format},
};

struct triple_column {
    std::span<char> (*field)(fc_periphery_info&);
    column_format format;
};

constexpr std::array triple_columns{
    triple_column{text_of<&fc_periphery_info::vendor>, name_format},
    triple_column{text_of<&fc_periphery_info::product_list>, wide_format},
    triple_column{text_of<&fc_periphery_info::third>, third_format},
};

// The position of the reader; columns count from 0 in each piece.
struct position {
    const table_piece& in;
    std::size_t column = 0;
};

exit_status store_text(std::span<char> field, const column_format& format, const char* text,
                       const position& at) {
    if (std::strlen(text) >= field.size() && !format.may_be_cut) {
        Print(1, "\nError line %d: column %d is longer than %d characters: %s\n", at.in.piece,
              static_cast<int>(at.column), static_cast<int>(field.size()) - 1, text);
        return RET_FATAL_ERROR;
    }
    set_text(field, text);
    return RET_OK;
}

void echo(const column_format& format, std::span<const char> field) {
    Print(5, " %*s%s", format.echo_width, field.data(), format.echo_end);
}

void store_number(fc_config_file_entry& row, const row_column& column, const position& at) {
    const char* text = column.field(row).data();
    row.*column.number = number_of(text, 16);
    if (row.*column.number < 0) {
        // Not through PrintDebug: this is printed only with a debug level and the screen on.
        if (DebugLevel > 0 && PrintDebugOnScreen != 0) {
            print_error("\nError line %d: %s %s is not a valid hex value!\n", at.in.piece,
                        column.id_name, text);
        }
        end_process(RET_FATAL_ERROR);
    }
}

/// The row that is being read, and its triples so far.
struct open_row {
    fc_config_file_entry* row = nullptr;
    fc_periphery_info** link = nullptr;   // where the next triple goes
    fc_periphery_info* triple = nullptr;  // the last one
};

exit_status begin_row(open_row& open, const position& at) {
    open.row = get_new_config_file_entry();
    if (open.row == nullptr) {
        Print(1, "Could not allocate memory for new fc_config_file entry.\n");
        return RET_MEMALLOC_FAIL;
    }
    open.row->line = at.in.line;
    open.row->piece = at.in.piece;
    open.link = &open.row->periphery_list;
    return RET_OK;
}

exit_status begin_triple(open_row& open) {
    open.triple = get_new_periphery_info_entry();
    if (open.triple == nullptr) {
        Print(1, "Could not allocate memory for new fc_periphery_info.\n");
        return RET_MEMALLOC_FAIL;
    }
    *open.link = open.triple;
    open.link = &open.triple->next;
    return RET_OK;
}

exit_status store_row_column(fc_config_file_entry& row, const char* text, const position& at) {
    const row_column& column = row_columns[at.column];
    const std::span<char> field = column.field(row);
    if (const exit_status status = store_text(field, column.format, text, at)) {
        return status;
    }
    if (column.number != nullptr) {
        store_number(row, column, at);
    }
    echo(column.format, field);
    return RET_OK;
}

exit_status store_triple_column(open_row& open, const char* text, const position& at) {
    const std::size_t place = (at.column - row_columns.size()) % triple_columns.size();
    exit_status status = place == 0 ? begin_triple(open) : RET_OK;
    if (status != RET_OK) {
        return status;
    }
    const triple_column& column = triple_columns[place];
    const std::span<char> field = column.field(*open.triple);
    status = store_text(field, column.format, text, at);
    if (status == RET_OK) {
        echo(column.format, field);
    }
    return status;
}

exit_status store_column(open_row& open, const char* text, const position& at) {
    return at.column < row_columns.size() ? store_row_column(*open.row, text, at)
                                          : store_triple_column(open, text, at);
}

// What can become of a piece of the file, in the order of the tests:
//   - it is a comment: passed over
//   - it holds no column, only bars and no newline behind them: passed over
//   - anything else, an empty line too: a row, of as many columns as there are
exit_status read_piece(const table_piece& piece) {
    if (is_comment(piece.text)) {
        return RET_OK;
    }
    open_row open;
    std::string_view rest = piece.text;
    char buffer[line_width];
    for (position at{piece}; const char* text = next_column(rest, buffer); ++at.column) {
        exit_status status = at.column == 0 ? begin_row(open, at) : RET_OK;
        if (status == RET_OK) {
            status = store_column(open, text, at);
        }
        if (status != RET_OK) {
            return status;
        }
    }
    if (open.row != nullptr) {
        Print(5, "\n");
    }
    return RET_OK;
}

}  // namespace

fc_config_file_entry* get_new_config_file_entry() {
    fc_config_file_entry* row = new_record(rows);
    return row != nullptr && append(slots, fc_config_entry_list, row) ? row : nullptr;
}

fc_periphery_info* get_new_periphery_info_entry() { return new_record(triples); }

exit_status Read_FC_Config_File(const char* path) {
    const input_file file = open_for_reading(path);
    return file.stream == nullptr ? RET_FC_HBA_CONDITIONS_MISSING : read_conditions(file);
}

exit_status read_conditions(const input_file& file) {
    for (table_piece piece; next_piece(file, piece);) {
        if (const exit_status status = read_piece(piece)) {
            return status;
        }
    }
    return RET_OK;
}

bool next_piece(const input_file& file, table_piece& at) {
    constexpr std::string_view byte_order_mark = "\xEF\xBB\xBF";
    at.line += at.ends_line ? 1 : 0;
    ++at.piece;
    if (!next_line(file, at.buffer)) {
        return false;
    }
    at.text = at.buffer;
    at.ends_line = at.text.ends_with('\n');
    at.has_mark = at.piece == 1 && at.text.starts_with(byte_order_mark);
    at.text.remove_prefix(at.has_mark ? byte_order_mark.size() : 0);
    return true;
}

const char* next_column(std::string_view& rest, char (&buffer)[line_width]) {
    const auto part = next_part(rest, '|');
    if (!part) {
        return nullptr;
    }
    set_text(buffer, *part);
    return cleanString(buffer);
}

bool is_comment(std::string_view piece) {
    return piece.find('#') != std::string_view::npos ||
           piece.find("--+--") != std::string_view::npos;
}

void release_conditions() {
    rows.clear();
    triples.clear();
    slots.clear();
    fc_config_entry_list = nullptr;
}
