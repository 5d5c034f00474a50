#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace tarabix {

// Conversions of stored texts (INI values, settings values) to numbers. One rule for the whole
// program: blanks around the text are ignored, a number may carry a sign and a decimal fraction,
// and a fraction is taken to the nearest integer with ties to even ("2.5" -> 2). Empty means the
// text is not a number or does not fit.
std::optional<int32_t> textToInt32(std::string_view text);

// "True"/"False" in any letter case, or a number: 0 is false, any other number true.
std::optional<bool> textToBool(std::string_view text);

}  // namespace tarabix
