#pragma once

#include <cstddef>
#include <cstdio>
#include <string_view>

extern int DebugLevel;    ///< 0 to 6; messages up to it go to the debug log
extern int VerboseLevel;  ///< 0 to 6; messages up to it go to standard output
/// 0: text goes only to a stream that is handed in, or to the debug log.
extern int PrintDebugOnScreen;

inline constexpr std::size_t message_width = 4096;  ///< a longer message is cut

/// The base name under which the tool was called, cut to the field; only printed.
extern char program_name[32];

/// Takes program_name from the path by which the tool was called.
void set_program_name(std::string_view called_as);

inline constexpr char dash_ruler[] =
    "---------+---------+---------+---------+---------+---------+---------+---------+";

/// Whether a message of this level (1 to 6) passes VerboseLevel or DebugLevel.
bool level_shows(int level);

/// Writes `text`, as write_text does, if its level shows: to standard output, standard error, or
/// `stream`; if none is handed in, to the debug log if that is open. Gives 1 when the text was
/// written, else 0.
int PrintDebug(int level, const char* text, std::FILE* stream = nullptr);

/// Composes a message and hands it to PrintDebug. It shows from `level` on.
[[gnu::format(printf, 2, 3)]] void Print(int level, const char* format, ...);

/// Composes a text and writes it to standard error, as write_text does, whatever the levels are.
[[gnu::format(printf, 1, 2)]] void print_error(const char* format, ...);

/// Reports exhausted memory where no other message stands; the status goes with it: 54.
void print_out_of_memory();

/// Opens the debug log at `path` if DebugLevel is above 0, and writes what -d has held back so far.
/// A symbolic link or anything but a plain file in its place is left alone; a log that cannot be
/// opened changes nothing.
void open_debug_log(const char* path);
