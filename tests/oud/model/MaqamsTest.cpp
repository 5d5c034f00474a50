#include "oud/model/NoteNames.h"
#include "oud/model/mMaqams.h"
#include "tests/common/TempFolder.h"

#include <gtest/gtest.h>

#include <optional>
#include <tuple>

namespace tarabix {
namespace {

// maqams.ini texts written to a file of their own per test.
class MaqamsTest : public ::testing::Test {
protected:
    std::string load(const std::string& text) { return maqams.loadMaqams(m_dir.write("maqams.ini", text)); }

    mMaqams maqams;
    test::TempFolder m_dir{std::string("maqams_") + ::testing::UnitTest::GetInstance()->current_test_info()->name()};
};

const std::string kRast = "[q_rast]\r\nname=Rast\r\nipc=0,2,4,5,7,9,11\r\ncents=0,0,-50,0,0,0,-50\r\ncentsDes=0,0,-50,0,0,0,-100\r\n";
const std::string kRastAndBayati = kRast
    + "[q_bayati]\r\nname=Bayati\r\nipc=2,4,5,7,9,10,0\r\ncents=0,-50,0,0,0,0,0\r\n"
      "[q_sikah]\r\nname=Sikah\r\nipc=4,5,7,9,11,0,2\r\ncents=-50,0,0,0,-50,0,0\r\n";

TEST_F(MaqamsTest, OnlyQSectionsAreMaqamsInFileOrder)
{
    EXPECT_EQ(load("[general]\r\nname=not a maqam\r\n[Q_Bayati]\r\nname =  Bayati \r\nipc= 2, 4 ,5,7,9,10,0\r\ncents=0,-50,0,0,0,0,0\r\n"
                   "centsAsc=\r\n[maqam1]\r\nname=Kurd\r\n" + kRast), "");
    ASSERT_EQ(maqams.maqamCount(), 2);
    EXPECT_EQ(maqams.maqamName(1) + "," + maqams.maqamName(2) + "," + maqams.maqamName(3), "Bayati,Rast,");
    const MaqamRec& bayati = *maqams.maqamAt(1);
    EXPECT_EQ(bayati.ipc, (DegreeValues{2, 4, 5, 7, 9, 10, 0}));
    EXPECT_TRUE(bayati.centsAsc == bayati.cents && bayati.centsDes == bayati.cents);  // empty or absent copies "cents"
    EXPECT_EQ(maqams.maqamAt(2)->centsDes, (DegreeValues{0, 0, -50, 0, 0, 0, -100}));

    maqams.selectMaqam(1, 0);
    EXPECT_EQ(load("[general]\r\nx=1\r\n[q]\r\n"), "");  // sections, but no maqam: an empty list
    EXPECT_FALSE(maqams.maqamCount() != 0 || maqams.isMaqamSelected());
}

TEST_F(MaqamsTest, FirstFaultIsReportedAndLeavesNoMaqam)
{
    const std::string good = "[q_ok]\r\nname=Ok\r\nipc=0,2,4,5,7,9,11\r\ncents=0,0,0,0,0,0,0\r\n";
    const std::pair<const char*, const char*> cases[] = {
        {"[Q_Bad]\r\nipc=0,2,4,5,7,9,11,0\r\ncents=0,0,0,0,0,0,0\r\n", "Error in ipc of sec. Q_Bad"},
        {"[q_bad]\r\nipc=0,2,4,5,seven,9,11\r\ncents=0,0,0,0,0,0,0\r\n", "Error in ipc of sec. q_bad"},
        {"[q_bad]\r\nipc=0,2,4,5,7,9,11\r\ncents=0,0,0,0,0,0\r\n", "Error in centShifts of sec. q_bad"},
        {"[q_bad]\r\nipc=0,2,4,5,7,9,11\r\ncents=0,0,0,0,0,0,0\r\ncentsDes=,,,,,,\r\n", "Error in centShiftsDes of sec. q_bad"},
        {"; only a comment\r\nname=Rast\r\n", "No maqams."},
    };
    for (const auto& [section, expected] : cases) {
        SCOPED_TRACE(section);
        EXPECT_EQ(load(std::string(section).find('[') == std::string::npos ? section : good + section + good), expected);
        EXPECT_EQ(maqams.maqamCount(), 0);
    }
    EXPECT_EQ(maqams.loadMaqams(m_dir.path("absent.ini")), "No maqams.");
}

TEST_F(MaqamsTest, HomeTonicAndTonicSpellings)
{
    ASSERT_EQ(load(kRastAndBayati), "");
    EXPECT_EQ(maqams.maqamHomeTonic(3), (MaqamTonic{4, -1}));
    // Rast's seventh is a semitone under the octave: flats; Bayati's is a whole tone: sharps;
    // Sikah's tonic is a quarter tone low: quarter-tone signs.
    EXPECT_EQ(std::make_tuple(maqams.maqamTonics(1)[10], maqams.maqamTonics(2)[10], maqams.maqamTonics(3)[3]),
              std::make_tuple(SpelledNote{6, kFlat}, SpelledNote{5, kSharp}, SpelledNote{1, kQuarterSharp}));
}

TEST_F(MaqamsTest, SelectingMovesTheDegreesToTheTonicAndRespells)
{
    ASSERT_EQ(load(kRastAndBayati), "");
    maqams.selectMaqam(1, 2);  // Rast on D: every degree up two
    ASSERT_TRUE(maqams.isMaqamSelected());
    EXPECT_EQ(maqams.curMaqam().ipc, (DegreeValues{2, 4, 6, 7, 9, 11, 1}));
    EXPECT_TRUE(maqams.curMaqam().cents == maqams.maqamAt(1)->cents && maqams.maqamAt(1)->ipc[0] == 0);  // the list keeps C
    // C sharp has no degree under it, E flat has; the quarter tone above either is a half-flat.
    const auto& steps = maqams.curMaqam().stepSpelling;
    EXPECT_EQ(std::make_tuple(steps[2], steps[6], steps[3].accidental), std::make_tuple(SpelledNote{0, kSharp}, SpelledNote{2, kFlat}, kQuarterFlat));
    maqams.selectMaqam(2, 11);  // Bayati on B: every degree one semitone down
    EXPECT_EQ(maqams.curMaqam().ipc, (DegreeValues{11, 1, 2, 4, 6, 7, 9}));
    maqams.selectMaqam(4, 0);
    EXPECT_FALSE(maqams.isMaqamSelected());
}

TEST_F(MaqamsTest, SpellPitchFindsTheQuarterToneStep)
{
    ASSERT_EQ(load(kRastAndBayati), "");
    struct Case { int32_t note, cents, maqam, tonic; SpelledNote expected; };
    const Case cases[] = {
        {64, -50, 0, 0, {2, kQuarterFlat}},    // step 7: between D sharp and E
        {64, 50, 0, 0, {2, kQuarterSharp}},    // step 9: above E
        {61, 0, 0, 0, {1, kFlat}},             // no maqam: black keys are flats
        {61, 0, 1, 2, {0, kSharp}},            // Rast on D: C sharp
        {60, -50, 0, 0, {6, kQuarterSharp}},   // step 23: wraps below C
        {60, 149, 0, 0, {1, kQuarterFlat}},    // three quarter tones up
        {70, 25, 0, 0, {6, kFlat}},            // 0.5 quarter tone rounds to even: no shift
        {70, 75, 0, 0, {6, kNatural}},         // 1.5 rounds to 2: a semitone up
    };
    for (const Case& c : cases) {
        maqams.selectMaqam(c.maqam, c.tonic);
        EXPECT_EQ(maqams.spellPitch(c.note, c.cents), c.expected) << c.note << " " << c.cents << " maqam " << c.maqam;
    }
}

TEST_F(MaqamsTest, MarkersNameAMaqamAndATonic)
{
    ASSERT_EQ(load(kRastAndBayati), "");
    const std::pair<const char*, std::optional<MaqamMarker>> cases[] = {
        {"q:rast/0", MaqamMarker{1, 0}}, {"Q:BAYATI/11", MaqamMarker{2, 11}}, {"Q:Sikah/ 4", MaqamMarker{3, 4}},
        {"Q:Rast/12", std::nullopt}, {"Q:Rast/-1", std::nullopt}, {"Q:Rast/", std::nullopt}, {"Q:Rast", std::nullopt},
        {"Q:Kurd/0", std::nullopt}, {"Q: Rast/0", std::nullopt}, {"X:Rast/0", std::nullopt}, {"Q:/0", std::nullopt},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(maqams.parseMaqamMarker(text), expected) << text;
    EXPECT_EQ(maqams.applyMaqamMarker("q:bayati/0"), (MaqamMarker{2, 0}));
    EXPECT_FALSE(maqams.applyMaqamMarker("Q:Rast/12"));
    EXPECT_EQ(std::make_pair(maqams.curMaqamIndex(), maqams.curMaqam().ipc[0]), std::make_pair(2, 0));  // an ignored marker changes nothing
}

// Names as the tonic list shows them: letters in either system, sharps or flats by the maqam's
// seventh, quarter-tone signs for a tonic off the semitones. Halfway between quarter-tone counts
// the even count wins (25 -> 0, 75 -> 2, 70 -> 1); two or more quarter tones leave a black key
// unspelled (letter C, natural).
TEST(NoteNames, SpellTonicsChoosesSharpsFlatsAndQuarterSigns)
{
    EXPECT_EQ(noteLetterName(7, kNamesSolfege) + noteLetterName(0, 2) + noteLetterName(-1, kNamesWestern), "");
    const std::tuple<int32_t, int32_t, size_t, int32_t, const char*> cases[] = {  // cents, seventh to octave, step
        {0, 2, 1, kNamesSolfege, "Do #"}, {0, 1, 10, kNamesWestern, "B b"}, {50, 2, 4, kNamesSolfege, "Mi +"},
        {25, 2, 1, kNamesWestern, "C #"}, {70, 2, 3, kNamesWestern, "E -"}, {75, 2, 2, kNamesWestern, "D #"}, {75, 2, 3, kNamesWestern, "C"}};
    for (const auto& [cents, seventh, step, system, name] : cases)
        EXPECT_EQ(spelledNoteName(spellTonics(cents, seventh)[step], system), name) << cents << " " << seventh << " " << step;
}

}  // namespace
}  // namespace tarabix
