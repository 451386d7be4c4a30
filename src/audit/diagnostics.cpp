#include "audit/diagnostics.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>

#include "base/list.h"
#include "base/output.h"
#include "base/text.h"
#include "call/paths.h"
#include "call/selection.h"
#include "conditions/conditions_file.h"

namespace {

std::string source;  // what is being read

// The line of the row that is being read. Empty if no row is.
std::string line_of_row() {
    const auto rows = entries(fc_config_entry_list);
    const bool is_table = source == pHBAConditionsPath && !rows.empty();
    return is_table ? fill_in(", line %s", std::to_string(rows.back()->line)) : "";
}

}  // namespace

void report_errors() {
    // With these levels messages of level 1, and of 2 for what is wrong with identifiers, go to
    // standard error.
    VerboseLevel = 0;
    DebugLevel = 2;
    PrintDebugOnScreen = 1;
}

void be_silent() { DebugLevel = 0; }

bool write_out(const std::string& text) {
    const bool is_written =
        std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0;
    const bool is_enough = is_written || errno == EPIPE;  // A reader that has gone needs no more.
    if (!is_enough) {
        give_up("the answer cannot be written");
    }
    return is_enough;
}

void now_reading(const std::string& what) { source = what; }

void cannot_go_on(exit_status status) {
    const std::string_view group = group_being_read();
    const bool is_long = std::ranges::count(group, ':') > 3;
    const std::string in =
        group.empty() ? source + line_of_row()
                      : fill_in("'%s'%s", group, is_long ? ", more than four identifiers" : "");
    give_up(fill_in("cannot go on%s%s: cnatool ends with status %s here", in.empty() ? "" : " in ",
                    in, std::to_string(status)));
}

audit_status give_up(const std::string& reason) {
    print_error("%s: %s\n", program_name, reason.c_str());
    return AUDIT_GAVE_UP;
}
