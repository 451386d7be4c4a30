#pragma once

#include <cstddef>
#include <cstdio>
#include <memory>

struct file_closer {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

/// A file open for reading; closed with its owner.
using input_file = std::unique_ptr<std::FILE, file_closer>;

inline constexpr std::size_t line_width = 1024;

/// Opens a file for reading; a directory reads as an empty one. What cannot be opened, and a pipe
/// or device, is reported at level 1 and gives an empty result.
input_file open_for_reading(const char* path);

/// Reads the next line with its newline, at most 1023 characters a time: a longer line comes
/// in pieces, each a line of its own wherever lines are tested or counted. A NUL comes as a
/// question mark. False at the end.
bool next_line(const input_file& file, char (&line)[line_width]);
