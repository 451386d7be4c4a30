#include "base/progress.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "base/output.h"
#include "base/text.h"

namespace {

char noted[80];
std::size_t shown_width = 0;  // 0: the line is not there
bool line_is_begun = false;

// What reaches the last column of the terminal could not be taken away any more.
std::size_t room_in_line() {
    struct winsize size {};
    ioctl(STDERR_FILENO, TIOCGWINSZ, &size);
    return size.ws_col == 0 ? sizeof noted : size.ws_col - 1U;
}

}  // namespace

bool progress_may_show() {
    return PrintDebugOnScreen != 0 && VerboseLevel >= 1 && VerboseLevel <= 3 &&
           isatty(STDERR_FILENO) != 0;
}

void note_progress(const std::string& what) {
    set_text(noted, what);
    if (shown_width > 0) {
        show_progress();
    }
}

void show_progress() {
    if (line_is_begun || !progress_may_show()) {
        return;
    }
    take_progress_away();
    std::fflush(stdout);
    shown_width = std::min(std::strlen(noted), room_in_line());
    std::fprintf(stderr, "%.*s", static_cast<int>(shown_width), noted);
}

void note_begun_line(bool is_begun) { line_is_begun = is_begun; }

void take_progress_away() {
    if (shown_width > 0) {
        std::fprintf(stderr, "\r%*s\r", static_cast<int>(shown_width), "");
        shown_width = 0;
    }
}
