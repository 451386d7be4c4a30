#include "base/run_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "base/output.h"

namespace {

// They stay open until the process ends.
int directory_lock = -1;
int file_lock = -1;

int lock_uninterrupted(int descriptor, int operation) {
    int result = 0;
    while ((result = flock(descriptor, operation)) == -1 && errno == EINTR) {
    }
    return result;
}

// Whether the lock could be taken.
bool take_lock(int descriptor, const char* path, int operation, bool& has_waited) {
    if (lock_uninterrupted(descriptor, operation | LOCK_NB) == 0) {
        return true;
    }
    if (errno != EWOULDBLOCK) {
        return false;
    }
    if (!has_waited) {
        Print(1, "Waiting for another run on %s.\n", path);
    }
    has_waited = true;
    return lock_uninterrupted(descriptor, operation) == 0;
}

bool stands_at(const char* path, int descriptor) {
    struct stat there {};
    struct stat here {};
    return stat(path, &there) == 0 && fstat(descriptor, &here) == 0 &&
           there.st_dev == here.st_dev && there.st_ino == here.st_ino;
}

bool is_of_type(int descriptor, mode_t type) {
    struct stat status {};
    return fstat(descriptor, &status) == 0 && (status.st_mode & S_IFMT) == type;
}

// Gives the descriptor that holds the lock, below 0 for none.
int lock_for_run(const char* path, mode_t type, int operation) {
    // Packages replace a file by renaming another one to its name, which may happen while we wait.
    // The count is for a file system that gives the same file another number each time.
    constexpr int most_replacements = 16;
    bool has_waited = false;
    for (int count = 0;; ++count) {
        const int descriptor = open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC);
        if (!is_of_type(descriptor, type) || !take_lock(descriptor, path, operation, has_waited)) {
            close(descriptor);
            break;
        }
        if (stands_at(path, descriptor) || count == most_replacements) {
            return descriptor;
        }
        close(descriptor);
    }
    struct stat status {};
    if (stat(path, &status) == 0) {
        Print(2, "No lock on %s.\n", path);
    }
    return -1;
}

}  // namespace

void lock_directory_for_run(const char* path, lock_kind kind) {
    directory_lock = lock_for_run(path, S_IFDIR, kind == lock_kind::shared ? LOCK_SH : LOCK_EX);
}

void release_directory_lock() { flock(directory_lock, LOCK_UN); }

void lock_file_for_run(const char* path) { file_lock = lock_for_run(path, S_IFREG, LOCK_EX); }

void hand_on_file_lock() { fcntl(file_lock, F_SETFD, 0); }

void release_file_lock() { flock(file_lock, LOCK_UN); }
