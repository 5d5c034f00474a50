#include "settings/TextNumbers.h"

#include "base/Rounding.h"
#include "base/Text.h"

#include <algorithm>
#include <charconv>

namespace tarabix {
namespace {

// Plain decimal notation only: digits with an optional fraction, no exponent, no hex, so that a
// stored "1e9" or "0x10" is refused rather than silently read as something else.
std::optional<double> textToNumber(std::string_view text)
{
    text = trim(text);
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
    const std::string_view word = trim(text);
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
