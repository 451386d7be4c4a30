#pragma once

#include <array>

/// Where the management tool may be, in the order in which it is looked for. The real places
/// and those of the sandbox, below the current directory, stand in a source file of their own
/// each; which one is linked is all that tells the two programs apart.
extern const std::array<const char*, 3> tool_places;
