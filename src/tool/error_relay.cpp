#include "tool/error_relay.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

#include "base/output.h"
#include "base/progress.h"
#include "base/terminal.h"

error_relay open_error_relay() {
    std::array<int, 2> ends{-1, -1};
    if (isatty(STDERR_FILENO) == 0 || pipe2(ends.data(), O_CLOEXEC) != 0) {
        return {};
    }
    fcntl(ends[0], F_SETFL, O_NONBLOCK);
    return {.from_command = ends[0], .of_command = ends[1]};
}

bool pass_on_errors(const error_relay& relay) {
    char text[message_width];
    const ssize_t length = read(relay.from_command, text, sizeof text - 1);
    if (length <= 0) {
        return false;
    }
    text[length] = '\0';
    std::replace(text, text + length, '\0', '?');
    take_progress_away();
    note_begun_line(text[length - 1] != '\n');
    write_text(text, stderr);
    return true;
}

void close_command_side(error_relay& relay) { close(std::exchange(relay.of_command, -1)); }

void close_error_relay(error_relay& relay) {
    // No more than a pipe holds: what the command has left running may write for ever.
    constexpr int most_of_a_pipe = 65536 / static_cast<int>(message_width);
    for (int i = 0; i <= most_of_a_pipe && pass_on_errors(relay); ++i) {
    }
    close(std::exchange(relay.from_command, -1));
}
