#pragma once

#include <array>
#include <concepts>
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

/// Turns double quotes, tabs and newlines of `text` into blanks, cuts the blanks at its end,
/// and gives its first character that is no blank. Carriage returns stay.
char* cleanString(char* text);

/// The number in `text`: -1 for text that is not wholly a number or has 8192 characters or more,
/// negated behind a minus sign; only the low 32 bits count and are read as signed. Callers that
/// want an identifier refuse all that is negative. Blanks and newlines at the end are cut off in
/// the caller's text. A number that 64 bits do not hold ends the process with status 1.
int string2int(char* text, int base);

/// string2int for text that must stay as it is.
int number_of(std::string_view text, int base);

/// Copies `value` into a text field of this width, cut to what fits with its terminator.
void set_text(std::span<char> field, std::string_view value);

/// A text field in a form that a table row can name: text_of<&record::field>(record) is the field.
template <auto Member>
inline constexpr auto text_of = [](auto& record) -> std::span<char> { return record.*Member; };

/// Puts `value` behind the text in `field`. False, and nothing changed, when it does not fit.
bool append_text(std::span<char> field, std::string_view value);

/// A text with "%s" where values go. With another number of them than `Count` it does not compile.
template <std::size_t Count>
struct fill_format {
    std::string_view text;
    consteval fill_format(const char* format) : text(format) {
        std::size_t count = 0;
        for (std::size_t at = text.find("%s"); at != std::string_view::npos;
             at = text.find("%s", at + 2)) {
            ++count;
        }
        if (count != Count) {
            throw "as many values as places";
        }
    }
};

/// Puts the values in place of the "%s" of `format`, in their order; there are as many of both.
std::string fill_places(std::string_view format, std::span<const std::string_view> values);

/// The same; the compiler counts.
template <std::convertible_to<std::string_view>... Values>
std::string fill_in(fill_format<sizeof...(Values)> format, const Values&... values) {
    const std::array<std::string_view, sizeof...(Values)> texts{values...};
    return fill_places(format.text, texts);
}

/// Cuts the next non-empty part off `rest`; a run of separators counts as one, and those at either
/// end do not count. No value when no part is left.
std::optional<std::string_view> next_part(std::string_view& rest, char separator);

/// Whether a shell would part `value` into words: it holds a blank or a tab.
bool holds_blank(std::string_view value);

/// Whether `value` is empty or holds nothing but blanks.
bool is_blank(std::string_view value);
