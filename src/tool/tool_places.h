#pragma once

#include <array>

/// Where the management tool may be, in the order in which it is looked for. The real places and
/// those of the sandbox, below the current directory, are in two source files. Which one is linked
/// is the only difference between the two programs.
extern const std::array<const char*, 3> tool_places;
