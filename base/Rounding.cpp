#include "base/Rounding.h"

namespace tarabix {

int32_t roundHalfEvenInt(double value)
{
    if (auto r = roundHalfEvenToInt32(value))
        return *r;
    if (std::isnan(value))
        return 0;
    return value < 0 ? std::numeric_limits<int32_t>::min() : std::numeric_limits<int32_t>::max();
}

}  // namespace tarabix
