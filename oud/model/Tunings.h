#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tarabix {

// The oud drawn on the fingerboard has at most six strings (courses).
inline constexpr int32_t kMaxStrings = 6;

// loadTunings statuses: the file gave the list, or the built-in tuning took its place.
inline constexpr int32_t kTuningsLoaded = 0;
inline constexpr int32_t kTuningsBuiltIn = 21;

struct TuningRec {
    int32_t id = 0;          // what the settings remember and the tuning list carries, not a position
    int32_t numStrings = 0;  // 1 to 6
    std::array<int32_t, kMaxStrings> stringPitch{};  // MIDI note of each open string, string 0 first
    std::array<int32_t, kMaxStrings> stringCents{};  // the file cannot set these: 0 for file tunings
    std::string name;         // Western letters, e.g. "F2 - A2 - D3 - G3 - C4 - F4"
    std::string nameSolfege;  // e.g. "Fa - La - Re - Sol - Do - Fa"
    bool operator==(const TuningRec&) const = default;
};

// The tuning used when tunings.ini cannot be used. Its pitches are all 0 and its cent offsets
// carry the numbers 0 45 50 55 60 65: that shape is kept on purpose, so a broken tunings.ini shows
// up at once as an oud whose strings all sound the lowest C.
TuningRec builtInTuning();

// One line of tunings.ini: id, Western caption, solfège caption and the open-string pitches
// separated by single blanks, the four fields joined by " :: ". Empty when the line is not a
// usable tuning: a field count other than four, an id or pitch that is not a whole number, a pitch
// outside MIDI's 0..127, no pitch or more than six.
std::optional<TuningRec> parseTuningLine(const std::string& line);

// The whole text of tunings.ini, lines ending in CR LF, "//" at the very start of a line making
// it a comment. Fills `tunings` in file order and returns kTuningsLoaded, or puts the built-in
// tuning alone in place and returns kTuningsBuiltIn when the text has no CR LF at all or no
// usable line.
int32_t parseTunings(const std::string& text, std::vector<TuningRec>& tunings);

// The caption beside the tuning octave spinner: "+0 Octave", "+2 Octaves", "-1 Octave".
std::string octaveCaption(int32_t octShift);

}  // namespace tarabix
