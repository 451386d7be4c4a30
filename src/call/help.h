#pragma once

#include <string>

/// The version number.
std::string tool_version();

/// The tool's version line, with the name under which it was called, at level 1.
void print_tool_info();

/// The version number alone, at level 1.
void print_version();

/// The whole help output, at level 1.
void print_help();
