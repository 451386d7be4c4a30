#pragma once

#include <cstddef>
#include <string_view>

inline constexpr std::size_t path_width = 1024;
inline constexpr char conditions_file_name[] = "FC_HBA_Conditions.txt";

extern char TEMPDIR_BUFFER[4096];            ///< TMPDIR or "/tmp"; only printed
extern char pHBAConditionsPath[path_width];  ///< full path of the conditions file
extern char pHBAFirmwarePath[path_width];    ///< base directory of the images, with its slash
extern char pHBAWorkingPath[path_width];     ///< directory of all output files, with its slash
extern char pHBAFlashCmdPath[path_width];    ///< the management tool; empty until it is found

/// Sets all three paths to the bare `directory`. False, and nothing changed, when the directory
/// leaves no room for the name of the conditions file behind it.
bool set_directory(std::string_view directory);

/// Fills TEMPDIR_BUFFER and says so at level 3.
void read_temporary_directory();

/// Completes the three paths: from the directory set before, or else from the tool's own path
/// `called_as`, or from the current directory if that has no slash. False when there is no room.
bool resolve_paths(std::string_view called_as);
