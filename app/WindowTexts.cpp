#include "app/WindowTexts.h"

#include "base/Rounding.h"

#include <cmath>

namespace tarabix {

QString pieceTimeText(int32_t ms)
{
    const int32_t secs = roundHalfEvenInt(ms / 1000.0);
    const int32_t minutes = secs / 60;
    const int32_t seconds = secs - minutes * 60;
    return QStringLiteral("%1:%2").arg(minutes, 3, 10, QLatin1Char('0')).arg(seconds, 2, 10, QLatin1Char('0'));
}

QString fileLabelText(const QString& path)
{
    const qsizetype cut = std::max(path.lastIndexOf(QLatin1Char('/')), path.lastIndexOf(QLatin1Char('\\')));
    QString name = path.mid(cut + 1);
    if (name.size() > 16)
        name = name.left(15) + QStringLiteral("...");
    return QStringLiteral("[ ") + name + QStringLiteral(" ]");
}

QString noFileLabelText()
{
    return QStringLiteral("[No file is opened]");
}

int32_t positionRangeSeconds(int32_t lengthMs)
{
    return roundHalfEvenInt(lengthMs / 1000.0);
}

float speedRatioForSlider(int value)
{
    return static_cast<float>(std::pow(2.0, value / 2.0));
}

int sliderValueForSpeedRatio(float ratio)
{
    return static_cast<int>(std::lround(2.0 * std::log2(static_cast<double>(ratio))));
}

}  // namespace tarabix
