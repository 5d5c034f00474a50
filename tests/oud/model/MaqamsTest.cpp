#include "base/ReadWholeFile.h"
#include "oud/model/NoteNames.h"
#include "oud/model/mMaqams.h"
#include "tests/common/TempFolder.h"

#include <gtest/gtest.h>

#include <set>

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
    EXPECT_EQ(load("[general]\r\nname=not a maqam\r\n"
                   "[Q_Bayati]\r\nname =  Bayati \r\nipc= 2, 4 ,5,7,9,10,0\r\ncents=0,-50,0,0,0,0,0\r\ncentsAsc=\r\n"
                   "[maqam1]\r\nname=Kurd\r\n" + kRast),
              "");
    ASSERT_EQ(maqams.maqamCount(), 2);
    EXPECT_EQ(maqams.maqamName(1), "Bayati");
    EXPECT_EQ(maqams.maqamName(2), "Rast");
    EXPECT_EQ(maqams.maqamName(3), "");
    const MaqamRec& bayati = *maqams.maqamAt(1);
    EXPECT_EQ(bayati.ipc, (DegreeValues{2, 4, 5, 7, 9, 10, 0}));
    EXPECT_EQ(bayati.centsAsc, bayati.cents);  // empty copies "cents"
    EXPECT_EQ(bayati.centsDes, bayati.cents);
    EXPECT_EQ(maqams.maqamAt(2)->centsDes, (DegreeValues{0, 0, -50, 0, 0, 0, -100}));

    maqams.selectMaqam(1, 0);
    EXPECT_EQ(load("[general]\r\nx=1\r\n[q]\r\n"), "");  // sections, but no maqam: an empty list
    EXPECT_EQ(maqams.maqamCount(), 0);
    EXPECT_FALSE(maqams.isMaqamSelected());
}

TEST_F(MaqamsTest, FirstFaultIsReportedAndLeavesNoMaqam)
{
    const std::string good = "[q_ok]\r\nname=Ok\r\nipc=0,2,4,5,7,9,11\r\ncents=0,0,0,0,0,0,0\r\n";
    const std::pair<const char*, const char*> cases[] = {
        {"[Q_Bad]\r\nipc=0,2,4,5,7,9,11,0\r\ncents=0,0,0,0,0,0,0\r\n", "Error in ipc of sec. Q_Bad"},
        {"[q_bad]\r\nipc=0,2,4,5,7,9,11,\r\ncents=0,0,0,0,0,0,0\r\n", "Error in ipc of sec. q_bad"},
        {"[q_bad]\r\nipc=0,2,4,5,seven,9,11\r\ncents=0,0,0,0,0,0,0\r\n", "Error in ipc of sec. q_bad"},
        {"[q_bad]\r\ncents=0,0,0,0,0,0,0\r\n", "Error in ipc of sec. q_bad"},
        {"[q_bad]\r\nipc=0,2,4,5,7,9,11\r\ncents=0,0,0,0,0,0\r\n", "Error in centShifts of sec. q_bad"},
        {"[q_bad]\r\nipc=0,2,4,5,7,9,11\r\ncents=0,0,0,0,0,0,0\r\ncentsAsc=0\r\n", "Error in centShiftsAsc of sec. q_bad"},
        {"[q_bad]\r\nipc=0,2,4,5,7,9,11\r\ncents=0,0,0,0,0,0,0\r\ncentsDes=,,,,,,\r\n", "Error in centShiftsDes of sec. q_bad"},
        {"", "No maqams."},
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
    EXPECT_EQ(maqams.maqamTonics(1)[10], (SpelledNote{6, kFlat}));
    EXPECT_EQ(maqams.maqamTonics(2)[10], (SpelledNote{5, kSharp}));
    EXPECT_EQ(maqams.maqamTonics(3)[3], (SpelledNote{1, kQuarterSharp}));
}

TEST_F(MaqamsTest, SelectingMovesTheDegreesToTheTonicAndRespells)
{
    ASSERT_EQ(load(kRastAndBayati), "");
    maqams.selectMaqam(1, 2);  // Rast on D: every degree up two
    ASSERT_TRUE(maqams.isMaqamSelected());
    EXPECT_EQ(maqams.curMaqam().ipc, (DegreeValues{2, 4, 6, 7, 9, 11, 1}));
    EXPECT_EQ(maqams.curMaqam().cents, maqams.maqamAt(1)->cents);
    EXPECT_EQ(maqams.maqamAt(1)->ipc[0], 0);
    // C sharp and F sharp have no degree under them; E flat, A flat, B flat do.
    const std::pair<size_t, SpelledNote> blackKeys[] = {{1, {0, kSharp}}, {3, {2, kFlat}}, {6, {3, kSharp}}, {8, {5, kFlat}}, {10, {6, kFlat}}};
    for (const auto& [semitone, spelling] : blackKeys) {
        EXPECT_EQ(maqams.curMaqam().stepSpelling[2 * semitone], spelling) << semitone;
        EXPECT_EQ(maqams.curMaqam().stepSpelling[2 * semitone + 1].accidental, kQuarterFlat) << semitone;
    }
    maqams.selectMaqam(2, 11);  // Bayati on B: every degree one semitone down
    EXPECT_EQ(maqams.curMaqam().ipc, (DegreeValues{11, 1, 2, 4, 6, 7, 9}));
    for (const int32_t none : {0, -1, 4}) {
        maqams.selectMaqam(none, 0);
        EXPECT_FALSE(maqams.isMaqamSelected()) << none;
    }
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
        {60, -100, 0, 0, {6, kNatural}},
        {60, 149, 0, 0, {1, kQuarterFlat}},    // three quarter tones up
        {70, 25, 0, 0, {6, kFlat}},            // 0.5 quarter tone rounds to even: no shift
        {70, 75, 0, 0, {6, kNatural}},         // 1.5 rounds to 2: a semitone up
        {-1, 0, 0, 0, {6, kNatural}},
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
        {"Q:Rast/12", std::nullopt}, {"Q:Rast/-1", std::nullopt}, {"Q:Rast/", std::nullopt}, {"Q:Rast/x", std::nullopt},
        {"Q:Rast", std::nullopt}, {"Q:Kurd/0", std::nullopt}, {"Q: Rast/0", std::nullopt}, {"X:Rast/0", std::nullopt},
        {"Q:/0", std::nullopt}, {"Q:", std::nullopt},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(maqams.parseMaqamMarker(text), expected) << text;
    EXPECT_EQ(maqams.applyMaqamMarker("q:rast/0"), (MaqamMarker{1, 0}));
    EXPECT_EQ(maqams.curMaqamIndex(), 1);
    EXPECT_EQ(maqams.curMaqam().ipc[0], 0);
    EXPECT_FALSE(maqams.applyMaqamMarker("Q:Rast/12"));
    EXPECT_EQ(maqams.curMaqamIndex(), 1);  // an ignored marker changes nothing
}

// Names as the tonic list shows them: letters in either system, sharps or flats by the maqam's
// seventh, quarter-tone signs for a tonic off the semitones.
TEST(NoteNames, SpellTonicsChoosesSharpsFlatsAndQuarterSigns)
{
    EXPECT_EQ(noteLetterName(7, kNamesSolfege) + noteLetterName(0, 2) + noteLetterName(-1, kNamesWestern), "");
    struct Case { int32_t cents, seventhToOctave; int step; int32_t system; const char* name; };
    const Case cases[] = {
        {0, 2, 1, kNamesWestern, "C #"}, {0, 2, 1, kNamesSolfege, "Do #"},
        {0, 2, 10, kNamesWestern, "A #"}, {0, 2, 0, kNamesWestern, "C"}, {0, 2, 11, kNamesSolfege, "Si"},
        {0, 1, 10, kNamesWestern, "B b"}, {0, 1, 10, kNamesSolfege, "Si b"}, {0, 1, 1, kNamesWestern, "D b"},
        {50, 2, 3, kNamesWestern, "E -"}, {50, 2, 4, kNamesSolfege, "Mi +"}, {-50, 2, 7, kNamesWestern, "G -"},
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

// Degrees as cents above the tonic must rise in steps a learner can play, and stay in the octave.
void expectPlayableLine(const MaqamRec& rec, const DegreeValues& cents, int32_t lowestShift)
{
    int32_t previous = 0;
    for (size_t i = 0; i <= kMaqamDegrees; ++i) {
        const size_t d = i % kMaqamDegrees;
        EXPECT_TRUE(rec.ipc[d] >= 0 && rec.ipc[d] <= 11 && cents[d] >= lowestShift && cents[d] <= 50) << "degree " << d + 1;
        const int32_t above = i == kMaqamDegrees ? 1200 : pitchClassOf(int64_t{rec.ipc[d]} - rec.ipc[0]) * 100 + cents[d] - cents[0];
        if (i > 0) {
            EXPECT_TRUE(above - previous >= 100 && above - previous <= 300) << "step to degree " << d + 1 << ": " << above - previous;
        }
        previous = above;
    }
}

TEST_F(MaqamsTest, ShippedMaqamsLoadAndAreSound)
{
    const std::string path = TARABIX_SOURCE_DIR "/data/maqams.ini";
    std::string bytes;
    ASSERT_EQ(readWholeFile(path, bytes), 0);
    for (size_t lf = bytes.find('\n'); lf != std::string::npos; lf = bytes.find('\n', lf + 1))
        ASSERT_TRUE(lf > 0 && bytes[lf - 1] == '\r') << "bare line feed at byte " << lf;

    ASSERT_EQ(maqams.loadMaqams(path), "");
    ASSERT_GE(maqams.maqamCount(), 25);
    std::set<std::string> names;
    for (int32_t index = 1; index <= maqams.maqamCount(); ++index) {
        const MaqamRec& rec = *maqams.maqamAt(index);
        SCOPED_TRACE(rec.name);
        EXPECT_TRUE(names.insert(rec.name).second) << "name used twice";
        expectPlayableLine(rec, rec.centsAsc, -50);
        expectPlayableLine(rec, rec.centsDes, -100);  // a descending line may lower a half-flat degree to the flat
        EXPECT_EQ(maqams.parseMaqamMarker("Q:" + rec.name + "/" + std::to_string(rec.ipc[0])), (MaqamMarker{index, rec.ipc[0]}));
    }
}

}  // namespace
}  // namespace tarabix
