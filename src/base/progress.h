#pragma once

#include <string>

// What is being waited for, in a line on standard error that takes its own place again and again.
// It is there only if standard error is a terminal and the screen shows the levels 1 to 3, and is
// taken away before any other text is written.

/// Whether the line can show at all; if not, there is no need to note anything.
bool progress_may_show();

/// Notes what is waited for from now on; a line that is there says it at once.
void note_progress(const std::string& what);

/// Shows what is waited for. To be called when that has taken half a second.
void show_progress();

/// Notes whether a command has begun a line of text and not ended it. Nothing is shown then: that
/// text would be taken away with ours.
void note_begun_line(bool is_begun);

/// Takes the line away, where it shows.
void take_progress_away();
