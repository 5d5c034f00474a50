#include "app/SpeedPercentBox.h"

#include <algorithm>

namespace tarabix {

SpeedPercentBox::SpeedPercentBox(QWidget* parent) : QSpinBox(parent)
{
    setRange(kMinPercent, kMaxPercent);
    setSingleStep(kStepPercent);
    setValue(100);
    setSuffix(QStringLiteral(" %"));
    setAccelerated(true);
    setToolTip(tr("Speed in percent of the written tempo"));
}

void SpeedPercentBox::stepBy(int steps)
{
    const int v = value();
    const int below = v - v % kStepPercent;  // the multiple of 5 at or under the value
    int target = below + steps * kStepPercent;
    if (steps < 0 && below != v)
        target += kStepPercent;  // from 71 down is 70, not 65
    setValue(std::clamp(target, kMinPercent, kMaxPercent));
}

}  // namespace tarabix
