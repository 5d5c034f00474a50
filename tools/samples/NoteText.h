#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarabix::samples {

inline constexpr int32_t kTicksPerQuarter = 480;

// One note or rest of a melody as a teacher writes it, e.g. "E-3/8": letter, accidental, octave
// (C4 = MIDI 60, sounding pitch) and duration.
struct MelodyNote {
    int32_t key = -1;  // MIDI note; -1 for a rest
    int32_t cents = 0;  // -50 for a quarter-flat "-", +50 for a quarter-sharp "+"
    int32_t ticks = 0;
    bool tiedToNext = false;
    bool wholeBarRest = false;
    std::string lily;  // the same note in the engraver's Italian names, e.g. "misb8"
};

// Reads a melody written as space-separated tokens:
//   C4/4   D4/8.   E-4   F#3/16   Bb3/2~   r/8   R   |
// Accidentals: "#" sharp, "b" flat, "+" quarter-sharp, "-" quarter-flat. A duration is "/" and
// 1, 2, 4, 8 or 16 with an optional dot; a note without one keeps the previous duration. "~" ties
// the note to the next one of the same pitch, "r" is a rest, "R" rests for a whole bar and "|"
// marks a bar line, which must fall on a whole bar. The text must fill whole bars of barTicks.
// Returns false with a message naming the token when the text breaks these rules.
bool parseMelody(std::string_view text, int32_t barTicks, std::vector<MelodyNote>& notes, std::string& error);

// Ticks of one bar of num/den.
int32_t barTicksOf(int32_t num, int32_t den);

}  // namespace tarabix::samples
