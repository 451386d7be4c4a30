#include "base/process_setup.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <utility>

#include "base/interruption.h"

namespace {

constexpr std::size_t memory_of_last_exception = 4096;

void* held_memory = nullptr;

// Comes before a file is opened: that would get the number of a closed descriptor, and messages,
// those of commands too, would be written into it.
void fill_standard_descriptors() {
    for (int descriptor = 0; descriptor <= 2; ++descriptor) {
        if (fcntl(descriptor, F_GETFD) == -1 && errno == EBADF &&
            open("/dev/null", O_RDWR) != descriptor) {
            open("/", O_RDONLY);  // takes the place too; nothing can be read or written there
        }
    }
}

// Text is only commentary: if its reader goes away, or its file may not grow, a flash must not end
// half done. The commands inherit the first: one that writes a warning to a reader who is gone must
// not look as if it found no storage. The second ends a query that cannot write its answer.
void outlive_failing_output() {
    std::signal(SIGPIPE, SIG_IGN);
    if (std::signal(SIGXFSZ, [](int) {}) == SIG_IGN) {
        std::signal(SIGXFSZ, SIG_IGN);
    }
}

// For the first process of a container the kernel drops a signal that nobody handles.
void die_as_first_process() {
    sigset_t signals = ending_signals();
    sigaddset(&signals, SIGHUP);
    for (int signal = 1; signal < NSIG && getpid() == 1; ++signal) {
        if (sigismember(&signals, signal) == 1 &&
            std::signal(signal, [](int number) { std::_Exit(128 + number); }) == SIG_IGN) {
            std::signal(signal, SIG_IGN);
        }
    }
}

// Without it the exception has no room either, and the process would be aborted.
void give_memory_for_exception() {
    std::free(std::exchange(held_memory, nullptr));
    throw std::bad_alloc();
}

}  // namespace

void prepare_process() {
    fill_standard_descriptors();
    // A caller that captures the output sees how far a long flash has come.
    std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
    // If a caller ignores the end of its children, we inherit that and cannot see how a command
    // ended.
    std::signal(SIGCHLD, SIG_DFL);
    outlive_failing_output();
    die_as_first_process();
    umask(umask(0) | S_IWGRP | S_IWOTH);
}

void withhold_standard_input() {
    // It stays open under another number, so that a program that writes to it goes on.
    fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    close(STDIN_FILENO);
    fill_standard_descriptors();
}

bool hold_memory_back() {
    held_memory = std::malloc(memory_of_last_exception);
    std::set_new_handler(give_memory_for_exception);
    return held_memory != nullptr;
}
