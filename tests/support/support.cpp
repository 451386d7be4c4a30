#include "support/support.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <new>
#include <sstream>

namespace fs = std::filesystem;

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
    const std::string line = "cd '" + path.string() + "' && (" + command + ") >'" +
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

void server::set_faults(std::string_view lines) const {
    write_file(stand_in() / "answers/faults.txt", lines);
}

fs::path server::stand_in() const { return path / "opt/emulex/ocmanager/bin"; }
