#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "oud/model/NoteNames.h"

namespace tarabix {

inline constexpr size_t kMaqamDegrees = 7;
// Quarter-tone steps of one octave: step 2k is semitone k above C, step 2k + 1 a quarter tone higher.
inline constexpr size_t kQuarterSteps = 24;

using DegreeValues = std::array<int32_t, kMaqamDegrees>;
using StepSpelling = std::array<SpelledNote, kQuarterSteps>;

// One maqam of maqams.ini, degrees from the tonic up, in its home position.
struct MaqamRec {
    std::string name;
    DegreeValues ipc{};       // pitch class of each degree, 0 = C .. 11 = B
    DegreeValues cents{};     // shift of each degree against its pitch class, e.g. -50 a quarter tone flat
    DegreeValues centsAsc{};  // shifts of an ascending line; `cents` when the file gives none
    DegreeValues centsDes{};  // shifts of a descending line; `cents` when the file gives none
    StepSpelling stepSpelling{};  // filled when the maqam becomes current
};

// A list of exactly seven whole numbers separated by ","; each piece may carry blanks. Empty for
// any other count (a trailing comma included) or a piece that is not a number.
std::optional<DegreeValues> parseSevenNumbers(std::string_view text);

// How the 24 steps are spelled without a maqam: a natural as itself with its quarter-tone sharp
// above, a black key as the flat of the letter above with that letter's quarter-tone flat above.
StepSpelling plainStepSpelling();

// How the 24 steps are spelled in a maqam whose degrees lie on `pitchClasses` (already moved to
// the chosen tonic): a black key right above one of the degrees reads as a flat of the next
// letter, any other black key as a sharp of the letter below.
StepSpelling maqamStepSpelling(const DegreeValues& pitchClasses);

// The pitch class 0..11 of any whole number of semitones.
int32_t pitchClassOf(int64_t semitones);

}  // namespace tarabix
