#include "oud/model/NoteNames.h"

#include <gtest/gtest.h>

namespace tarabix {
namespace {

TEST(NoteNames, LetterNamesInBothSystems)
{
    struct Case { int32_t index, system; const char* name; };
    const Case cases[] = {{0, kNamesWestern, "C"}, {5, kNamesWestern, "A"}, {6, kNamesWestern, "B"}, {7, kNamesWestern, "C"},
        {13, kNamesWestern, "B"}, {0, kNamesSolfege, "Do"}, {4, kNamesSolfege, "Sol"}, {6, kNamesSolfege, "Si"},
        {7, kNamesSolfege, ""}, {0, 2, ""}, {0, -1, ""}, {-1, kNamesWestern, ""}};
    for (const Case& c : cases)
        EXPECT_EQ(noteLetterName(c.index, c.system), c.name) << "index " << c.index << " system " << c.system;
}

TEST(NoteNames, AccidentalSuffixes)
{
    const std::pair<int32_t, const char*> cases[] = {{-2, " b"}, {-1, " -"}, {0, ""}, {1, " +"}, {2, " #"}, {3, ""}, {-3, ""}};
    for (const auto& [code, suffix] : cases)
        EXPECT_EQ(accidentalSuffix(code), suffix) << code;
}

TEST(NoteNames, SpellTonicsChoosesSharpsFlatsAndQuarterSigns)
{
    struct Case { int32_t cents, seventhToOctave; int step; int32_t system; const char* name; };
    const Case cases[] = {
        {0, 2, 1, kNamesWestern, "C #"}, {0, 2, 1, kNamesSolfege, "Do #"},
        {0, 2, 10, kNamesWestern, "A #"}, {0, 2, 0, kNamesWestern, "C"}, {0, 2, 11, kNamesWestern, "B"},
        {0, 1, 10, kNamesWestern, "B b"}, {0, 1, 10, kNamesSolfege, "Si b"}, {0, 1, 1, kNamesWestern, "D b"},
        {50, 2, 3, kNamesWestern, "E -"}, {50, 2, 3, kNamesSolfege, "Mi -"}, {50, 2, 4, kNamesSolfege, "Mi +"},
        {-50, 2, 6, kNamesWestern, "F +"}, {-50, 2, 7, kNamesWestern, "G -"},
        // Halfway between quarter-tone counts the even count wins: 25 -> 0, 75 -> 2; 70 -> 1.
        {25, 2, 1, kNamesWestern, "C #"}, {70, 2, 3, kNamesWestern, "E -"},
        // Two or more quarter tones: the naturals carry the count as their code, the black keys
        // stay unspelled (letter C, natural).
        {75, 2, 2, kNamesWestern, "D #"}, {75, 2, 3, kNamesWestern, "C"},
        {150, 2, 2, kNamesWestern, "D"}, {-100, 1, 10, kNamesWestern, "C"},
    };
    for (const Case& c : cases) {
        const SpelledNote note = spellTonics(c.cents, c.seventhToOctave)[static_cast<size_t>(c.step)];
        EXPECT_EQ(spelledNoteName(note, c.system), c.name) << "cents " << c.cents << " interval " << c.seventhToOctave << " step " << c.step;
    }
}

}  // namespace
}  // namespace tarabix
