// The audit on the sample server: its findings, their wording, status and both forms of its report.

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <set>
#include <sstream>

#include "audit/findings.h"
#include "support/support.h"

namespace {

using nlohmann::json;
using std::string;

// The outputs of a run on another copy of the server, and a table of which nothing odd can be said.
const char outputs[] = "cp $RUN/*.out .; ";
const char sound_table[] =
    "sed -i '/^#/d; s/SOLVEIG *|  *| -/SOLVEIG | Tindra | -/' FC_HBA_Conditions.txt; "
    "F=NV4200A1001_; ";
const char of_one_run[] = "\ntouch -r local_hba_list.out *.out\n";
const char all_files[] = "find . -printf '%p %s %T@\\n' | sort | cksum";

// "code place" of each finding, a line each.
string findings_of(const json& report) {
    string lines;
    for (const json& each : report["findings"]) {
        lines += each["code"].get<string>() + " " + each["place"].get<string>() + "\n";
    }
    return lines;
}

// The order of the two names is the directory's.
string wording_of(const json& code, const json& what, const json& advice) {
    return code.get<string>() + ": " +
           replaced(what, "nx4200-bios-2.07.prg and other.prg",
                    "other.prg and nx4200-bios-2.07.prg") +
           " -> " + advice.get<string>();
}

// Each wording that the cases have led to is one of the table, and the other way round.
void expect_wordings(const std::set<string>& seen) {
    std::set<string> expected;
    for (test_case& c : cases("findings.txt")) {
        expected.insert(wording_of(c["code"], c["what"], c["do"]));
    }
    for (const string& wording : seen) {
        EXPECT_TRUE(expected.contains(wording)) << "not in the table: " << wording;
    }
    for (const string& wording : expected) {
        EXPECT_TRUE(seen.contains(wording)) << "not seen: " << wording;
    }
    for (int code = 0; code <= static_cast<int>(finding_code::row_odd); ++code) {
        const string name = name_of(static_cast<finding_code>(code));
        const auto first = seen.lower_bound(name + ": ");
        EXPECT_TRUE(first != seen.end() && first->starts_with(name + ": ")) << name;
    }
}

string images_of(const json& report) {
    string lines;
    for (const json& each : report["downloads"]) {
        lines += each["sent"]
                     ? each["address"].get<string>() + " " + each["image"].get<string>() + "\n"
                     : "";
    }
    return lines;
}

void expect_text(const json& report, const string& text) {
    std::istringstream lines(text);
    for (string line; std::getline(lines, line);) {
        EXPECT_LE(line.size(), 100U) << line;
    }
    for (const json& each : report["findings"]) {
        EXPECT_NE(text.find(each["code"].get<string>()), string::npos) << text;
        EXPECT_NE(text.find(each["place"].get<string>()), string::npos) << text;
    }
}

// On a terminal, in a pipe, and as an object, whose form is part of what its readers rely on.
TEST(Audit, WritesItsReportToTheCharacter) {
    const server host;
    const string audit = "./cnatool-audit --flash -pci-id $C1,1:2";
    const string text = golden("audit.txt");
    static_cast<void>(host.run(string("./cnatool -pci-id $C1; ") + sound_table +
                               "rm NV4200A1001_3_target_mapping.out"));
    const string on_terminal = "script -qec '" + audit + "' /dev/null | tr -d '\\r'";
    EXPECT_EQ(replaced(host.run("NO_COLOR= " + on_terminal).out, "\033", "^"), text);
    string plain = text;
    for (const char* colour : {"^[1m", "^[33m", "^[0m"}) {
        plain = replaced(plain, colour, "");
    }
    EXPECT_EQ(host.run("NO_COLOR=1 " + on_terminal).out, plain);
    EXPECT_EQ(host.run(audit).out, plain);
    using ordered = nlohmann::ordered_json;
    const ordered object = ordered::parse(host.run(audit + " --json").out, nullptr, false);
    EXPECT_EQ(object, ordered::parse(golden("audit.json"), nullptr, false));
}

TEST(Audit, FindsWhatItsTableSays) {
    const server earlier;
    ASSERT_EQ(earlier.run("./cnatool -pci-id $C1").status, 0);
    const string variables = "RUN=" + earlier.path.string() + "; ";
    std::set<string> wordings;
    for (test_case& c : cases("audits.txt")) {
        const server host;
        const string setup =
            variables + outputs + sound_table + c["setup"] + of_one_run + c["then"];
        static_cast<void>(host.run(setup));
        const string files = host.run(all_files).out;
        const string call = "./cnatool-audit " + c["options"];
        const run_result result = host.run(call + " --json");
        EXPECT_EQ(host.run(all_files).out, files) << call << " writes";
        EXPECT_EQ(host.calls(), "") << call;
        EXPECT_EQ(result.err, c["says"]) << call;
        if (c.contains("status")) {
            EXPECT_EQ(std::to_string(result.status), c["status"]) << call << c["setup"];
            EXPECT_EQ(result.out, c["prints"]);
            continue;
        }
        const json report = json::parse(result.out, nullptr, false);
        ASSERT_FALSE(report.is_discarded()) << call << result.out << result.err;
        EXPECT_EQ(findings_of(report), c["finds"]) << call << " " << c["setup"];
        EXPECT_EQ(result.status, c["finds"].empty() ? 0 : 1);
        EXPECT_EQ(report["status"], result.status);
        EXPECT_TRUE(!c.contains("sends") || images_of(report) == c["sends"]) << result.out;
        const string text = host.run(call).out;
        expect_text(report, text);
        EXPECT_NE((text + result.out).find(c["shows"]), string::npos) << text << result.out;
        for (const json& each : report["findings"]) {
            wordings.insert(wording_of(each["code"], each["what"], each["do"]));
        }
    }
    expect_wordings(wordings);
}

}  // namespace
