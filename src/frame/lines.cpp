#include "frame/lines.h"

file_handle open_for_reading(const char* path) { return file_handle(std::fopen(path, "r")); }

bool next_line(const file_handle& file, char (&line)[line_width]) {
    return std::fgets(line, sizeof line, file.get()) != nullptr;
}
