#pragma once

#include <algorithm>
#include <cctype>
#include <string_view>

namespace tarabix {

// The blanks the program ignores around what it reads from text (INI names and values, settings
// values, numbers in a piece's text events): space, tab, the line ends CR and LF, vertical tab
// and form feed. The same set in every locale, which std::isspace does not promise.
constexpr bool isBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\v' || c == '\f';
}

constexpr std::string_view trim(std::string_view text)
{
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

// Equal but for letter case: INI section and key names, "True" and "False", maqam names.
inline bool equalsNoCase(std::string_view a, std::string_view b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) {
        return std::tolower(static_cast<unsigned char>(x)) == std::tolower(static_cast<unsigned char>(y));
    });
}

}  // namespace tarabix
