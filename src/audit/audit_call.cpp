#include "audit/audit_call.h"

#include <algorithm>

#include "base/output.h"
#include "base/text.h"
#include "call/command_line.h"
#include "call/help.h"

namespace {

using std::string_view;

constexpr char help_text[] =
    "\nUSAGE:\t %s [ selection ] [ --flash ] [ --conpath <path> ] [ --accept <list> ] [ --json "
    "]\n\n"
    "Says what the answer of a run of cnatool rests on: from the table, the output files that a\n"
    "run has left, and the images. It runs no command and writes no file.\n\n"
    "Without a selection: all controllers with their identifiers, and what is odd in table and\n"
    "output files. With a selection: what a run would check there, and what it would leave out.\n\n"
    "-pci-id, -vid, -dev, -subvid, -subdev, -vn, -mod\n   the selection, as cnatool takes it.\n"
    "--flash\n   also say which images a flash would send, and what is the matter with them.\n"
    "--conpath <path>\n   path of directory in which FC_HBA_Conditions.txt is deposited.\n"
    "--accept <code>[@<place>],...\n   show these findings as accepted, and do not count them.\n"
    "--json\n   write one JSON object in place of text.\n"
    "--version\n   show version of this program.\n"
    "--help, -h, -?\n   show help message.\n\n"
    "Exit status: 0 no error or warning, 1 errors or warnings, 2 it could not do its work.\n\n";

enum class word_kind { list, directory, flash, json, accept, help, version };

struct word_row {
    string_view word;
    word_kind kind;
    std::optional<list_kind> list = {};
};

constexpr word_row words[] = {
    {"-pci-id", word_kind::list},
    {"-vid", word_kind::list, list_of_vendor_ids},
    {"-dev", word_kind::list, list_of_device_ids},
    {"-subvid", word_kind::list, list_of_subvendor_ids},
    {"-subdev", word_kind::list, list_of_subdevice_ids},
    {"-vn", word_kind::list, list_of_vendor_names},
    {"-mod", word_kind::list, list_of_models},
    {"--conpath", word_kind::directory},
    {"--flash", word_kind::flash},
    {"--json", word_kind::json},
    {"--accept", word_kind::accept},
    {"-?", word_kind::help},
    {"-h", word_kind::help},
    {"--help", word_kind::help},
    {"--version", word_kind::version},
};

audit_status show(word_kind kind) {
    const bool written = kind == word_kind::help ? write_out(fill_in(help_text, program_name))
                                                 : write_out(tool_version() + "\n");
    return written ? AUDIT_NO_FINDING : AUDIT_GAVE_UP;
}

std::optional<audit_status> take_accepted(const char* list, audit_call& call) {
    if (const auto unknown = read_accepted(list == nullptr ? "" : list, call.accepted)) {
        return give_up(fill_in("--accept takes CODE[@PLACE],..., and '%s' is no code", *unknown));
    }
    return std::nullopt;
}

// Takes the options that the audit alone has out of `argv`, which ends with a null.
std::optional<audit_status> take_own_words(int argc, char** argv, std::vector<char*>& rest,
                                           audit_call& call) {
    std::optional<audit_status> ended;
    for (int i = 1; i < argc && !ended; ++i) {
        if (argv[i][0] == '/') {
            argv[i][0] = '-';
        }
        const word_row* row = std::ranges::find(words, string_view(argv[i]), &word_row::word);
        if (row == std::end(words)) {
            print_error("\n\nInvalid argument '%s' !\n\n", argv[i]);
            return AUDIT_GAVE_UP;
        }
        switch (row->kind) {
            case word_kind::help:
            case word_kind::version:
                return show(row->kind);
            case word_kind::json:
                call.json = true;
                break;
            case word_kind::accept:
                ended = take_accepted(argv[++i], call);
                break;
            case word_kind::list:
                call.lists.push_back({row->list, argv[i + 1] == nullptr ? "" : argv[i + 1]});
                [[fallthrough]];
            case word_kind::directory:
                rest.push_back(argv[i++]);
                [[fallthrough]];
            case word_kind::flash:
                rest.push_back(argv[i]);
        }
    }
    std::erase(rest, nullptr);
    return ended;
}

}  // namespace

std::optional<audit_status> read_audit_call(int argc, char** argv, audit_call& call) {
    std::vector<char*> rest;
    set_program_name(argc > 0 ? argv[0] : "");
    if (const auto ended = take_own_words(argc, argv, rest, call)) {
        return ended;
    }
    report_errors();
    rest.insert(rest.begin(), argv[0]);
    if (argc > 0 && read_command_line(static_cast<int>(rest.size()), rest.data())) {
        return AUDIT_GAVE_UP;
    }
    return std::nullopt;
}
