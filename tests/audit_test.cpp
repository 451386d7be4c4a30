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

// A table of which nothing odd can be said, and the outputs that a run leaves.
const char sound[] =
    "sed -i '/^#/d; s/SOLVEIG *|  *| -/SOLVEIG | Tindra | -/' FC_HBA_Conditions.txt; "
    "outputs; F=NV4200A1001_; ";
const char of_one_run[] = "\ntouch -r local_hba_list.out *.out\n";
const case_keys audit_keys{
    "", "options by setup then finds sends shows what status says prints controllers"};

// "severity code place" of each finding, a line each; "accepted" in the place of the severity.
string findings_of(const json& report) {
    string lines;
    for (const json& each : report["findings"]) {
        const string severity = each["accepted"] ? "accepted" : each["severity"];
        lines +=
            severity + " " + each["code"].get<string>() + " " + each["place"].get<string>() + "\n";
    }
    return lines;
}

// "code: what -> advice" of each finding; the order of the two names is the directory's.
std::set<string> wordings_of(const json& report) {
    std::set<string> wordings;
    for (const json& each : report["findings"]) {
        const string what = replaced(each["what"], "nx4200-bios-2.07.prg and other.prg",
                                     "other.prg and nx4200-bios-2.07.prg");
        wordings.insert(each["code"].get<string>() + ": " + what + " -> " +
                        each["do"].get<string>());
    }
    return wordings;
}

std::set<string> lines_of(const string& text) {
    std::set<string> lines;
    std::istringstream stream(text);
    for (string line; std::getline(stream, line);) {
        lines.insert(line);
    }
    return lines;
}

// Each wording is one that a case of the table expects, and it expects its own.
void expect_wordings(test_case& c, const json& report) {
    std::set<string> known;
    for (test_case& each : cases_of("audits.txt", audit_keys)) {
        known.merge(lines_of(each["what"]));
    }
    const std::set<string> seen = wordings_of(report);
    for (const string& wording : seen) {
        EXPECT_TRUE(known.contains(wording)) << "no case expects: " << wording;
    }
    for (const string& wording : lines_of(c["what"])) {
        EXPECT_TRUE(seen.contains(wording)) << "not seen: " << wording;
    }
}

TEST(Audit, EachFindingHasACase) {
    string found;
    for (test_case& c : cases_of("audits.txt", audit_keys)) {
        found += "\n" + c["finds"];
    }
    for (int code = 0; code < static_cast<int>(finding_code::count); ++code) {
        const string name = name_of(static_cast<finding_code>(code));
        EXPECT_NE(found.find(" " + name + " "), string::npos) << name;
    }
}

string images_of(const json& report) {
    string lines;
    for (const json& each : report["downloads"]) {
        lines += each["sent"]
                     ? each["address"].get<string>() + " " + each["image"].get<string>() + "\n"
                     : "";
    }
    return lines.empty() ? "none" : lines;
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

// In a pipe, on a terminal, and as an object, whose form is part of what its readers rely on.
TEST(Audit, WritesItsReportToTheCharacter) {
    const server host;
    const string audit = "./cnatool-audit --flash -pci-id $C1,1:2";
    const string text = golden("audit.txt");
    static_cast<void>(host.run(string(sound) + "rm ${F}3_target_mapping.out; touch -r . *.out"));
    string plain = text;
    for (const char* colour : {"^[1m", "^[33m", "^[0m"}) {
        plain = replaced(plain, colour, "");
    }
    EXPECT_EQ(host.run(audit).out, plain);
    using ordered = nlohmann::ordered_json;
    const ordered object = ordered::parse(host.run(audit + " --json").out, nullptr, false);
    EXPECT_EQ(object, ordered::parse(golden("audit.json"), nullptr, false));
    if (std::system("command -v script > /dev/null") != 0) {
        GTEST_SKIP() << "needs script";
    }
    const string on_terminal = "script -qec '" + audit + "' /dev/null | tr -d '\\r'";
    EXPECT_EQ(replaced(host.run("NO_COLOR= " + on_terminal).out, "\033", "^"), text);
    EXPECT_EQ(host.run("NO_COLOR=1 " + on_terminal).out, plain);
}

// The shell that makes the server of a case.
string laying_out(test_case& c) { return sound + c["setup"] + of_one_run + c["then"]; }

// Name, size and time of each file of the server.
std::set<string> files_of(const server& host) {
    namespace fs = std::filesystem;
    std::set<string> files;
    for (const fs::directory_entry& each : fs::recursive_directory_iterator(host.path)) {
        const bool is_plain = each.symlink_status().type() == fs::file_type::regular;
        const auto time = is_plain ? each.last_write_time().time_since_epoch().count() : 0;
        files.insert(each.path().string() + " " + std::to_string(is_plain ? each.file_size() : 0) +
                     " " + std::to_string(static_cast<long long>(time)));
    }
    return files;
}

string call_of(test_case& c) {
    return "F=NV4200A1001_; " + c["by"] + " ./cnatool-audit " + c["options"];
}

const bool audits = add_cases("Audit", "audits.txt", audit_keys, [](test_case& c) {
    const server host(c["controllers"]);
    static_cast<void>(host.run(laying_out(c)));
    const std::set<string> files = files_of(host);
    const string call = call_of(c);
    const run_result result = host.run(call + " --json");
    EXPECT_EQ(files_of(host), files) << "an audit writes";
    EXPECT_EQ(host.calls(), "");
    EXPECT_EQ(result.err, c["says"]);
    if (c.contains("status")) {
        EXPECT_EQ(std::to_string(result.status), c["status"]);
        EXPECT_EQ(result.out, c["prints"]);
        return;
    }
    const json report = json::parse(result.out, nullptr, false);
    ASSERT_FALSE(report.is_discarded()) << result.out << result.err;
    EXPECT_EQ(findings_of(report), c["finds"]);
    const string found = "\n" + c["finds"];
    EXPECT_EQ(result.status,
              found.find("\nerror ") + 1 + (found.find("\nwarning ") + 1) > 0 ? 1 : 0);
    EXPECT_EQ(report["status"], result.status);
    if (c.contains("sends")) {
        EXPECT_EQ(images_of(report), c["sends"]);
    }
    const string text = host.run(call).out;
    expect_text(report, text);
    EXPECT_NE((text + result.out).find(c["shows"]), string::npos) << text << result.out;
    expect_wordings(c, report);
});

// In one process for all of them, since what checks it takes long to start.
TEST(Audit, ItsObjectsHaveTheFormThatIsDescribed) {
    if (std::system("python3 -c 'import jsonschema' 2> /dev/null") != 0) {
        GTEST_SKIP() << "needs jsonschema";
    }
    const server objects;
    string names;
    for (test_case& c : cases_of("audits.txt", audit_keys)) {
        if (!c.contains("status")) {
            const server host(c["controllers"]);
            const string name = std::to_string(c.line) + ".json";
            static_cast<void>(host.run(laying_out(c) + "\n" + call_of(c) + " --json > " +
                                       (objects.path / name).string()));
            names += " " + name;
        }
    }
    const run_result result = objects.run("python3 \"$SUPPORT/fits_schema.py\"" + names);
    EXPECT_EQ(result.out + result.err, "");
    EXPECT_EQ(result.status, 0);
}

}  // namespace
