#include "base/terminal.h"

#include <unistd.h>

#include <algorithm>
#include <iterator>
#include <string_view>

namespace {

using std::string_view;

/// Characters of several bytes, as UTF-8 writes them.
struct utf8_row {
    const char* first;   ///< the first byte, from and to
    const char* second;  ///< the second byte, likewise; those behind it are 80 to BF
    std::size_t length;
};

// Longer forms than necessary are not valid, nor are halves of a pair, nor numbers above the last
// character.
constexpr utf8_row utf8_rows[] = {
    {"\xC2\xDF", "\x80\xBF", 2}, {"\xE0\xE0", "\xA0\xBF", 3}, {"\xE1\xEC", "\x80\xBF", 3},
    {"\xED\xED", "\x80\x9F", 3}, {"\xEE\xEF", "\x80\xBF", 3}, {"\xF0\xF0", "\x90\xBF", 4},
    {"\xF1\xF3", "\x80\xBF", 4}, {"\xF4\xF4", "\x80\x8F", 4},
};

bool is_within(char c, const char* range) {
    const auto byte = [](char each) { return static_cast<unsigned char>(each); };
    return byte(range[0]) <= byte(c) && byte(c) <= byte(range[1]);
}

bool begins_as(const utf8_row& row, string_view text) {
    if (text.size() < row.length || !is_within(text[0], row.first) ||
        !is_within(text[1], row.second)) {
        return false;
    }
    const string_view rest = text.substr(2, row.length - 2);
    return std::all_of(rest.begin(), rest.end(), [](char c) { return is_within(c, "\x80\xBF"); });
}

// The character with which `text` begins; empty if it begins with none.
string_view first_character(string_view text) {
    if (is_within(text[0], "\x00\x7F")) {
        return text.substr(0, 1);
    }
    const auto* row = std::find_if(std::begin(utf8_rows), std::end(utf8_rows),
                                   [&](const utf8_row& each) { return begins_as(each, text); });
    return text.substr(0, row == std::end(utf8_rows) ? 0 : row->length);
}

// UTF-8 keeps the order of the characters.
bool is_control(string_view character) {
    return character != "\n" && character != "\t" &&
           (character < " " || ("\x7F" <= character && character < "\xC2\xA0"));
}

void hide_controls(char* text) {
    char* end = text;
    string_view rest = text;
    while (!rest.empty()) {
        const string_view character = first_character(rest);
        if (character.empty() || is_control(character)) {
            *end++ = '?';
        } else {
            end = std::copy(character.begin(), character.end(), end);
        }
        rest.remove_prefix(std::max<std::size_t>(character.size(), 1));
    }
    *end = '\0';
}

}  // namespace

void write_text(char* text, std::FILE* stream) {
    if (isatty(fileno(stream)) != 0) {
        hide_controls(text);
    }
    std::fputs(text, stream);
}
