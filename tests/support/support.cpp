#include "support/support.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <new>
#include <sstream>

namespace fs = std::filesystem;

namespace {

const char variables[] =
    "export C1=F1A0:4201:F1A0:0011 C2=F1A0:4201:F2B0:0012 C3=F1A0:8402:F1A0:0021 "
    "C4=F1A0:8402:F2B0:0022 T=opt/emulex/ocmanager/bin REAL_TOOL='" REAL_TOOL
    "'\n"
    "P=10:00:02:00:5e:10:01:02 F=NV4200A1001_2_ POWERLESS=\n"
    "[ $(id -u) -ne 0 ] || POWERLESS='setpriv --bounding-set=-all --inh-caps=-all'\n"
    "fault() { printf '%s\\n' \"$*\" > $T/answers/faults.txt; }\n"
    "start() { env --default-signal=INT,QUIT setsid ./cnatool \"$@\" & tool=$!; }\n"
    "after() { until grep -qs \"$1\" $T/calls.log; do sleep 0.02; done; }\n"
    "storage() { for p in 2 3; do f=$T/answers/targetmapping/10:00:02:00:5e:10:01:0$p.txt\n"
    "    sed -i \"s/^Vendor ID.*/Vendor ID : $1/\" $f; [ $1 != - ] || : > $f; shift; done; }\n"
    "small_server() { (. '" SOURCE_DIRECTORY "/tests/support/small_server.sh'); }\n";

std::string unescaped(const std::string& text) {
    const std::map<char, char> meanings{{'n', '\n'}, {'t', '\t'}, {'r', '\r'},
                                        {'0', '\0'}, {'s', ' '},  {'\\', '\\'}};
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char next = text[i] == '\\' && i + 1 < text.size() ? text[i + 1] : '\0';
        if (next == '{' && !result.empty()) {
            result.append(std::stoul(text.substr(i + 2)) - 1, result.back());
            i = text.find('}', i);
        } else {
            result += meanings.contains(next) ? meanings.at(text[++i]) : text[i];
        }
    }
    return result;
}

// What stands between the separators of a row, the first character of which is one.
std::vector<std::string> cells(const std::string& row) {
    std::vector<std::string> all;
    std::istringstream text(row.substr(1));
    for (std::string cell; std::getline(text, cell, row[0]);) {
        cell.erase(0, cell.find_first_not_of(' '));
        cell.erase(cell.find_last_not_of(' ') + 1);
        all.push_back(cell);
    }
    return all;
}

// Puts a line of a table into the case under way, or opens one.
void take_line(const std::string& line, std::vector<std::string>& columns,
               std::vector<test_case>& all) {
    const std::size_t colon = line.find(": ");
    if (line.starts_with('|') || line.starts_with('~')) {
        std::vector<std::string> row = cells(line);
        if (columns.empty() || row[0] == columns[0]) {
            columns = row;
            return;
        }
        row.resize(columns.size());
        test_case& opened = all.emplace_back();
        for (std::size_t i = 0; i < row.size(); ++i) {
            opened[columns[i]] = unescaped(row[i]);
        }
    } else if (line.find_first_of("0123456789") == 0) {
        const std::size_t blank = line.find(' ');
        all.push_back(
            {{"status", line.substr(0, blank)}, {"run", unescaped(line.substr(blank + 1))}});
    } else if (!line.starts_with('#') && colon != std::string::npos) {
        all.back()[line.substr(0, colon)] = unescaped(line.substr(colon + 2));
    }
}

}  // namespace

long allocations_left = -1;

[[gnu::noinline]] void* operator new(std::size_t size) {
    void* memory = allocations_left == 0 ? nullptr : std::malloc(size);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    allocations_left -= allocations_left > 0 ? 1 : 0;
    return memory;
}

[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::size_t /*size*/) noexcept {
    std::free(memory);
}

std::string output_of(const std::function<void()>& act) {
    testing::internal::CaptureStdout();
    act();
    return testing::internal::GetCapturedStdout();
}

exit_status status_of(const std::function<exit_status()>& act) {
    try {
        return act();
    } catch (const ended& end) {
        return end.status;
    }
}

std::string read_file(const fs::path& path) {
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

void write_file(const fs::path& path, std::string_view text) {
    std::ofstream(path, std::ios::binary) << text;
}

std::string replaced(std::string text, std::string_view what, std::string_view with) {
    for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += with.size()) {
        text.replace(at, what.size(), with);
    }
    return text;
}

std::string golden(std::string_view name, int level) {
    std::ifstream file(fs::path(SOURCE_DIRECTORY) / "tests/golden" / name);
    std::string text;
    int shown_from = 1;
    for (std::string line; std::getline(file, line);) {
        if (line.size() > 1 && line[1] == '|') {
            shown_from = line[0] - '0';
            line.erase(0, 2);
        }
        text += shown_from <= level ? unescaped(line) + "\n" : "";
    }
    return text;
}

std::vector<test_case> cases(std::string_view name) {
    std::vector<std::string> columns;
    std::vector<test_case> all(1);
    std::ifstream file(fs::path(SOURCE_DIRECTORY) / "tests/cases" / name);
    for (std::string line; std::getline(file, line);) {
        if (line.empty()) {
            all.emplace_back();
        } else {
            take_line(line, columns, all);
        }
    }
    std::erase_if(all, [](const test_case& c) { return c.empty(); });
    EXPECT_FALSE(all.empty()) << name;
    return all;
}

void expect_table(std::string_view name,
                  const std::function<std::string(test_case& c)>& result_of) {
    for (test_case& c : cases(name)) {
        reset_run();
        std::string given;
        for (const auto& [key, value] : c) {
            given += key + ": " + value + "\n";
        }
        EXPECT_EQ(result_of(c), c["result"]) << given;
    }
}

scratch::scratch() {
    std::string name = (fs::temp_directory_path() / "cnatool.XXXXXX").string();
    path = mkdtemp(name.data());
}

scratch::~scratch() { fs::remove_all(path); }

server::server() {
    const fs::path demo = fs::path(SOURCE_DIRECTORY) / "demo";
    fs::copy(demo / "server", path, fs::copy_options::recursive);
    fs::create_symlink(SANDBOX_TOOL, path / "cnatool");
    fs::create_symlink(AUDIT_TOOL, path / "cnatool-audit");
    fs::create_directories(stand_in());
    fs::copy(demo / "hbacmd", stand_in());
    fs::copy(demo / "answers", stand_in() / "answers", fs::copy_options::recursive);
    fs::remove(stand_in() / "answers/faults.txt");  // only examples, which take time to read
}

run_result server::run(const std::string& command) const {
    const scratch outputs;
    const std::string line = "cd '" + path.string() + "' && (" + variables + command + "\n) >'" +
                             (outputs.path / "out").string() + "' 2>'" +
                             (outputs.path / "err").string() + "'";
    const int status = std::system(line.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status),
            read_file(outputs.path / "out"), read_file(outputs.path / "err")};
}

std::string server::calls() const {
    std::string text = read_file(stand_in() / "calls.log");
    fs::remove(stand_in() / "calls.log");
    return text;
}

fs::path server::stand_in() const { return path / "opt/emulex/ocmanager/bin"; }
