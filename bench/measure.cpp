// measure null|pipe COMMAND...: runs a command once and prints the wall time, the processor time
// of it and its children (both in milliseconds) and the peak memory of the largest of them (KiB).
//
// null: the command writes to /dev/null. pipe: it writes to a pipe, which is read here and
// thrown away. Ends with 1 when the command fails or takes longer than two minutes.
//
// The kernel counts this program's own memory as the start of the command's peak, so that it must
// stay small.
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstring>

namespace {

constexpr unsigned longest_run = 120;  // seconds

double milliseconds(const timeval& time) {
    return 1e3 * static_cast<double>(time.tv_sec) + 1e-3 * static_cast<double>(time.tv_usec);
}

[[noreturn]] void become(char** command, int output) {
    dup2(output, STDOUT_FILENO);
    alarm(longest_run);
    execvp(command[0], command);
    std::perror(command[0]);
    _exit(127);
}

}  // namespace

int main(int argc, char** argv) {
    const bool piped = argc > 2 && std::strcmp(argv[1], "pipe") == 0;
    if (argc < 3 || (!piped && std::strcmp(argv[1], "null") != 0)) {
        std::fprintf(stderr, "usage: %s null|pipe COMMAND...\n", argv[0]);
        return 2;
    }
    int ends[2] = {-1, -1};
    if (piped ? pipe2(ends, O_CLOEXEC) != 0
              : (ends[1] = open("/dev/null", O_WRONLY | O_CLOEXEC)) < 0) {
        std::perror("output");
        return 1;
    }

    const auto start = std::chrono::steady_clock::now();
    const pid_t child = fork();
    if (child < 0) {
        std::perror("fork");
        return 1;
    }
    if (child == 0) {
        become(argv + 2, ends[1]);
    }
    close(ends[1]);
    static char buffer[65536];
    while (piped && read(ends[0], buffer, sizeof buffer) > 0) {
    }
    int status = 0;
    rusage usage{};
    wait4(child, &status, 0, &usage);
    const std::chrono::duration<double, std::milli> wall = std::chrono::steady_clock::now() - start;

    if (status != 0) {
        std::fprintf(stderr, "%s: %s %d\n", argv[2], WIFSIGNALED(status) ? "signal" : "exit status",
                     WIFSIGNALED(status) ? WTERMSIG(status) : WEXITSTATUS(status));
        return 1;
    }
    std::printf("%.3f %.3f %ld\n", wall.count(),
                milliseconds(usage.ru_utime) + milliseconds(usage.ru_stime), usage.ru_maxrss);
    return 0;
}
