#pragma once

#include <string>

/// Lets the library's messages about errors, and them alone, go to standard error.
void speak_of_errors();

/// Lets the library say nothing again.
void be_silent();

/// Writes `text` to standard output. False where not all of it got there, which is said then.
bool write_out(const std::string& text);

/// Notes which file is being read, for the case that its contents end the process.
void now_reading(const std::string& path);

/// The file noted last; empty: none.
const std::string& file_being_read();

/// Says on standard error that the audit cannot go on, and why.
void give_up(const std::string& reason);
