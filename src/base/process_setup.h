#pragma once

/// Sets a process up before it does anything else: standard descriptors that the caller has closed,
/// signals that would end it because of its output, that would hide how a command ended, or that
/// the first process of a container would not end by, the rights of its files, output line by line.
void prepare_process();

/// Puts /dev/null in the place of standard input, which the commands would read: nobody answers
/// their questions, and they do not read a list that the caller reads line by line.
void withhold_standard_input();

/// Keeps some memory, so that a lack of memory can still be reported by an exception. False if
/// there is not even that much.
bool hold_memory_back();
