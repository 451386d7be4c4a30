#include "tool/command_run.h"

#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>

#include "base/interruption.h"
#include "base/progress.h"
#include "base/run_lock.h"
#include "tool/error_relay.h"

namespace {

constexpr int no_process = -1;
constexpr int no_shell = 127;

// The words are only read, although the calls take text that can be written.
std::array<char*, 4> shell_words(const char* line) {
    return {const_cast<char*>("sh"), const_cast<char*>("-c"), const_cast<char*>(line), nullptr};
}

constexpr char shell[] = "/bin/sh";

int wait_for(pid_t child) {
    int status = 0;
    while (waitpid(child, &status, 0) == -1) {
        if (errno != EINTR) {
            return no_process;
        }
    }
    return status;
}

// Gives 0 and the child, or the status of a command that could not be started.
int spawn_shell(const char* line, const posix_spawn_file_actions_t* files,
                const posix_spawnattr_t* attributes, pid_t& child) {
    const auto words = shell_words(line);
    const int error = posix_spawn(&child, shell, files, attributes, words.data(), environ);
    if (error == 0) {
        return 0;
    }
    return error == EAGAIN || error == ENOMEM ? no_process : no_shell << 8;
}

int spawn_and_wait(const char* line) {
    pid_t child = 0;
    const int failed = spawn_shell(line, nullptr, nullptr, child);
    return failed != 0 ? failed : wait_for(child);
}

int spawn_on_relay(const char* line, const error_relay& relay, const sigset_t& mask, pid_t& child) {
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_adddup2(&files, relay.of_command, STDERR_FILENO);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
    posix_spawnattr_setsigmask(&attributes, &mask);
    const int failed = spawn_shell(line, &files, &attributes, child);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&files);
    return failed;
}

// `mask` lets the end of the child wake us up.
int watch(pid_t child, const error_relay& relay, const sigset_t& mask) {
    constexpr timespec half_second{.tv_sec = 0, .tv_nsec = 500'000'000};
    const timespec* patience = &half_second;
    pollfd said{.fd = relay.from_command, .events = POLLIN, .revents = 0};
    int status = 0;
    pid_t ended = 0;
    while ((ended = waitpid(child, &status, WNOHANG)) == 0) {
        const int ready = ppoll(&said, 1, patience, &mask);
        if (ready == 0) {
            show_progress();
            patience = nullptr;
        } else if (ready > 0 && !pass_on_errors(relay)) {
            said.fd = -1;  // the command has closed its end
        }
    }
    return ended == child ? status : no_process;
}

int spawn_and_watch(const char* line, error_relay& relay) {
    sigset_t end_of_child;
    sigset_t before;
    sigemptyset(&end_of_child);
    sigaddset(&end_of_child, SIGCHLD);
    std::signal(SIGCHLD, [](int) {});
    sigprocmask(SIG_BLOCK, &end_of_child, &before);
    pid_t child = 0;
    int status = spawn_on_relay(line, relay, before, child);
    close_command_side(relay);
    if (status == 0) {
        sigset_t waking = before;
        sigdelset(&waking, SIGCHLD);  // the caller may have blocked it
        status = watch(child, relay, waking);
    }
    close_error_relay(relay);
    sigprocmask(SIG_SETMASK, &before, nullptr);
    std::signal(SIGCHLD, SIG_DFL);
    return status;
}

sigset_t keyboard_signals() {
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGINT);
    sigaddset(&set, SIGQUIT);
    return set;
}

// In a session of its own it gets no signal from the terminal or for our process group. Signals for
// the group that came before are dropped.
[[noreturn]] void become_download(const char* line, const sigset_t& mask) {
    setsid();
    drop_noted_signals();
    sigprocmask(SIG_SETMASK, &mask, nullptr);
    hand_on_file_lock();
    execve(shell, shell_words(line).data(), environ);
    _exit(no_shell);
}

}  // namespace

int run_query_in_shell(const char* line) {
    note_signals(keyboard_signals());
    error_relay relay = open_error_relay();
    const int status = relay.from_command < 0 ? spawn_and_wait(line) : spawn_and_watch(line, relay);
    stop_noting();
    return status;
}

std::optional<int> run_download_in_shell(const char* line) {
    // The controller that is being flashed may carry the session that ends, and a flash must not
    // end half done because its trace is too long.
    std::signal(SIGHUP, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    const sigset_t ending = ending_signals();
    note_signals(ending);
    sigset_t before;
    sigprocmask(SIG_BLOCK, &ending, &before);
    const bool is_due = noted_signal() == 0;
    const pid_t child = is_due ? fork() : no_process;
    if (child == 0) {
        become_download(line, before);
    }
    sigprocmask(SIG_SETMASK, &before, nullptr);
    if (!is_due) {
        return std::nullopt;
    }
    return child == no_process ? no_process : wait_for(child);
}
