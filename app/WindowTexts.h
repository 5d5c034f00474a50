#pragma once

#include <QString>

#include <cstdint>

namespace tarabix {

// A piece time as the time labels show it: minutes with three digits, seconds with two, the
// milliseconds rounded to whole seconds halves to even ("001:15" for 75 400 ms).
QString pieceTimeText(int32_t ms);

// The file label: "[ name ]" with the name after the last '/' or '\', cut to 15 characters and
// "..." when longer than 16.
QString fileLabelText(const QString& path);
QString noFileLabelText();

// The position slider's last second for a piece of `lengthMs`, rounded halves to even.
int32_t positionRangeSeconds(int32_t lengthMs);

// The speed slider: each step multiplies the speed by the square root of 2, 0 is normal speed.
float speedRatioForSlider(int value);
// The slider value whose speed lies nearest the ratio (on the slider's logarithmic scale).
int sliderValueForSpeedRatio(float ratio);

}  // namespace tarabix
