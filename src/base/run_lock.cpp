#include "base/run_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <list>

#include "base/output.h"

namespace {

/// An open descriptor, closed with its owner, and the lock on it with that.
struct held_lock {
    int descriptor;
    explicit held_lock(const char* path)
        : descriptor(open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC)) {}
    ~held_lock() {
        if (descriptor >= 0) {
            close(descriptor);
        }
    }
    held_lock(const held_lock&) = delete;
    held_lock& operator=(const held_lock&) = delete;
};

std::list<held_lock> locks;

}  // namespace

void lock_for_run(const char* path, lock_kind kind) {
    const int operation = kind == lock_kind::shared ? LOCK_SH : LOCK_EX;
    const int descriptor = locks.emplace_back(path).descriptor;
    if (flock(descriptor, operation | LOCK_NB) == 0 || errno != EWOULDBLOCK) {
        return;
    }
    Print(1, "Waiting for another run on %s.\n", path);
    while (flock(descriptor, operation) != 0 && errno == EINTR) {
    }
}
