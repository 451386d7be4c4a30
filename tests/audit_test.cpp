// The audit on the sample server: its findings, status and both forms of its report.

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
const char sound_server[] =
    "cp $RUN/*.out . && sed -i '/^#/d; s/SOLVEIG *|  *| -/SOLVEIG | Tindra | -/' "
    "FC_HBA_Conditions.txt; "
    "F=NV4200A1001_; ";
const char of_one_run[] = "\ntouch -r local_hba_list.out *.out\n";
const char all_files[] = "find . -printf '%p %s %T@\\n' | sort | cksum";

// "code place" of each finding, a line each.
string findings_of(const json& report) {
    string lines;
    for (const json& each : report["findings"]) {
        lines += each["code"].get<string>() + " " + each["place"].get<string>() + "\n";
        EXPECT_FALSE(each["what"].get<string>().empty() || each["do"].get<string>().empty());
    }
    return lines;
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

TEST(Audit, FindsWhatItsTableSays) {
    const server earlier;
    ASSERT_EQ(earlier.run("./cnatool -pci-id $C1").status, 0);
    const string variables = "RUN=" + earlier.path.string() + "; ";
    std::set<string> seen;
    for (test_case& c : cases("audits.txt")) {
        const server host;
        const string setup = variables + sound_server + c["setup"] + of_one_run + c["then"];
        static_cast<void>(host.run(setup));
        const string files = host.run(all_files).out;
        const string call = "./cnatool-audit " + c["options"];
        const run_result result = host.run(call + " --json");
        EXPECT_EQ(host.run(all_files).out, files) << call << " writes";
        EXPECT_EQ(host.calls(), "") << call;
        if (c["status"] == "2") {
            EXPECT_EQ(result.status, 2) << call << c["setup"];
            EXPECT_EQ(result.out, "");
            EXPECT_NE(result.err.find(c["says"]), string::npos) << result.err;
            continue;
        }
        const json report = json::parse(result.out, nullptr, false);
        ASSERT_FALSE(report.is_discarded()) << call << result.out << result.err;
        EXPECT_EQ(findings_of(report), c["finds"]) << call << " " << c["setup"];
        EXPECT_EQ(result.status, c["finds"].empty() ? 0 : 1);
        EXPECT_EQ(report["status"], result.status);
        EXPECT_TRUE(!c.contains("sends") || images_of(report) == c["sends"]) << result.out;
        EXPECT_NE(result.out.find(c["shows"]), string::npos) << result.out;
        expect_text(report, host.run(call).out);
        for (const json& each : report["findings"]) {
            seen.insert(each["code"]);
        }
    }
    for (int code = 0; code <= static_cast<int>(finding_code::row_odd); ++code) {
        EXPECT_TRUE(seen.contains(name_of(static_cast<finding_code>(code)))) << code;
    }
}

}  // namespace
