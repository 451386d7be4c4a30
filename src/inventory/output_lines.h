#pragma once

#include <cstdint>
#include <cstring>
#include <span>
#include <string_view>

#include "base/text.h"

/// One key of the management tool's output: what a line begins with, and what becomes of it.
template <typename Record>
struct key_row {
    std::string_view key;
    std::span<char> (*field)(Record&) = nullptr;  ///< null: the line has no value
    const char* echo = nullptr;                   ///< label of the echo; null: none
    std::int32_t Record::*number = nullptr;       ///< takes the value read as hexadecimal
    bool opens = false;                           ///< the line opens a record
    char not_followed_by = '\0';                  ///< the key does not fit before this character
};

/// The first row whose key the line begins with, in the order of the table; null when none fits.
template <typename Record, std::size_t Count>
const key_row<Record>* find_key(const key_row<Record> (&rows)[Count], std::string_view line) {
    for (const key_row<Record>& row : rows) {
        if (line.starts_with(row.key) &&
            (row.not_followed_by == '\0' ||
             !line.substr(row.key.size()).starts_with(row.not_followed_by))) {
            return &row;
        }
    }
    return nullptr;
}

/// Where the value of a key line starts: two characters behind its first colon, or at its end.
/// Null when the line has no colon.
inline char* value_start(char* line) {
    char* colon = std::strchr(line, ':');
    if (colon == nullptr) {
        return nullptr;
    }
    return colon[1] == '\0' ? colon + 1 : colon + 2;
}

/// Stores the line's value, cleaned, in the row's field and number; the number is taken from
/// the whole value. Gives the text from the value's start on, its end cleaned, or null when the
/// line has no colon: then nothing is stored.
template <typename Record>
const char* store_value(const key_row<Record>& row, Record& record, char* line) {
    char* start = value_start(line);
    if (start == nullptr) {
        return nullptr;
    }
    const char* value = cleanString(start);
    set_text(row.field(record), value);
    if (row.number != nullptr) {
        record.*row.number = number_of(value, 16);
    }
    return start;
}
