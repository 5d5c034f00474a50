#include "oud/model/FingerboardGeometry.h"

#include <algorithm>
#include <cmath>

#include "base/Rounding.h"

namespace tarabix {

PicPoint orientPoint(PicPoint p, int32_t orientation)
{
    if (orientation & kFlipVertical)
        p.y = kPictureHeight - 1 - p.y;
    if (orientation & kFlipHorizontal)
        p.x = kPictureWidth - 1 - p.x;
    return p;
}

void normalizePitch(int32_t& note, int32_t& cents)
{
    // Wide arithmetic: any pair of 32-bit values comes out without overflow on the way.
    int64_t n = note;
    int64_t c = cents;
    if (c >= 100) {
        n += c / 100;
        c %= 100;
    } else if (c < 0) {
        n += -1 + c / 100;
        c = 100 - (-c) % 100;
        if (c == 100) {
            ++n;
            c = 0;
        }
    }
    note = static_cast<int32_t>(std::clamp<int64_t>(n, INT32_MIN, INT32_MAX));
    cents = static_cast<int32_t>(c);
}

double stopFraction(double quarterTones)
{
    return 1.0 - 1.0 / std::pow(2.0, quarterTones / 24.0);
}

PicPoint stopPoint(PicPoint nut, PicPoint end, double quarterTones)
{
    if (quarterTones == 0)
        return nut;
    if (quarterTones == kZoneQuarterTones)
        return end;
    const double along = stopFraction(quarterTones) / zoneLength();
    return {roundHalfEvenInt(along * (end.x - nut.x) + nut.x), roundHalfEvenInt(along * (end.y - nut.y) + nut.y)};
}

double zoneLength()
{
    return 1.0 - 1.0 / std::pow(2.0, 7.0 / 12.0);
}

std::optional<int32_t> centsAtZoneFraction(double t)
{
    // The zone length to nine places: plenty for the pitch of a click.
    const double remaining = 1.0 - 0.332580073 * t;
    if (!(remaining > 0.0))
        return std::nullopt;
    return roundHalfEvenInt(1200.0 * std::log(1.0 / remaining) / std::log(2.0));
}

}  // namespace tarabix
