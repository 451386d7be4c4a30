#pragma once

/// What a command does with the controllers: a query may be cut short, a download may not.
enum class command_kind { query, download };

/// Gives `line` to the shell and waits for its end. Gives the status as `system` does: the wait
/// status, -1 when no process was to be had, exit code 127 when there is no shell.
///
/// SIGINT and SIGQUIT that come meanwhile, and SIGTERM during a download, are noted and end nothing
/// here. None that comes from the terminal or for our process group reaches a download, which has a
/// session of its own; from the first download on SIGHUP is ignored by us and by the commands.
int run_in_shell(const char* line, command_kind kind);

/// The first signal noted while a command ran; 0 for none.
int noted_signal();

/// Ends the process by the signal that was noted; returns when there was none.
void end_by_noted_signal();
