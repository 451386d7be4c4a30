#include "inventory/command_run.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <span>

namespace {

constexpr std::array noted_during_query{SIGINT, SIGQUIT};
constexpr std::array noted_during_download{SIGINT, SIGQUIT, SIGTERM};

volatile std::sig_atomic_t noted = 0;

void note_signal(int signal) {
    if (noted == 0) {
        noted = signal;
    }
}

// What the caller has us ignore stays ignored, by the command as well.
void start_noting(std::span<const int> wanted, std::span<struct sigaction> before) {
    struct sigaction noting {};
    noting.sa_handler = note_signal;
    noting.sa_flags = SA_RESTART;
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        sigaction(wanted[i], nullptr, &before[i]);
        if (before[i].sa_handler != SIG_IGN) {
            sigaction(wanted[i], &noting, nullptr);
        }
    }
}

void stop_noting(std::span<const int> wanted, std::span<const struct sigaction> before) {
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        sigaction(wanted[i], &before[i], nullptr);
    }
}

// In a session of its own a command gets no signal from the terminal or for our process group.
int spawn_shell(const char* line, command_kind kind, pid_t& child) {
    posix_spawnattr_t attributes;
    if (const int error = posix_spawnattr_init(&attributes)) {
        return error;
    }
    if (kind == command_kind::download) {
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID);
    }
    // The words are only read, though the call asks for text that may be written.
    const std::array<char*, 4> words{const_cast<char*>("sh"), const_cast<char*>("-c"),
                                     const_cast<char*>(line), nullptr};
    const int error = posix_spawn(&child, "/bin/sh", nullptr, &attributes, words.data(), environ);
    posix_spawnattr_destroy(&attributes);
    return error;
}

int spawn_and_wait(const char* line, command_kind kind) {
    constexpr int no_process = -1;
    constexpr int no_shell = 127 << 8;
    pid_t child = 0;
    if (const int error = spawn_shell(line, kind, child)) {
        return error == EAGAIN || error == ENOMEM ? no_process : no_shell;
    }
    int status = 0;
    while (waitpid(child, &status, 0) == -1) {
        if (errno != EINTR) {
            return no_process;
        }
    }
    return status;
}

}  // namespace

int run_in_shell(const char* line, command_kind kind) {
    const bool is_download = kind == command_kind::download;
    const std::span<const int> wanted =
        is_download ? std::span<const int>(noted_during_download) : noted_during_query;
    std::array<struct sigaction, noted_during_download.size()> before{};
    start_noting(wanted, before);
    if (is_download) {
        // The adapter under way may carry the session that hangs up, and no limit of a trace is
        // worth half a flash.
        std::signal(SIGHUP, SIG_IGN);
        std::signal(SIGXFSZ, SIG_IGN);
    }
    const int status = spawn_and_wait(line, kind);
    stop_noting(wanted, before);
    return status;
}

int noted_signal() { return noted; }

void end_by_noted_signal() {
    if (noted == 0) {
        return;
    }
    std::fflush(nullptr);
    std::signal(noted, SIG_DFL);
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, noted);
    sigprocmask(SIG_UNBLOCK, &set, nullptr);
    kill(getpid(), noted);
    std::_Exit(128 + noted);  // as the first process of a container no such signal ends us
}
