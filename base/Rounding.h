#pragma once

#include <cstdint>
#include <optional>

namespace tarabix {

// The one rounding rule of the program: to the nearest integer, halves to the even neighbour
// (2.5 -> 2, 3.5 -> 4, -2.5 -> -2). Independent of the floating-point environment's mode.
double roundHalfEven(double value);

// The same, taken to a 32-bit integer; empty when the result does not fit (or is not a number),
// which callers report as an overflow.
std::optional<int32_t> roundHalfEvenToInt32(double value);

// For values that fit by construction (pixel coordinates, cents, wheel values): rounds and
// saturates at the int32 limits rather than invoking undefined conversion.
int32_t roundHalfEvenInt(double value);

}  // namespace tarabix
