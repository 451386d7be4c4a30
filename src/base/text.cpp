#include "base/text.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "base/end_process.h"
#include "base/output.h"

namespace {

constexpr std::size_t number_width = 8192;

}  // namespace

char* cleanString(char* text) {
    for (char* c = text; *c != '\0'; ++c) {
        if (*c == '"' || *c == '\t' || *c == '\n') {
            *c = ' ';
        }
    }
    for (std::size_t length = std::strlen(text); length > 0 && text[length - 1] == ' '; --length) {
        text[length - 1] = '\0';
    }
    return text + std::strspn(text, " ");
}

int string2int(char* text, int base) {
    std::size_t length = std::strlen(text);
    while (length > 0 && (text[length - 1] == '\n' || text[length - 1] == ' ')) {
        text[--length] = '\0';
    }
    if (length == 0 || length >= number_width) {
        return -1;
    }
    const char* sign = text + std::strspn(text, " ");
    const bool negative = *sign == '-';
    const char* digits = negative ? sign + 1 : text;

    char* end = nullptr;
    errno = 0;
    const std::uint64_t value = std::strtoull(digits, &end, base);
    if (errno != 0) {
        print_error("strtoul: %s\n", std::strerror(errno));
        // Another meaning of the same number.
        end_process(RET_NOT_CTRL_WIDE_IDENTICAL);
    }
    if (*end != '\0') {
        return -1;
    }
    const auto low = static_cast<std::uint32_t>(value);
    return static_cast<std::int32_t>(negative ? 0U - low : low);
}

int number_of(std::string_view text, int base) {
    if (text.size() >= number_width) {
        return -1;
    }
    char copy[number_width];
    set_text(copy, text);
    return string2int(copy, base);
}

void set_text(std::span<char> field, std::string_view value) {
    const std::size_t length = std::min(value.size(), field.size() - 1);
    std::copy_n(value.begin(), length, field.begin());
    field[length] = '\0';
}

bool append_text(std::span<char> field, std::string_view value) {
    const std::size_t length = std::strlen(field.data());
    if (length + value.size() >= field.size()) {
        return false;
    }
    set_text(field.subspan(length), value);
    return true;
}

std::string fill_places(std::string_view format, std::span<const std::string_view> values) {
    std::string text;
    for (const std::string_view value : values) {
        const std::size_t place = format.find("%s");
        text.append(format.substr(0, place)).append(value);
        format.remove_prefix(place + 2);
    }
    return text.append(format);
}

std::optional<std::string_view> next_part(std::string_view& rest, char separator) {
    const std::size_t start = rest.find_first_not_of(separator);
    if (start == std::string_view::npos) {
        rest = {};
        return std::nullopt;
    }
    rest.remove_prefix(start);
    const std::size_t length = std::min(rest.find(separator), rest.size());
    const std::string_view part = rest.substr(0, length);
    rest.remove_prefix(length);
    return part;
}

bool holds_blank(std::string_view value) {
    return value.find_first_of(" \t") != std::string_view::npos;
}

bool is_blank(std::string_view value) {
    return value.find_first_not_of(' ') == std::string_view::npos;
}
