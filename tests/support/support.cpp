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
    "C4=F1A0:8402:F2B0:0022 T=opt/emulex/ocmanager/bin REAL_TOOL=" REAL_TOOL
    "\n"
    "faults() { echo \"$@\" > $T/answers/faults.txt; }\n"
    "start() { env --default-signal=INT,QUIT setsid ./cnatool \"$@\" & tool=$!; }\n"
    "after() { until grep -qs \"$1\" $T/calls.log; do sleep 0.02; done; }\n"
    "as_nobody() { u=; test $(id -u) -ne 0 || u='setpriv --reuid 65534 --clear-groups'; $u \"$@\"; "
    "}"
    "\n";

std::string unescaped(const std::string& text) {
    const std::map<char, char> meanings{
        {'n', '\n'}, {'t', '\t'}, {'r', '\r'}, {'0', '\0'}, {'\\', '\\'}};
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool escape =
            text[i] == '\\' && i + 1 < text.size() && meanings.contains(text[i + 1]);
        result += escape ? meanings.at(text[++i]) : text[i];
    }
    return result;
}

}  // namespace

long allocations_left = -1;

void* operator new(std::size_t size) {
    void* memory = allocations_left == 0 ? nullptr : std::malloc(size);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    allocations_left -= allocations_left > 0 ? 1 : 0;
    return memory;
}

void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t /*size*/) noexcept { std::free(memory); }

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

std::string golden(std::string_view name) {
    return read_file(fs::path(SOURCE_DIRECTORY) / "tests/golden" / name);
}

std::vector<test_case> cases(std::string_view name) {
    std::vector<test_case> all(1);
    std::ifstream file(fs::path(SOURCE_DIRECTORY) / "tests/cases" / name);
    for (std::string line; std::getline(file, line);) {
        const std::size_t colon = line.find(": ");
        if (line.empty() && !all.back().empty()) {
            all.emplace_back();
        } else if (!line.starts_with('#') && colon != std::string::npos) {
            all.back()[line.substr(0, colon)] = unescaped(line.substr(colon + 2));
        }
    }
    if (all.back().empty()) {
        all.pop_back();
    }
    EXPECT_FALSE(all.empty()) << name;
    return all;
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
    fs::create_directories(stand_in());
    fs::copy(demo / "hbacmd", stand_in());
    fs::copy(demo / "answers", stand_in() / "answers", fs::copy_options::recursive);
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
