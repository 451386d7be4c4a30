#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "base/exit_status.h"

inline constexpr std::size_t image_path_width = 1024;

/// Finds the first entry of `directory`, which must end in a slash, that fits `pattern`: "*."
/// and an extension, or the beginning of a name; what runs leave behind fits none. The order of
/// the directory decides. Puts directory and name into `result` and gives 0; else gives 20 and
/// leaves `result` alone.
exit_status FindFlashImage(const char* directory, char (&result)[image_path_width],
                           const char* pattern);

/// Whether this is a plain file with contents that can be read.
bool can_be_sent(const std::string& path);

/// The names of all entries that FindFlashImage could take, in the order of the directory.
std::vector<std::string> fitting_images(const char* directory, const char* pattern);
