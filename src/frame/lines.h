#pragma once

#include <cstddef>
#include <cstdio>
#include <memory>

struct file_closer {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

/// A file open for reading; closed with its owner.
using file_handle = std::unique_ptr<std::FILE, file_closer>;

inline constexpr std::size_t line_width = 1024;

/// Opens `path` for reading; empty when that fails. A directory opens and reads as empty.
file_handle open_for_reading(const char* path);

/// Reads the next line with its newline, at most 1023 characters a time: a longer line comes
/// in pieces, each a line of its own wherever lines are tested or counted. False at the end.
bool next_line(const file_handle& file, char (&line)[line_width]);
