#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

#include "base/exit_status.h"

struct file_closer {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

/// A file open for reading, closed with its owner; without a stream if it could not be opened.
struct input_file {
    std::unique_ptr<std::FILE, file_closer> stream;
    std::string path;  ///< for messages
};

inline constexpr std::size_t line_width = 1024;

/// What a directory in the place of a file means.
enum class directory_as { no_file, empty_file };

/// Opens a plain file for reading. What cannot be opened, and a pipe or device, is reported at
/// level 1 and gives a file without a stream.
input_file open_for_reading(const std::string& path,
                            directory_as directory = directory_as::no_file);

/// What can be told of an open file without reading it.
struct file_form {
    std::int64_t written;  ///< time of the last change, in nanoseconds
    bool is_empty;
    bool is_truncated;  ///< its last line has no newline
};
file_form form_of(const input_file& file);

/// Says at level 1 that a file cannot be opened.
void print_not_opened(const std::string& path);

/// Reads the next line with its newline, at most 1023 characters a time: a longer line comes
/// in pieces, each a line of its own wherever lines are tested or counted. A NUL comes as a
/// question mark. False at the end, and where an error ends the reading.
bool next_line(const input_file& file, char (&line)[line_width]);

/// What the end of the lines means: 0 for the end of the file, 51 for an error, which is said at
/// level 1.
exit_status status_at_end(const input_file& file);
