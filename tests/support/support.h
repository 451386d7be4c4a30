#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

#include "support/cases.h"
#include "support/process.h"

/// Runs `act` and gives what it wrote to standard output.
std::string output_of(const std::function<void()>& act);

/// The status that `act` returns or ends the process with.
exit_status status_of(const std::function<exit_status()>& act);

/// From the allocation with this number on (counted from 0) operator new fails; below 0: never.
extern long allocations_left;

std::string read_file(const std::filesystem::path& path);
void write_file(const std::filesystem::path& path, std::string_view text);

/// `text` with `with` in all places of `what`.
std::string replaced(std::string text, std::string_view what, std::string_view with);

/// A text of the folder of expected texts, with the lines that show at this level. "3|" before a
/// line says from which level on it and those behind it show, \n stands for a blank line.
std::string golden(std::string_view name, int level = 6);

/// A directory of its own, gone with its owner.
struct scratch {
    std::filesystem::path path;
    scratch();
    ~scratch();
    scratch(const scratch&) = delete;
    scratch& operator=(const scratch&) = delete;
};

struct run_result {
    int status;       ///< exit status; 128 and the signal where one ended the run
    std::string out;  ///< standard output
    std::string err;
};

/// A copy of the sample server: the tool as ./cnatool with table and images beside it, the
/// stand-in for the management tool below ./opt.
struct server : scratch {
    /// With the first controllers alone, and the ports that belong to none: each controller costs a
    /// run six calls.
    explicit server(int controllers = 1);
    /// As many as the key "controllers" of a case says, one without it.
    explicit server(const std::string& controllers);
    /// Runs shell commands in the server's directory, "./cnatool ..." for one, with what
    /// support/server.sh offers.
    [[nodiscard]] run_result run(const std::string& command) const;
    /// The calls that reached the stand-in since the last time, one a line.
    [[nodiscard]] std::string calls() const;
    [[nodiscard]] std::filesystem::path stand_in() const;
};
