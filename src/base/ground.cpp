#include "base/ground.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <initializer_list>
#include <new>
#include <utility>

namespace {

constexpr std::size_t memory_of_last_exception = 4096;

void* held_memory = nullptr;

// Before anything is opened: it would take the place of a closed descriptor, and a text for the
// screen, of a command as well, would land in it.
void fill_standard_descriptors() {
    for (int descriptor = 0; descriptor <= 2; ++descriptor) {
        if (fcntl(descriptor, F_GETFD) == -1 && errno == EBADF &&
            open("/dev/null", O_RDWR) != descriptor) {
            open("/", O_RDONLY);  // takes the place too; nothing can be read or written there
        }
    }
}

// Text is commentary: a reader that goes away or a file that may not grow must not end a flash half
// done. A command that only warns a reader who is gone must not look like one that found no
// storage, so it inherits the first; the second ends a query that cannot write its answer.
void outlive_failing_output() {
    std::signal(SIGPIPE, SIG_IGN);
    if (std::signal(SIGXFSZ, [](int) {}) == SIG_IGN) {
        std::signal(SIGXFSZ, SIG_IGN);
    }
}

// For the first process of a container the kernel drops a signal that nobody handles.
void die_as_first_process() {
    for (const int signal : {SIGINT, SIGQUIT, SIGTERM, SIGHUP}) {
        if (getpid() == 1 &&
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
    // A caller that ignores the end of its children would hide from us how a command ended.
    std::signal(SIGCHLD, SIG_DFL);
    outlive_failing_output();
    die_as_first_process();
    umask(umask(0) | S_IWGRP | S_IWOTH);
}

bool hold_memory_back() {
    held_memory = std::malloc(memory_of_last_exception);
    std::set_new_handler(give_memory_for_exception);
    return held_memory != nullptr;
}
