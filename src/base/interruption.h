#pragma once

#include <csignal>

/// The signals that others send to end a process, and that it can catch. SIGHUP, SIGPIPE and
/// SIGXFSZ, which are treated in another way, do not belong to it, nor do those that mean a fault.
sigset_t ending_signals();

/// From here on these signals are noted and end nothing. What the caller has set to be ignored
/// stays ignored; a signal that is noted already stays so.
void note_signals(const sigset_t& wanted);

/// Restores how the noted signals were treated before.
void stop_noting();

/// For a child that is about to become another program, with the signals that are noted blocked:
/// drops those that have reached it, and sets their default treatment.
void drop_noted_signals();

/// The first signal that was noted; 0 for none.
int noted_signal();

/// The status of this run says more than a signal: from here on no noted signal ends the run.
void keep_status();

/// Stops noting and ends the process by the signal that was noted; returns when there was none or
/// the status is to be kept.
void end_by_noted_signal();
