#include "call/command_line.h"

#include <string_view>

#include "base/output.h"
#include "base/text.h"
#include "call/help.h"
#include "call/options.h"
#include "call/paths.h"
#include "call/selection.h"

namespace {

using outcome = std::optional<exit_status>;  // the status to end with, or nothing to go on

constexpr std::size_t value_width = 1024;
constexpr int max_level = 6;

outcome refuse(const char* text) {
    Print(1, "%s", text);
    return RET_BAD_CALL;
}

// Empty, or an option in the place of the value.
bool is_no_value(std::string_view value) { return value.empty() || value.starts_with('-'); }

bool is_bad_value(std::string_view value) {
    return is_no_value(value) || value.size() >= value_width;
}

// --- the words ----------------------------------------------------------------------------

using word_test = bool (*)(std::string_view element, std::string_view word);

bool equals(std::string_view element, std::string_view word) { return element == word; }

bool begins(std::string_view element, std::string_view word) { return element.starts_with(word); }

bool contains(std::string_view element, std::string_view word) {
    return element.find(word) != std::string_view::npos;
}

bool is_debug_word(std::string_view element, std::string_view /*word*/) {
    return (begins(element, "--debug") || begins(element, "-d")) && !contains(element, "-dev");
}

bool is_verbose_word(std::string_view element, std::string_view /*word*/) {
    return begins(element, "-v") && !contains(element, "-vid") && !contains(element, "-vn") &&
           !contains(element, "--version");
}

// --- first and second pass: the output switches -------------------------------------------

/// Options that the rules behind the third pass compare.
enum mark : unsigned {
    mark_v = 1U << 0U,
    mark_d = 1U << 1U,
    mark_vid = 1U << 2U,
    mark_subvid = 1U << 3U,
    mark_dev = 1U << 4U,
    mark_subdev = 1U << 5U,
    mark_vn = 1U << 6U,
    mark_mod = 1U << 7U,
    marks_of_ids = mark_vid | mark_subvid | mark_dev | mark_subdev,
};

outcome silence(const char* /*value*/) {
    DebugLevel = 0;
    VerboseLevel = 0;
    PrintDebugOnScreen = 0;
    return std::nullopt;
}

struct level_option {
    word_test fits;
    std::string_view word, long_word;
    const char* refusal;
    int& level;
    unsigned mark;
};

const level_option level_options[] = {
    {is_debug_word, "-d", "--debug",
     "Please enter a valid debug-level (-d <debug-level>; min 0 - max 6)!\n", DebugLevel, mark_d},
    {is_verbose_word, "-v", "-v",
     "Please enter a valid verbose-level (-v <verbose-level>; min 0 - max 6)!\n", VerboseLevel,
     mark_v},
};

// `value` is null behind the last element.
outcome read_level(const level_option& option, std::string_view element, const char* value) {
    if ((element != option.word && element != option.long_word) || value == nullptr ||
        is_no_value(value)) {
        return refuse(option.refusal);
    }
    const int level = number_of(value, 10);
    if (level < 0 || level > max_level) {
        return refuse(option.refusal);
    }
    option.level = level;
    if (option.mark == mark_v) {
        PrintDebugOnScreen = level > 0 ? 1 : 0;
    }
    return std::nullopt;
}

void first_pass(int argc, char** argv) {
    set_program_name(argc > 0 ? argv[0] : "");
    for (int i = 1; i < argc; ++i) {
        if (argv[i][0] == '/') {
            argv[i][0] = '-';
        }
        if (contains(argv[i], "--silent")) {
            silence(nullptr);
        }
    }
}

outcome second_pass(int argc, char** argv, unsigned& marks) {
    for (int i = 1; i < argc; ++i) {
        if (contains(argv[i], "--silent")) {
            silence(nullptr);
            continue;
        }
        for (const level_option& option : level_options) {
            if (!option.fits(argv[i], option.word)) {
                continue;
            }
            if (const outcome refused =
                    read_level(option, argv[i], i + 1 < argc ? argv[i + 1] : nullptr)) {
                return refused;
            }
            marks |= option.mark;
            ++i;
            break;
        }
    }
    return std::nullopt;
}

outcome settle_switches(unsigned marks) {
    if ((marks & mark_v) != 0 && (marks & mark_d) != 0) {
        // The refusal is printed, also under --silent.
        DebugLevel = 0;
        VerboseLevel = 1;
        PrintDebugOnScreen = 1;
        return refuse("\nUsing options --debug and -v simultaneously is not supported!\n");
    }
    if ((marks & mark_d) != 0) {
        VerboseLevel = 0;
        PrintDebugOnScreen = 0;
    }
    if ((marks & mark_v) != 0) {
        PrintDebugOnScreen = 1;
    }
    return std::nullopt;
}

// --- third pass: everything else ----------------------------------------------------------

constexpr char bad_path[] =
    "Please enter a path for file FC_HBA_Conditions.txt and/or HBA firmware!\n";
constexpr char bad_subvid[] =
    "Please enter at least one controller sub-vendor-id (\"1A0F,2B03,...hex-value\")!\n";
constexpr char bad_vid[] =
    "Please enter at least one controller vendor-id (\"1A0F,2B03,...hex-value\")!\n";
constexpr char bad_model[] =
    "Please enter at least one controller-model string "
    "(\"LPe11002-M4, TQ900-HV31k, QLE2460... \")!\n";
constexpr char bad_vendor_name[] =
    "Please enter at least one controller vendor-name (\"Emulex, QLogic, ... \")!\n";

outcome show_help(const char* /*value*/) {
    print_help();
    return RET_OK;
}

outcome show_info(const char* /*value*/) {
    print_tool_info();
    return RET_OK;
}

outcome show_version(const char* /*value*/) {
    print_version();
    return RET_OK;
}

outcome show_return_codes(const char* /*value*/) {
    Print(1, "\nList of possible return codes\n%s", return_code_list().c_str());
    return RET_OK;
}

template <int& Flag>
outcome set_flag(const char* /*value*/) {
    Flag = 1;
    return std::nullopt;
}

template <list_kind Kind>
outcome select_by(const char* value) {
    p_option_input = save_list_of_ctrl_options(value, Kind);
    return std::nullopt;
}

outcome select_by_pci_ids(const char* value) {
    p_option_input = save_list_of_pci_ids(value);
    return std::nullopt;
}

outcome take_directory(const char* value) {
    return set_directory(value) ? std::nullopt : refuse(bad_path);
}

struct option_row {
    std::string_view word;
    word_test fits;
    outcome (*act)(const char* value);  // null: skipped with its level, which is read already
    unsigned mark = 0;
    const char* missing_value = nullptr;  // null: the option takes no value
    const char* bad_value = nullptr;
};

// The first row that fits an element decides, so their order is part of their meaning.
constexpr option_row option_rows[] = {
    {"-?", equals, show_help},
    {"-h", equals, show_help},
    {"--help", equals, show_help},
    {"--hiddenhelp", equals, show_help},
    {"--info", equals, show_info},
    {"--version", equals, show_version},
    {"--silent", contains, silence},
    {.word = "-v", .fits = is_verbose_word, .act = nullptr},
    {.word = "-d", .fits = is_debug_word, .act = nullptr},
    {"-subvid", contains, select_by<list_of_subvendor_ids>, mark_subvid, bad_subvid, bad_subvid},
    {"-vid", contains, select_by<list_of_vendor_ids>, mark_vid, bad_vid, bad_vid},
    {"-mod", begins, select_by<list_of_models>, mark_mod, bad_model, bad_model},
    {"-vn", contains, select_by<list_of_vendor_names>, mark_vn, bad_vendor_name, bad_vendor_name},
    {"-dev", contains, select_by<list_of_device_ids>, mark_dev,
     "Please enter at least one controller device-id (\"1A0F,2B03,...hex-value\")!\n",
     "Please enter at least one controller device-id (\"hex-value\")!\n"},
    {"-subdev", contains, select_by<list_of_subdevice_ids>, mark_subdev,
     "Please enter at least one controller sub-device-id (\"1A0F,2B03,...hex-value\")!\n",
     "Please enter at least one controller sub-device-id (\"hex-value\")!\n"},
    {"-pci-id", contains, select_by_pci_ids, 0,
     "Please enter at least one pair of vendor- and device-id (\"1A0F:2B03,...hex-value\")!\n",
     "Please enter at least one pair of vendor- and device-id (\"1A0F:2B03,...hex-value\")\n"},
    {"--conpath", contains, take_directory, 0, bad_path, bad_path},
    {"--check-for-valid-subsystem", contains, set_flag<active_option_valid_subsystem>},
    {"--ctrl-wide-identical", contains, set_flag<active_option_ctrl_wide_identical>},
    {"--ctrl-vendor-wide-identical", equals, set_flag<active_option_ctrl_vendor_wide_identical>},
    {"--flash", equals, set_flag<active_option_flash>},
    {"--simulate", equals, set_flag<active_option_simulate>},
    {"--show-return-codes", equals, show_return_codes},
    {"--show-return-code", equals, show_return_codes},
    {"--vox-mode", begins, set_flag<active_option_vox_mode>},
};

const option_row* find_option(std::string_view element) {
    for (const option_row& row : option_rows) {
        if (row.fits(element, row.word)) {
            return &row;
        }
    }
    return nullptr;
}

outcome third_pass(int argc, char** argv, unsigned& marks) {
    for (int i = 1; i < argc; ++i) {
        const option_row* row = find_option(argv[i]);
        if (row == nullptr) {
            Print(1, "\n\nInvalid argument '%s' !\n\n", argv[i]);
            return RET_BAD_CALL;
        }
        if (row->act == nullptr) {
            ++i;
            continue;
        }
        const char* value = nullptr;
        if (row->missing_value != nullptr) {
            if (++i == argc) {
                return refuse(row->missing_value);
            }
            value = argv[i];
            if (is_bad_value(value)) {
                return refuse(row->bad_value);
            }
        }
        if (const outcome ended = row->act(value)) {
            return ended;
        }
        marks |= row->mark;
    }
    return std::nullopt;
}

// --- the marks against each other ---------------------------------------------------------

struct mark_rule {
    unsigned given;      // one of these was given,
    unsigned other;      // and of these
    bool other_refused;  // one as well (true), or none (false)
    const char* text;
};

constexpr mark_rule mark_rules[] = {
    {marks_of_ids, mark_vn, true,
     "\n\nCombining options \"-vid\", \"-subvid\", \"-dev\", \"-subdev\" together with option "
     "\"-vn\" is not supported.\t!\n"},
    {marks_of_ids, mark_mod, true,
     "\n\nCombining options \"-vid\", \"-subvid\", \"-dev\", \"-subdev\" together with option "
     "\"-mod\" is not supported.\t!\n"},
    {mark_mod, mark_vn, false,
     "\n\nPlease, also specify vendor-names (option \"-vn\")\n, if using option \"-mod\"!\n"},
    {mark_dev, mark_vid, false,
     "\n\nPlease, also specify one or more vendor-ids (option \"-vid\")\n, if using option "
     "\"-dev\"!\n"},
    {mark_subvid, mark_dev, false,
     "\n\nPlease, also specify one or more device-ids (option \"-dev\")\n, if using option "
     "\"-subvid\"!\n"},
    {mark_subdev, mark_subvid, false,
     "\n\nPlease, also specify one or more subvendor-ids (option \"-subvid\")\n, if using option "
     "\"-subdev\"!\n"},
    {mark_subvid, mark_subdev, false,
     "\n\nPlease, also specify one or more subdevice-ids (option \"-subdev\")\n, if using option "
     "\"-subvid\"!\n"},
};

outcome compare_marks(unsigned marks) {
    for (const mark_rule& rule : mark_rules) {
        if ((marks & rule.given) != 0 && ((marks & rule.other) != 0) == rule.other_refused) {
            return refuse(rule.text);
        }
    }
    return std::nullopt;
}

}  // namespace

outcome read_command_line(int argc, char** argv) {
    unsigned marks = 0;
    first_pass(argc, argv);
    outcome ended = second_pass(argc, argv, marks);
    if (!ended) {
        ended = settle_switches(marks);
    }
    if (!ended) {
        ended = third_pass(argc, argv, marks);
    }
    if (!ended) {
        ended = compare_marks(marks);
    }
    return ended;
}
