#pragma once

#include <string>
#include <string_view>
#include <vector>

inline constexpr std::size_t page_columns = 100;

enum class emphasis { none, heading, warning };

/// A text for people, in lines of at most 100 columns, to which more is added.
struct page {
    std::string text = {};
    bool coloured = false;
};

/// Whether standard output takes colours: it is a terminal, and NO_COLOR is not set.
bool takes_colours();

/// Adds `head`, in colours if the page has them, and `text` behind it, in lines that all begin
/// under its first character. Every character that is not printable ASCII becomes a question mark.
void put(page& out, std::string_view head, std::string_view text, emphasis style = emphasis::none);

/// `text` with blanks behind it up to this width.
std::string padded(std::string text, std::size_t width);

/// The parts with a text between each two of them.
std::string joined(const std::vector<std::string>& parts, const char* between);
