#include "audit/audit_call.h"

#include <cstdio>
#include <string_view>
#include <vector>

#include "audit/progress.h"
#include "base/output.h"
#include "call/command_line.h"
#include "call/help.h"
#include "inventory/management_tool.h"

bool active_option_json = false;

namespace {

using std::string_view;

constexpr char help_text[] =
    "\nUSAGE:\t %s [ selection ] [ --flash ] [ --conpath <path> ] [ --json ]\n\n"
    "Says what the answer of a run of cnatool rests on: from the table, the output files that a\n"
    "run has left, and the images. It runs no command and writes no file.\n\n"
    "Without a selection: all controllers with their identifiers, and what is odd in table and\n"
    "output files. With a selection: what a run would check there, and what it would leave out.\n\n"
    "-pci-id, -vid, -dev, -subvid, -subdev, -vn, -mod\n"
    "   the selection, as cnatool takes it.\n"
    "--flash\n"
    "   also say which images a flash would send, and what is the matter with them.\n"
    "--conpath <path>\n"
    "   path of directory in which FC_HBA_Conditions.txt is deposited.\n"
    "--json\n"
    "   write one JSON object in place of text.\n"
    "--version\n"
    "   show version of this program.\n"
    "--help, -h, -?\n"
    "   show help message.\n\n"
    "Exit status: 0 no finding, 1 findings, 2 it could not do its work.\n\n";

enum class word_kind { taken_with_value, taken, json, help, version };

struct word_row {
    string_view word;
    word_kind kind;
};

constexpr word_row words[] = {
    {"-pci-id", word_kind::taken_with_value},
    {"-vid", word_kind::taken_with_value},
    {"-dev", word_kind::taken_with_value},
    {"-subvid", word_kind::taken_with_value},
    {"-subdev", word_kind::taken_with_value},
    {"-vn", word_kind::taken_with_value},
    {"-mod", word_kind::taken_with_value},
    {"--conpath", word_kind::taken_with_value},
    {"--flash", word_kind::taken},
    {"--json", word_kind::json},
    {"-?", word_kind::help},
    {"-h", word_kind::help},
    {"--help", word_kind::help},
    {"--version", word_kind::version},
};

const word_row* find_word(string_view element) {
    for (const word_row& row : words) {
        if (row.word == element) {
            return &row;
        }
    }
    return nullptr;
}

audit_status refuse(const char* element) {
    std::fprintf(stderr, "\n\nInvalid argument '%s' !\n\n", element);
    return AUDIT_GAVE_UP;
}

audit_status show(word_kind kind) {
    const bool written = kind == word_kind::help ? write_out(fill_in(help_text, {program_name}))
                                                 : write_out(tool_version() + "\n");
    return written ? AUDIT_NO_FINDING : AUDIT_GAVE_UP;
}

// Takes the audit's own words out of `argv`; what is left is the tool's.
std::optional<audit_status> take_own_words(int argc, char** argv, std::vector<char*>& rest) {
    for (int i = 1; i < argc; ++i) {
        if (argv[i][0] == '/') {
            argv[i][0] = '-';
        }
        const word_row* row = find_word(argv[i]);
        if (row == nullptr) {
            return refuse(argv[i]);
        }
        if (row->kind == word_kind::help || row->kind == word_kind::version) {
            return show(row->kind);
        }
        if (row->kind == word_kind::json) {
            active_option_json = true;
            continue;
        }
        rest.push_back(argv[i]);
        if (row->kind == word_kind::taken_with_value && i + 1 < argc) {
            rest.push_back(argv[++i]);
        }
    }
    return std::nullopt;
}

}  // namespace

std::optional<audit_status> read_audit_call(int argc, char** argv) {
    std::vector<char*> rest{argc > 0 ? argv[0] : nullptr};
    set_program_name(argc > 0 ? argv[0] : "");
    if (const auto ended = take_own_words(argc, argv, rest)) {
        return ended;
    }
    speak_of_errors();
    if (argc > 0 && read_command_line(static_cast<int>(rest.size()), rest.data())) {
        return AUDIT_GAVE_UP;
    }
    return std::nullopt;
}
