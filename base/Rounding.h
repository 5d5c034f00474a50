#pragma once

#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>

namespace tarabix {

// The one rounding rule of the program: to the nearest integer, halves to the even neighbour
// (2.5 -> 2, 3.5 -> 4, -2.5 -> -2). Independent of the floating-point environment's mode. Inline:
// timing a piece rounds once per event.
inline double roundHalfEven(double value)
{
    const double away = std::round(value);  // halves away from zero
    if (std::fabs(away - value) != 0.5)
        return away;
    return 2.0 * std::round(value / 2.0);
}

// The same, taken to a 32-bit integer; empty when the result does not fit (or is not a number),
// which callers report as an overflow.
inline std::optional<int32_t> roundHalfEvenToInt32(double value)
{
    const double r = roundHalfEven(value);
    if (!(r >= static_cast<double>(std::numeric_limits<int32_t>::min()) &&
          r <= static_cast<double>(std::numeric_limits<int32_t>::max())))
        return std::nullopt;
    return static_cast<int32_t>(r);
}

// For values that fit by construction (pixel coordinates, cents, wheel values): rounds and
// saturates at the int32 limits rather than invoking undefined conversion.
int32_t roundHalfEvenInt(double value);

}  // namespace tarabix
