#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <sstream>

#include "call/command_line.h"
#include "call/selection.h"
#include "support/support.h"

namespace {

using std::string;

string chain_text(const option_input* record) {
    string text;
    for (; record != nullptr; record = record->next) {
        char line[128];
        std::snprintf(line, sizeof line, "%s%x:%x:%x:%x%s%s", text.empty() ? "" : " ",
                      record->vendor_id, record->device_id, record->subvendor_id,
                      record->subdevice_id, record->vendor_name, record->model);
        text += line;
    }
    return text;
}

const bool selections = add_results("Selection", "selections.txt", "words", [](test_case& c) {
    std::istringstream text("./cnatool " + c["words"]);
    std::vector<string> words{std::istream_iterator<string>(text), {}};
    std::vector<char*> argv;
    for (string& word : words) {
        std::replace(word.begin(), word.end(), '~', ' ');
        argv.push_back(word.data());
    }
    const exit_status status = status_of([&] {
        return read_command_line(static_cast<int>(argv.size()), argv.data()).value_or(RET_OK);
    });
    return status == RET_OK ? chain_text(p_option_input) : std::to_string(status);
});

}  // namespace
