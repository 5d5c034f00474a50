#include "base/Rounding.h"

#include <cmath>
#include <limits>

namespace tarabix {

double roundHalfEven(double value)
{
    const double away = std::round(value);  // halves away from zero
    if (std::fabs(value - std::trunc(value)) != 0.5)
        return away;
    return 2.0 * std::round(value / 2.0);
}

std::optional<int32_t> roundHalfEvenToInt32(double value)
{
    const double r = roundHalfEven(value);
    if (!(r >= static_cast<double>(std::numeric_limits<int32_t>::min()) &&
          r <= static_cast<double>(std::numeric_limits<int32_t>::max())))
        return std::nullopt;
    return static_cast<int32_t>(r);
}

int32_t roundHalfEvenInt(double value)
{
    if (auto r = roundHalfEvenToInt32(value))
        return *r;
    if (std::isnan(value))
        return 0;
    return value < 0 ? std::numeric_limits<int32_t>::min() : std::numeric_limits<int32_t>::max();
}

}  // namespace tarabix
