#include <gtest/gtest.h>

#include <sstream>

#include "base/output.h"
#include "base/text.h"
#include "support/support.h"

namespace {

using std::string;

const bool switches = add_results("Output", "switches.txt", "switches level stream", [](auto& c) {
    std::istringstream(c["switches"]) >> DebugLevel >> VerboseLevel >> PrintDebugOnScreen;
    testing::internal::CaptureStderr();
    int result = 0;
    const string out = output_of([&] {
        result = PrintDebug(std::stoi(c["level"]), "text", c["stream"] == "1" ? stderr : nullptr);
    });
    const string err = testing::internal::GetCapturedStderr();
    return std::to_string(result) + " " + (out.empty() ? "-" : out) + " " +
           (err.empty() ? "-" : err);
});

TEST(Output, LongMessagesAreCut) {
    reset_run();
    EXPECT_EQ(output_of([] { Print(1, "%s", string(5000, 'x').c_str()); }), string(4095, 'x'));
}

const bool numbers = add_results("Text", "numbers.txt", "text base", [](test_case& c) {
    char text[64];
    set_text(text, c["text"]);
    return std::to_string(string2int(text, std::stoi(c["base"]))) + " of '" + text + "'";
});

TEST(Text, LongNumbersAreNone) {
    EXPECT_EQ(number_of(string(8191, '0'), 16), 0);
    string text(8192, '0');
    EXPECT_EQ(string2int(text.data(), 16), -1);
    EXPECT_EQ(number_of(text, 16), -1);
}

const bool trims = add_results("Text", "trims.txt", "text", [](test_case& c) {
    string text = c["text"];
    return string(cleanString(text.data()));
});

TEST(Lines, LongOnesComeInPieces) {
    const string text = string(1022, 'x') + "\n" + string(1022, 'x') + "yz\n\n";
    const input_file file = text_file(text);
    char line[line_width];
    for (const string& piece :
         {string(1022, 'x') + "\n", string(1022, 'x') + "y", string("z\n"), string("\n")}) {
        EXPECT_TRUE(next_line(file, line));
        EXPECT_EQ(line, piece);
    }
    EXPECT_FALSE(next_line(file, line));
}

}  // namespace
