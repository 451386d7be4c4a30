#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <sstream>

#include "base/output.h"
#include "base/text.h"
#include "call/command_line.h"
#include "call/selection.h"
#include "support/support.h"

namespace {

using std::string;

// --- output and text ----------------------------------------------------------------------

TEST(Output, SwitchesDecideWhereAMessageGoes) {
    for (test_case& c : cases("switches.txt")) {
        std::istringstream(c["switches"]) >> DebugLevel >> VerboseLevel >> PrintDebugOnScreen;
        testing::internal::CaptureStderr();
        int result = 0;
        const string out = output_of([&] {
            result =
                PrintDebug(std::stoi(c["level"]), "text", c["stream"] == "1" ? stderr : nullptr);
        });
        const string err = testing::internal::GetCapturedStderr();
        EXPECT_EQ(std::to_string(result) + " " + (out.empty() ? "-" : out) + " " +
                      (err.empty() ? "-" : err),
                  c["result"])
            << c["switches"];
    }
    reset_run();
    EXPECT_EQ(output_of([] { Print(1, "%s", string(5000, 'x').c_str()); }), string(4095, 'x'));
}

TEST(Text, NumbersAreReadWholeOrNotAtAll) {
    for (test_case& c : cases("numbers.txt")) {
        char text[64];
        set_text(text, c["text"]);
        EXPECT_EQ(std::to_string(string2int(text, std::stoi(c["base"]))), c["number"]) << c["text"];
        EXPECT_EQ(text, c["left"]);
    }
    EXPECT_EQ(number_of(string(8191, '0'), 16), 0);
    EXPECT_EQ(number_of(string(8192, '0'), 16), -1);
    EXPECT_EQ(status_of([] {
                  number_of("10000000000000000", 16);
                  return RET_OK;
              }),
              RET_NOT_CTRL_WIDE_IDENTICAL);
}

TEST(Text, ValuesAreTrimmed) {
    for (test_case& c : cases("trims.txt")) {
        EXPECT_EQ(string(cleanString(c["text"].data())), c["value"]);
    }
}

// --- selection lists ----------------------------------------------------------------------

string chain_text(const option_input* record) {
    string text;
    for (; record != nullptr; record = record->next) {
        char line[128];
        std::snprintf(line, sizeof line, "%x:%x:%x:%x%s%s|", record->vendor_id, record->device_id,
                      record->subvendor_id, record->subdevice_id, record->vendor_name,
                      record->model);
        text += line;
    }
    return text;
}

TEST(Selection, ListsFillTheChainPositionByPosition) {
    for (const test_case& c : cases("selections.txt")) {
        reset_run();
        const string& line = c.at("words");
        std::istringstream text("./cnatool " + line);
        std::vector<string> words{std::istream_iterator<string>(text), {}};
        std::vector<char*> argv;
        for (string& word : words) {
            std::replace(word.begin(), word.end(), '~', ' ');
            argv.push_back(word.data());
        }
        string result;
        try {
            const auto end = read_command_line(static_cast<int>(argv.size()), argv.data());
            result = end ? std::to_string(*end) : chain_text(p_option_input);
        } catch (const ended& end) {
            result = std::to_string(end.status);
        }
        EXPECT_EQ(result, c.contains("chain") ? c.at("chain") : c.at("status")) << line;
    }
}

}  // namespace
