#pragma once

#include <cstdio>

/// Writes `text` as it stands. On a terminal, each control character except newline and tab (U+0080
/// to U+009F are some), and each byte that is no part of valid UTF-8, becomes a question mark: the
/// text of a device must not control the screen. The text may be changed.
void write_text(char* text, std::FILE* stream);
