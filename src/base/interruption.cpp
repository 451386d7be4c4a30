#include "base/interruption.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "base/progress.h"

namespace {

// Below the real-time signals.
constexpr int last_standard_signal = 31;

// The standard signals that do not belong to ending_signals.
constexpr int exceptions[] = {
    // treated elsewhere
    SIGHUP, SIGPIPE, SIGXFSZ,
    // faults
    SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT, SIGSYS, SIGTRAP,
    // end no process, or cannot be caught
    SIGCHLD, SIGCONT, SIGURG, SIGWINCH, SIGSTOP, SIGTSTP, SIGTTIN, SIGTTOU, SIGKILL};

volatile std::sig_atomic_t noted = 0;
bool status_is_kept = false;

struct sigaction treatment_before[NSIG] = {};
bool is_noting[NSIG] = {};

void note_signal(int signal) {
    if (noted == 0) {
        noted = signal;
    }
}

}  // namespace

sigset_t ending_signals() {
    sigset_t set;
    sigemptyset(&set);
    for (int signal = 1; signal <= last_standard_signal; ++signal) {
        sigaddset(&set, signal);
    }
    for (const int signal : exceptions) {
        sigdelset(&set, signal);
    }
    for (int signal = SIGRTMIN; signal <= SIGRTMAX; ++signal) {
        sigaddset(&set, signal);
    }
    return set;
}

void note_signals(const sigset_t& wanted) {
    struct sigaction noting {};
    noting.sa_handler = note_signal;
    noting.sa_flags = SA_RESTART;
    for (int signal = 1; signal < NSIG; ++signal) {
        if (sigismember(&wanted, signal) != 1 || is_noting[signal]) {
            continue;
        }
        sigaction(signal, nullptr, &treatment_before[signal]);
        if (treatment_before[signal].sa_handler != SIG_IGN) {
            is_noting[signal] = sigaction(signal, &noting, nullptr) == 0;
        }
    }
}

void stop_noting() {
    for (int signal = 1; signal < NSIG; ++signal) {
        if (is_noting[signal]) {
            sigaction(signal, &treatment_before[signal], nullptr);
            is_noting[signal] = false;
        }
    }
}

void drop_noted_signals() {
    for (int signal = 1; signal < NSIG; ++signal) {
        if (is_noting[signal]) {
            std::signal(signal, SIG_IGN);
            std::signal(signal, SIG_DFL);
        }
    }
}

int noted_signal() { return noted; }

void keep_status() { status_is_kept = true; }

void end_by_noted_signal() {
    if (status_is_kept) {
        return;
    }
    std::fflush(nullptr);
    // Before the last look: from here on a signal ends the process itself.
    stop_noting();
    if (noted == 0) {
        return;
    }
    take_progress_away();
    std::signal(noted, SIG_DFL);
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, noted);
    sigprocmask(SIG_UNBLOCK, &set, nullptr);
    kill(getpid(), noted);
    std::_Exit(128 + noted);  // the first process of a container does not end by such a signal
}
