#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "oud/model/mMaqams.h"
#include "oud/model/mUdCtrl.h"

namespace tarabix {

// The scale shown at rest: the seven degrees of the selected maqam (pitch classes already moved to
// the tonic, with each degree's shift in cents), or the twelve semitones when none is selected.
struct RestingScale {
    bool maqamSelected = false;
    std::array<int32_t, 7> pitchClass{};
    std::array<int32_t, 7> cents{};

    int32_t degreeCount() const { return maqamSelected ? 7 : 12; }
    // Degree d (0 .. degreeCount()-1) as a pitch class 0..11 and its shift in cents.
    NotePitch degree(int32_t d) const;
};

// The resting scale of the maqam current in `maqams` (the twelve semitones when none is).
RestingScale restingScaleOf(const mMaqams& maqams);

// One mark of the resting fingerboard: the scale degree it shows, its pitch and its place.
struct RestingMark {
    int32_t degree = 0;
    int32_t note = 0;
    int32_t cents = 0;
    PitchPlace place;
};

// Every mark the resting fingerboard shows for `scale`: each degree in MIDI octaves 0 to 9, where it
// lies on the fingerboard, lowest pitch first.
std::vector<RestingMark> restingMarks(const mUdCtrl& ud, const RestingScale& scale);

}  // namespace tarabix
