#pragma once

/// Lays the ground under a process before it does anything else: standard descriptors that the
/// caller has closed, signals that would end it over its own text, the rights of its files, output
/// line by line.
void prepare_process();

/// Holds memory back so that its exhaustion can still be reported by an exception. False when not
/// even that much is there.
bool hold_memory_back();
