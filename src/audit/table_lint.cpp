#include <algorithm>
#include <array>
#include <map>

#include "audit/survey.h"
#include "base/lines.h"
#include "base/list.h"
#include "base/text.h"
#include "call/paths.h"
#include "conditions/table_rows.h"

namespace {

using enum finding_code;
using std::string_view;
using row_entry = fc_config_file_entry;

bool is_of_model(const row_entry& row, const audit_scope& scope) {
    return scope.all || scope.model_ids.contains({row.vendor_id, row.device_id});
}

// Columns that have moved, or an identifier that is missing, may hide that the row is of the model.
bool may_be_of_model(const row_entry& row, string_view text, const audit_scope& scope) {
    const std::vector<std::int32_t> ids = ids_in(text);
    const auto holds = [&](std::int32_t id) { return std::ranges::count(ids, id) > 0; };
    return std::ranges::any_of(scope.model_ids, [&](const auto& model) {
        const auto [vendor, device] = model;
        return (holds(vendor) && holds(device)) ||
               (row.vendor_id == 0 && row.device_id == device) ||
               (row.device_id == 0 && row.vendor_id == vendor);
    });
}

// Whether a line may be of the model: its third and fourth columns name no other one.
bool may_hide_model(string_view text, const audit_scope& scope) {
    const std::vector<std::int32_t> ids = ids_in(text);
    return ids.size() < 4 || ids[2] < 0 || ids[3] < 0 || scope.model_ids.contains({ids[2], ids[3]});
}

struct byte_kind {
    bool (*holds)(string_view text);
    const char* what;
};

constexpr byte_kind byte_kinds[] = {
    {[](string_view text) { return text.find('\r') != string_view::npos; },
     "carriage returns stay in the last column"},
    {[](string_view text) {
         return std::ranges::any_of(text, [](unsigned char c) { return c > 0x7F; });
     },
     "there are characters beyond ASCII"},
};

/// A line of the table as it grows piece by piece.
struct table_line {
    std::string text;
    finding_place place;
    int pieces = 0;
    int comments = 0;       // among the pieces
    bool is_meant = false;  // by the scope: all are, or a piece is a row of the model
};

/// What is known of the table so far.
struct table_state {
    const audit_scope& scope;
    finding_list& findings;
    table_line line;
    std::array<std::string, std::size(byte_kinds)> lines_with;  // numbers
    std::map<std::array<std::int32_t, 4>, std::vector<const row_entry*>> earlier;
};

void compare_with_earlier(const row_entry& row, table_state& state) {
    auto& rows = state.earlier[{row.vendor_id, row.device_id, row.subvendor_id, row.subdevice_id}];
    if (!rows.empty()) {
        const auto before = std::ranges::find_if(
            rows, [&](const row_entry* each) { return has_wider_names(*each, row); });
        const bool is_all = before != rows.end();
        add_finding(
            state.findings, row_unreachable, at_row(row),
            fill_in("line %s has the same identifiers%s",
                    std::to_string((is_all ? *before : rows.front())->line),
                    is_all
                        ? ", and its names are prefixes of this row's: this one changes no answer."
                        : ": a flash goes by that one, and only a check comes to this one."));
    }
    rows.push_back(&row);
}

void note_bytes(const row_entry& row, string_view text, table_state& state) {
    for (std::size_t kind = 0; kind < std::size(byte_kinds); ++kind) {
        if (byte_kinds[kind].holds(text)) {
            std::string& lines = state.lines_with[kind];
            lines += (lines.empty() ? "" : ", ") + std::to_string(row.line);
        }
    }
}

// Notes what can also hide the model of the row.
void judge_columns(const row_entry& row, string_view text, finding_list& findings) {
    if (text.find("||") != string_view::npos) {
        add_finding(findings, row_bars, at_row(row),
                    "two bars stand together and count as one: all columns behind them move.");
    }
    if (has_zero_id(row)) {
        add_finding(findings, row_zero_id, at_row(row),
                    "one of its identifiers is 0, which is no controller's.");
    }
}

void judge_row(const row_entry& row, string_view text, table_state& state) {
    if (is_empty(row)) {
        if (state.scope.all) {
            add_finding(state.findings, row_empty, at_row(row), "it is an empty row.");
        }
        return;
    }
    const bool is_meant = is_of_model(row, state.scope);
    if (is_meant || may_be_of_model(row, text, state.scope)) {
        judge_columns(row, text, state.findings);
    }
    if (!is_meant) {
        return;
    }
    if (allows_all_and_some(row)) {
        add_finding(state.findings, row_products, at_row(row),
                    "one vendor stands in it with products and without: all are allowed.");
    }
    compare_with_earlier(row, state);
    note_bytes(row, text, state);
}

// A line that has been read to its end.
void judge_line(table_state& state) {
    const table_line line = std::exchange(state.line, {});
    if (!line.is_meant && !may_hide_model(line.text, state.scope)) {
        return;
    }
    if (line.pieces > 1 && line.comments < line.pieces) {
        add_finding(state.findings, row_long, line.place,
                    fill_in("it is too long: it is read in %s pieces, each a row of its own.",
                            std::to_string(line.pieces)));
    }
    const string_view what = line.comments == 0 ? "" : hidden_by(line.text);
    if (!what.empty()) {
        add_finding(state.findings, row_hidden, line.place,
                    fill_in("the %s in it makes a comment of the whole line.", what));
    }
}

void add_piece(const table_piece& piece, bool is_meant, table_line& line) {
    if (line.pieces++ == 0) {
        line.place = in_file(pHBAConditionsPath, piece.line, piece.piece);
    }
    line.text += piece.text;
    line.comments += is_comment(piece.text) ? 1 : 0;
    line.is_meant = line.is_meant || is_meant;
}

}  // namespace

void judge_table(const audit_scope& scope, finding_list& findings) {
    const input_file file = open_for_reading(pHBAConditionsPath);
    if (file.stream == nullptr) {
        return;
    }
    table_state state{scope, findings, {}, {}, {}};
    const auto rows = entries(fc_config_entry_list);
    auto row = rows.begin();
    for (table_piece piece; next_piece(file, piece);) {
        const bool is_row = row != rows.end() && (*row)->piece == piece.piece;
        const bool is_meant = scope.all || (is_row && is_of_model(**row, scope));
        if (piece.has_mark && is_meant) {
            add_finding(findings, row_bytes, in_file(pHBAConditionsPath),
                        "the file begins with a byte order mark.");
        }
        if (is_row) {
            judge_row(**row++, piece.text, state);
        }
        add_piece(piece, is_meant, state.line);
        if (piece.ends_line) {
            judge_line(state);
        }
    }
    judge_line(state);
    for (std::size_t kind = 0; kind < std::size(byte_kinds); ++kind) {
        if (!state.lines_with[kind].empty()) {
            add_finding(findings, row_bytes, in_file(pHBAConditionsPath),
                        fill_in("%s: lines %s.", byte_kinds[kind].what, state.lines_with[kind]));
        }
    }
}
