#include "oud/model/NoteNames.h"

#include <gtest/gtest.h>

namespace tarabix {
namespace {

TEST(NoteNames, LetterNamesInBothSystems)
{
    struct Case { int32_t index, system; const char* name; };
    const Case cases[] = {
        {0, kNamesWestern, "C"}, {5, kNamesWestern, "A"}, {6, kNamesWestern, "B"},
        {7, kNamesWestern, "C"}, {13, kNamesWestern, "B"},
        {0, kNamesSolfege, "Do"}, {4, kNamesSolfege, "Sol"}, {6, kNamesSolfege, "Si"},
        {7, kNamesSolfege, ""}, {0, 2, ""}, {0, -1, ""}, {-1, kNamesWestern, ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "index " << c.index << " system " << c.system);
        EXPECT_EQ(noteLetterName(c.index, c.system), c.name);
    }
}

TEST(NoteNames, AccidentalSuffixes)
{
    EXPECT_EQ(accidentalSuffix(-2), " b");
    EXPECT_EQ(accidentalSuffix(-1), " -");
    EXPECT_EQ(accidentalSuffix(0), "");
    EXPECT_EQ(accidentalSuffix(1), " +");
    EXPECT_EQ(accidentalSuffix(2), " #");
    EXPECT_EQ(accidentalSuffix(3), "");
    EXPECT_EQ(accidentalSuffix(-3), "");
}

std::string spelled(int32_t cents, int32_t seventhToOctave, int step, int32_t system)
{
    return spelledNoteName(spellTonics(cents, seventhToOctave)[static_cast<size_t>(step)], system);
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
        SCOPED_TRACE(testing::Message() << "cents " << c.cents << " interval " << c.seventhToOctave
                                        << " step " << c.step);
        EXPECT_EQ(spelled(c.cents, c.seventhToOctave, c.step, c.system), c.name);
    }
}

}  // namespace
}  // namespace tarabix
