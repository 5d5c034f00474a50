#include "midi/MidiBytes.h"

#include "base/Rounding.h"

#include <cmath>

namespace tarabix {

int32_t centsToWheel(double cents)
{
    if (std::isnan(cents))
        return kWheelCentre;
    const double wheel = roundHalfEven(cents * kWheelStepsPer100Cents / 100 + kWheelCentre);
    if (wheel <= 0)
        return 0;
    if (wheel >= kWheelMax)
        return kWheelMax;
    return static_cast<int32_t>(wheel);
}

int32_t wheelToCents(int32_t wheel)
{
    return roundHalfEvenInt((static_cast<double>(wheel) - kWheelCentre) * 100 / kWheelStepsPer100Cents);
}

}  // namespace tarabix
