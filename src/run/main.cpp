#include <csignal>
#include <cstdio>

#include "run/program_run.h"

int main(int argc, char** argv) {
    // A caller that captures the output sees how far a long flash has come.
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    // A caller that ignores the end of its children would hide from us how a command ended.
    std::signal(SIGCHLD, SIG_DFL);
    // Text is commentary: a reader of ours that goes away must not end a flash half done. A handler
    // and not SIG_IGN, which the management tool would inherit.
    std::signal(SIGPIPE, [](int) {});
    return program_run(argc, argv);
}
