#include "oud/model/NoteNames.h"

#include "base/Rounding.h"

namespace tarabix {

std::string noteLetterName(int32_t letterIndex, int32_t nameSystem)
{
    if (letterIndex < 0)
        return {};
    if (nameSystem == kNamesWestern)
        return std::string(1, static_cast<char>('A' + (letterIndex % 7 + 2) % 7));
    if (nameSystem == kNamesSolfege) {
        static const std::array<const char*, 7> solfege = {"Do", "Re", "Mi", "Fa", "Sol", "La", "Si"};
        if (letterIndex < 7)
            return solfege[static_cast<size_t>(letterIndex)];
    }
    return {};
}

std::string accidentalSuffix(int32_t code)
{
    switch (code) {
    case kFlat: return " b";
    case kQuarterFlat: return " -";
    case kQuarterSharp: return " +";
    case kSharp: return " #";
    default: return {};
    }
}

std::string spelledNoteName(SpelledNote note, int32_t nameSystem)
{
    return noteLetterName(note.letterIndex, nameSystem) + accidentalSuffix(note.accidental);
}

std::array<SpelledNote, 12> spellTonics(int32_t firstDegreeCents, int32_t seventhToOctave)
{
    const int32_t quarters = roundHalfEvenInt(firstDegreeCents / 50.0);
    std::array<SpelledNote, 12> steps{};
    for (int32_t k = 0; k < 12; ++k) {
        SpelledNote& step = steps[static_cast<size_t>(k)];
        const bool natural = k == 0 || k == 2 || k == 4 || k == 5 || k == 7 || k == 9 || k == 11;
        if (natural) {
            step = {(k + 1) / 2, quarters};
        } else if (quarters == 0) {
            // A maqam whose seventh lies a semitone under the octave reads its black keys as flats.
            step = seventhToOctave == 1 ? SpelledNote{(k + 2) / 2, kFlat} : SpelledNote{k / 2, kSharp};
        } else if (quarters == 1) {
            step = {(k + 2) / 2, kQuarterFlat};
        } else if (quarters == -1) {
            step = {k / 2, kQuarterSharp};
        }
    }
    return steps;
}

}  // namespace tarabix
