#include "base/page.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>

namespace {

using std::string;
using std::string_view;

// The text of a device must not control the terminal.
string printable(string_view text) {
    string result(text);
    std::replace_if(
        result.begin(), result.end(), [](char c) { return c < ' ' || c > '~'; }, '?');
    return result;
}

// How much of `text` fits a line of this width: up to a blank if there is one.
std::size_t line_length(string_view text, std::size_t width) {
    if (text.size() <= width) {
        return text.size();
    }
    const std::size_t blank = text.rfind(' ', width);
    return blank == string_view::npos || blank == 0 ? width : blank;
}

}  // namespace

bool takes_colours() {
    const char* refused = std::getenv("NO_COLOR");
    return isatty(STDOUT_FILENO) == 1 && (refused == nullptr || *refused == '\0');
}

void put(page& out, string_view head, string_view text, emphasis style) {
    constexpr const char* colours[] = {"", "\033[1m", "\033[33m"};
    const bool coloured = out.coloured && style != emphasis::none;
    const string line = printable(text);
    string_view rest = line;
    out.text += coloured ? colours[static_cast<std::size_t>(style)] : "";
    out.text += printable(head);
    out.text += coloured ? "\033[0m" : "";
    for (bool is_first = true; is_first || !rest.empty(); is_first = false) {
        const std::size_t length = line_length(rest, page_columns - head.size());
        if (!is_first) {
            out.text.append("\n").append(head.size(), ' ');
        }
        out.text += rest.substr(0, length);
        rest.remove_prefix(length);
        rest.remove_prefix(std::min(rest.find_first_not_of(' '), rest.size()));
    }
    out.text.resize(out.text.find_last_not_of(' ') + 1);
    out.text += '\n';
}

string padded(string text, std::size_t width) {
    text.resize(std::max(text.size(), width), ' ');
    return text;
}

string joined(const std::vector<string>& parts, const char* between) {
    string result;
    for (const string& part : parts) {
        result += (result.empty() ? "" : between) + part;
    }
    return result;
}
