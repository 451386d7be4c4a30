#pragma once

#include <string>
#include <string_view>

#include "base/lines.h"

// The names of what a run leaves behind.
inline constexpr char list_file_name[] = "local_hba_list.out";
inline constexpr char attributes_file_name[] = "hba_attributes.out";  ///< end of the name
inline constexpr char mapping_file_name[] = "target_mapping.out";     ///< end of the name
inline constexpr char trace_file_name[] = "FWtrace.out";              ///< beginning, if rotated
inline constexpr char log_file_name[] = "Servie_DLL.log";

/// Whether a run may have left a file of this name behind; such a file is never an image.
bool is_left_by_runs(std::string_view name);

/// The path of the list of all ports.
std::string port_list_path();

/// Removes what an earlier run has left in the place of an output. False when it stays, so that
/// what the command prints could not be told from it; a directory is left to the shell.
bool remove_old_output(const std::string& path);

/// Opens an output for reading, as open_for_reading does. Behind a real run a directory in its
/// place reads as an empty one.
input_file open_output(const std::string& path);
