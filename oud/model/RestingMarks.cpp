#include "oud/model/RestingMarks.h"

#include <algorithm>

namespace tarabix {

namespace {

constexpr int32_t kOctaves = 10;

}  // namespace

NotePitch RestingScale::degree(int32_t d) const
{
    if (!maqamSelected)
        return {d, 0};
    const size_t i = static_cast<size_t>(d);
    return {pitchClass[i], cents[i]};
}

RestingScale restingScaleOf(const mMaqams& maqams)
{
    RestingScale scale;
    scale.maqamSelected = maqams.isMaqamSelected();
    if (scale.maqamSelected) {
        scale.pitchClass = maqams.curMaqam().ipc;
        scale.cents = maqams.curMaqam().cents;
    }
    return scale;
}

std::vector<RestingMark> restingMarks(const mUdCtrl& ud, const RestingScale& scale)
{
    std::vector<RestingMark> marks;
    for (int32_t d = 0; d < scale.degreeCount(); ++d) {
        const NotePitch pitch = scale.degree(d);
        for (int32_t k = 0; k < kOctaves; ++k) {
            const int32_t note = pitch.note + 12 * k;
            if (const auto place = ud.placeOfPitch(note, pitch.cents))
                marks.push_back({d, note, pitch.cents, *place});
        }
    }
    std::stable_sort(marks.begin(), marks.end(), [](const RestingMark& a, const RestingMark& b) {
        return int64_t{100} * a.note + a.cents < int64_t{100} * b.note + b.cents;
    });
    return marks;
}

}  // namespace tarabix
