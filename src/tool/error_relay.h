#pragma once

/// A way for what a command says on its standard error to ours, where ours is a terminal.
struct error_relay {
    int from_command = -1;  ///< we read here; -1: the command is to write to our standard error
    int of_command = -1;    ///< the command is to write here
};

/// Opens a relay; gives one without descriptors if standard error is no terminal, or if no pipe can
/// be opened.
error_relay open_error_relay();

/// Passes on what is there now, without what would steer the terminal. False when nothing was.
bool pass_on_errors(const error_relay& relay);

/// Closes our end for what the command writes, so that its end shows.
void close_command_side(error_relay& relay);

/// Passes on what the command, which has ended, has left, and closes the relay.
void close_error_relay(error_relay& relay);
