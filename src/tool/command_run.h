#pragma once

#include <optional>

/// Gives `line`, which only asks, to the shell and waits for its end. Gives the status as `system`
/// does: the wait status, -1 if no process could be started, exit code 127 if there is no shell.
/// SIGINT and SIGQUIT that come meanwhile are noted and end nothing here. If standard error is a
/// terminal, we pass on what the command writes there, and call show_progress after half a second.
int run_query_in_shell(const char* line);

/// The same for a `line` that changes a controller. From here on to the end of the run all signals
/// that end a process are noted, and SIGHUP is ignored; none that is meant for us reaches the
/// command, which has a session of its own. The command also holds the lock on the management tool.
/// Gives nothing when a signal was noted before the start: the command is not run then.
std::optional<int> run_download_in_shell(const char* line);
