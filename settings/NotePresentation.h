#pragma once

#include <cstdint>

namespace tarabix {

// What the fingerboard shows in each situation: nothing, name labels or circle marks. The numbers
// are the ones the settings store keeps.
inline constexpr int32_t kPresNothing = 0;
inline constexpr int32_t kPresNames = 1;
inline constexpr int32_t kPresCircles = 2;

// How notes are shown on the fingerboard, as the learner chose it: at rest and while a note
// sounds, each with and without a maqam selected, and the naming system of every label and list
// (0 letters C D E, 1 solfège Do Re Mi: kNamesWestern and kNamesSolfege of oud/model/NoteNames.h).
// It lives here, below the model and the display, because the settings store reads and writes it
// whole; the display draws by it and the note display dialog edits it. A value outside the three
// presentations shows nothing and is kept as it is.
//
// The defaults are those of a fresh profile.
struct NotePresentation {
    int32_t restNoMaqam = kPresNames;
    int32_t restMaqam = kPresNames;
    int32_t playNoMaqam = kPresNames;
    int32_t playMaqam = kPresNames;
    int32_t nameSystem = 0;

    int32_t atRest(bool maqamSelected) const { return maqamSelected ? restMaqam : restNoMaqam; }
    int32_t whilePlaying(bool maqamSelected) const { return maqamSelected ? playMaqam : playNoMaqam; }

    bool operator==(const NotePresentation&) const = default;
};

}  // namespace tarabix
