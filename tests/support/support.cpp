#include "support/support.h"

#include <gtest/gtest.h>
#include <sys/statvfs.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <new>
#include <sstream>

namespace fs = std::filesystem;

namespace {

const char environment[] = "REAL_TOOL='" REAL_TOOL "'; SUPPORT='" SOURCE_DIRECTORY
                           "/tests/support'; . \"$SUPPORT/server.sh\"; ";

// What the serial numbers and the addresses of the sample server's controllers hold.
const char* const serial_numbers[] = {"A1001", "A1002", "B2001", "B2002"};
const char* const addresses[] = {"-5E-10-0", ":5e:10:0"};

// The list of ports without the blocks of a controller.
std::string without(std::string list, const std::string& serial_number) {
    while (list.find(serial_number) != std::string::npos) {
        const std::size_t at = list.find(serial_number);
        const std::size_t begin = list.rfind("\n\n", at) + 2;
        list.erase(begin, list.find("\n\n", at) + 2 - begin);
    }
    return list;
}

// Whether a file holds what is said of a controller behind the first ones.
bool is_of_others(const std::string& name, int controllers) {
    return std::any_of(std::begin(addresses), std::end(addresses), [&](const std::string& address) {
        const std::size_t at = name.find(address);
        const int number = at == std::string::npos ? 0 : name[at + address.size()] - '0';
        return number > controllers && number <= 4;
    });
}

// TMPDIR, or memory if programs can be run from there: a run makes and removes dozens of files,
// which takes half of its time elsewhere.
std::string place_of_scratch() {
    struct statvfs memory {};
    const bool is_usable = statvfs("/dev/shm", &memory) == 0 && access("/dev/shm", W_OK) == 0 &&
                           (memory.f_flag & ST_NOEXEC) == 0;
    const char* const chosen = std::getenv("TMPDIR");
    return chosen != nullptr ? chosen : is_usable ? "/dev/shm" : "/tmp";
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

scratch::scratch() {
    std::string name = place_of_scratch() + "/cnatool.XXXXXX";
    path = mkdtemp(name.data());
}

scratch::~scratch() {
    fs::permissions(path, fs::perms::owner_all);  // a case may have taken some from its owner
    fs::remove_all(path);
}

server::server(int controllers) {
    const fs::path demo = fs::path(SOURCE_DIRECTORY) / "demo";
    fs::copy(demo / "server", path, fs::copy_options::recursive);
    fs::create_symlink(SANDBOX_TOOL, path / "cnatool");
    fs::create_symlink(AUDIT_TOOL, path / "cnatool-audit");
    fs::create_directories(stand_in() / "answers");
    fs::copy(demo / "hbacmd", stand_in());
    for (const fs::directory_entry& each : fs::recursive_directory_iterator(demo / "answers")) {
        const fs::path copy = stand_in() / each.path().lexically_relative(demo);
        if (each.is_directory()) {
            fs::create_directories(copy);
        } else if (!is_of_others(each.path().filename(), controllers)) {
            fs::copy(each, copy);
        }
    }
    fs::remove(stand_in() / "answers/faults.txt");  // only examples, which take time to read
    std::string list = read_file(stand_in() / "answers/listhbas.txt");
    for (int i = controllers; i < 4; ++i) {
        list = without(list, serial_numbers[i]);
    }
    write_file(stand_in() / "answers/listhbas.txt", list);
}

server::server(const std::string& controllers)
    : server(controllers.empty() ? 1 : std::stoi(controllers)) {}

run_result server::run(const std::string& command) const {
    const scratch outputs;
    const std::string root = geteuid() == 0 ? "IS_ROOT=yes; " : "IS_ROOT=; ";
    const std::string line = "cd '" + path.string() + "' && (" + root + environment + command +
                             "\n) >'" + (outputs.path / "out").string() + "' 2>'" +
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
