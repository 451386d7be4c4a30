#include "base/run_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <cerrno>

#include "base/output.h"

namespace {

// The descriptor stays open: the lock ends with it.
void lock_for_run(int descriptor, const char* path, int operation) {
    if (flock(descriptor, operation | LOCK_NB) == 0 || errno != EWOULDBLOCK) {
        return;
    }
    Print(1, "Waiting for another run on %s.\n", path);
    while (flock(descriptor, operation) == -1 && errno == EINTR) {
    }
}

}  // namespace

void lock_directory_for_run(const char* path, lock_kind kind) {
    lock_for_run(open(path, O_RDONLY | O_DIRECTORY | O_CLOEXEC), path,
                 kind == lock_kind::shared ? LOCK_SH : LOCK_EX);
}

void lock_file_for_run(const char* path) {
    const int descriptor = open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    struct stat status {};
    // A directory here may be the one that this run has locked already.
    if (fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode)) {
        lock_for_run(descriptor, path, LOCK_EX);
    }
}
