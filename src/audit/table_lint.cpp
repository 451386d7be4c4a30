#include "audit/table_lint.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <tuple>

#include "base/lines.h"
#include "base/list.h"
#include "base/text.h"
#include "call/paths.h"
#include "inventory/management_tool.h"

namespace {

using std::string_view;
using row_entry = fc_config_file_entry;

// --- a line as it stands in the file ------------------------------------------------------

bool has_byte_beyond_ascii(string_view line) {
    return std::any_of(line.begin(), line.end(),
                       [](char c) { return static_cast<unsigned char>(c) > 0x7F; });
}

struct line_oddity {
    bool (*is_odd)(string_view line);
    const char* what;
    const char* advice;
};

constexpr line_oddity line_oddities[] = {
    {[](string_view line) { return line.find("||") != string_view::npos; },
     "two bars stand together and count as one: all columns behind them move to the left.",
     "Put a blank between the two bars."},
    {[](string_view line) { return line.find('\r') != string_view::npos; },
     "it holds a carriage return, which stays in its column.",
     "Write the file with line ends of a newline alone."},
    {has_byte_beyond_ascii, "it holds a character beyond ASCII.",
     "Compare the text with what the management tool prints, byte by byte."},
};

// --- a row as it was read -----------------------------------------------------------------

// A row that goes on behind its names has a vendor id, or it is not read at all.
bool is_empty(const row_entry& row) {
    return is_blank(row.vendor) && is_blank(row.model) && row.vendor_id_text[0] == '\0';
}

// Without subsystem identifiers, 0 in both, a row serves a selection by two.
bool has_zero_id(const row_entry& row) {
    return row.vendor_id == 0 || row.device_id == 0 ||
           (row.subvendor_id == 0) != (row.subdevice_id == 0);
}

bool names_all_and_some_products(const row_entry& row) {
    bool all = false;
    bool some = false;
    for (const fc_periphery_info* triple = row.periphery_list; triple != nullptr;
         triple = triple->next) {
        if (!is_blank(triple->vendor)) {
            (triple->product_list[0] == '\0' ? all : some) = true;
        }
    }
    return all && some;
}

struct row_oddity {
    bool (*is_odd)(const row_entry& row);
    const char* what;
    const char* advice;
};

constexpr row_oddity row_oddities[] = {
    {has_zero_id, "one of its identifiers is 0, which is no controller's.",
     "Fill in the identifier; only both subsystem identifiers together may be 0."},
    {names_all_and_some_products,
     "a storage vendor without products, all of which are allowed, stands beside one with them.",
     "See whether all products of that vendor are meant."},
};

constexpr row_oddity empty_row{is_empty, "it is an empty row.",
                               "Take the line out, or let it begin with a number sign."};

// The columns by which something is decided. A text in one that fills it may have been cut to fit.
struct column {
    const char* name;
    std::span<char> (*field)(row_entry& row);
};

constexpr column columns[] = {
    {"vendor", text_of<&row_entry::vendor>},
    {"model", text_of<&row_entry::model>},
    {"vendor id", text_of<&row_entry::vendor_id_text>},
    {"device id", text_of<&row_entry::device_id_text>},
    {"subvendor id", text_of<&row_entry::subvendor_id_text>},
    {"subdevice id", text_of<&row_entry::subdevice_id_text>},
    {"directory", text_of<&row_entry::firmware_dir>},
    {"firmware", text_of<&row_entry::firmware_file>},
    {"BIOS", text_of<&row_entry::bios_file>},
};

bool is_full(std::span<const char> field) { return std::strlen(field.data()) == field.size() - 1; }

void note_odd(std::vector<finding>& findings, const row_entry& row, const std::string& what,
              const char* advice) {
    findings.push_back(found_at_row(finding_code::row_odd, row, what));
    findings.back().advice = advice;
}

void note_full(std::vector<finding>& findings, const row_entry& row, const std::string& name) {
    note_odd(findings, row, fill_in("the column %s is filled to its last character.", {name}),
             "See whether the text was cut to fit.");
}

void judge_widths(row_entry& row, std::vector<finding>& findings) {
    for (const column& each : columns) {
        if (is_full(each.field(row))) {
            note_full(findings, row, each.name);
        }
    }
    for (const fc_periphery_info* triple = row.periphery_list; triple != nullptr;
         triple = triple->next) {
        if (is_full(triple->vendor)) {
            note_full(findings, row, "storage vendor");
        }
        if (is_full(triple->product_list)) {
            note_full(findings, row, "products");
        }
    }
}

void judge_row(row_entry& row, string_view line, std::vector<finding>& findings) {
    for (const line_oddity& oddity : line_oddities) {
        if (oddity.is_odd(line)) {
            note_odd(findings, row, oddity.what, oddity.advice);
        }
    }
    if (is_empty(row)) {
        note_odd(findings, row, empty_row.what, empty_row.advice);
        return;
    }
    for (const row_oddity& oddity : row_oddities) {
        if (oddity.is_odd(row)) {
            note_odd(findings, row, oddity.what, oddity.advice);
        }
    }
    judge_widths(row, findings);
}

// --- rows against each other --------------------------------------------------------------

void find_repeated_rows(std::span<row_entry*> rows, std::vector<finding>& findings) {
    using key = std::tuple<string_view, string_view, std::int32_t, std::int32_t, std::int32_t,
                           std::int32_t>;
    std::map<key, const row_entry*> earlier;
    for (const row_entry* row : rows) {
        if (is_empty(*row)) {
            continue;
        }
        const auto [place, is_new] =
            earlier.try_emplace({row->vendor, row->model, row->vendor_id, row->device_id,
                                 row->subvendor_id, row->subdevice_id},
                                row);
        if (!is_new) {
            findings.push_back(found_at_row(
                finding_code::row_unreachable, *row,
                fill_in("line %s has the same names and identifiers: where that one has judged or "
                        "flashed, this row does nothing.",
                        {std::to_string(place->second->line)})));
        }
    }
}

// What has made a comment of a line that was meant as a row; empty: nothing has.
string_view hidden_by(string_view line) {
    line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
    if (line.starts_with('#') || line.find('|') == string_view::npos) {
        return {};
    }
    if (line.find('#') != string_view::npos) {
        return "number sign";
    }
    const bool is_rule = line.find_first_not_of("-+| \t\r\n") == string_view::npos;
    return line.find("--+--") != string_view::npos && !is_rule ? "'--+--'" : "";
}

void note_line(std::vector<finding>& findings, int number, const std::string& what,
               const char* advice) {
    row_entry line{};
    line.line = number;
    note_odd(findings, line, what, advice);
}

}  // namespace

void judge_table(std::vector<finding>& findings) {
    constexpr string_view byte_order_mark = "\xEF\xBB\xBF";
    const std::span<row_entry*> rows = entries(fc_config_entry_list);
    find_repeated_rows(rows, findings);
    const input_file file = open_for_reading(pHBAConditionsPath);
    if (file.stream == nullptr) {
        return;
    }
    auto row = rows.begin();
    char buffer[line_width];
    for (int number = 1; next_line(file, buffer); ++number) {
        string_view line = buffer;
        if (number == 1 && line.starts_with(byte_order_mark)) {
            note_line(findings, number, "the file begins with a byte order mark.",
                      "Write the file without it.");
            line.remove_prefix(byte_order_mark.size());
        }
        if (row != rows.end() && (*row)->line == number) {
            judge_row(**row, line, findings);
            ++row;
        } else if (const string_view what = hidden_by(line); !what.empty()) {
            note_line(findings, number,
                      fill_in("the %s in it makes a comment of the whole line.", {what}),
                      "Begin the line with a number sign, or do without what makes the comment.");
        }
    }
}
