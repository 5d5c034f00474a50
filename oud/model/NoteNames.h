#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace tarabix {

// Naming systems of the note names (the "NoteNamesType" setting). Any other value names nothing.
inline constexpr int32_t kNamesWestern = 0;
inline constexpr int32_t kNamesSolfege = 1;

// Accidental codes of a spelled note.
inline constexpr int32_t kFlat = -2;
inline constexpr int32_t kQuarterFlat = -1;
inline constexpr int32_t kNatural = 0;
inline constexpr int32_t kQuarterSharp = 1;
inline constexpr int32_t kSharp = 2;

// A note spelled as a letter (0 to 6: C D E F G A B) plus an accidental code.
struct SpelledNote {
    int32_t letterIndex = 0;
    int32_t accidental = kNatural;
    bool operator==(const SpelledNote&) const = default;
};

// "C".."B" in Western letters (an index of 7 or more wraps round to "C" again), "Do".."Si" in
// solfège (7 or more names nothing). A negative index names nothing in either system.
std::string noteLetterName(int32_t letterIndex, int32_t nameSystem);

// " b", " -", "", " +", " #" for -2..+2; nothing for any other code.
std::string accidentalSuffix(int32_t code);

// The letter name immediately followed by the accidental suffix, e.g. "Re -", "F #".
std::string spelledNoteName(SpelledNote note, int32_t nameSystem);

// The spelling of the twelve semitone steps above C for a maqam's tonic list. The first degree's
// shift (in cents) decides whether the steps carry quarter-tone signs; the interval from the
// seventh degree up to the octave decides between sharps and flats for plain maqams.
std::array<SpelledNote, 12> spellTonics(int32_t firstDegreeCents, int32_t seventhToOctave);

}  // namespace tarabix
