#include "settings/TextNumbers.h"

#include "base/Rounding.h"

#include <algorithm>
#include <cctype>
#include <charconv>

namespace tarabix {
namespace {

std::string_view trimBlanks(std::string_view text)
{
    const auto blank = [](char c) { return c == ' ' || c == '\t'; };
    while (!text.empty() && blank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && blank(text.back()))
        text.remove_suffix(1);
    return text;
}

// Plain decimal notation only: digits with an optional fraction, no exponent, no hex, so that a
// stored "1e9" or "0x10" is refused rather than silently read as something else.
std::optional<double> textToNumber(std::string_view text)
{
    text = trimBlanks(text);
    const bool negative = !text.empty() && text.front() == '-';
    if (!text.empty() && (text.front() == '-' || text.front() == '+'))
        text.remove_prefix(1);
    const auto digit = [](char c) { return c >= '0' && c <= '9'; };
    const bool plain = std::any_of(text.begin(), text.end(), digit)
                       && std::all_of(text.begin(), text.end(), [&](char c) { return digit(c) || c == '.'; })
                       && std::count(text.begin(), text.end(), '.') <= 1;
    if (!plain)
        return std::nullopt;
    double value = 0.0;
    const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value,
                                           std::chars_format::fixed);
    if (ec != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return negative ? -value : value;
}

bool equalsNoCase(std::string_view a, std::string_view b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) {
        return std::tolower(static_cast<unsigned char>(x)) == std::tolower(static_cast<unsigned char>(y));
    });
}

}  // namespace

std::optional<int32_t> textToInt32(std::string_view text)
{
    const auto number = textToNumber(text);
    if (!number)
        return std::nullopt;
    return roundHalfEvenToInt32(*number);
}

std::optional<bool> textToBool(std::string_view text)
{
    const std::string_view word = trimBlanks(text);
    if (equalsNoCase(word, "true"))
        return true;
    if (equalsNoCase(word, "false"))
        return false;
    const auto number = textToNumber(word);
    if (!number)
        return std::nullopt;
    return *number != 0.0;
}

}  // namespace tarabix
