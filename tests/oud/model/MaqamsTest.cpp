#include "oud/model/mMaqams.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>

#include <unistd.h>

namespace tarabix {
namespace {

// maqams.ini texts written to a file of their own per test.
class MaqamsTest : public ::testing::Test {
protected:
    MaqamsTest()
        : m_dir(std::filesystem::temp_directory_path()
                / ("tarabix_maqams_" + std::string(::testing::UnitTest::GetInstance()->current_test_info()->name())
                   + "_" + std::to_string(::getpid())))
    {
        std::filesystem::create_directories(m_dir);
    }
    ~MaqamsTest() override { std::filesystem::remove_all(m_dir); }

    std::string load(const std::string& text)
    {
        const auto path = m_dir / "maqams.ini";
        std::ofstream(path, std::ios::binary) << text;
        return maqams.loadMaqams(path.string());
    }

    mMaqams maqams;
    std::filesystem::path m_dir;
};

const char* const kRastAndBayati =
    "[q_rast]\r\nname=Rast\r\nipc=0,2,4,5,7,9,11\r\ncents=0,0,-50,0,0,0,-50\r\n"
    "centsDes=0,0,-50,0,0,0,-100\r\n"
    "[q_bayati]\r\nname=Bayati\r\nipc=2,4,5,7,9,10,0\r\ncents=0,-50,0,0,0,0,0\r\n"
    "[q_sikah]\r\nname=Sikah\r\nipc=4,5,7,9,11,0,2\r\ncents=-50,0,0,0,-50,0,0\r\n";

TEST_F(MaqamsTest, OnlyQSectionsAreMaqamsInFileOrder)
{
    EXPECT_EQ(load("[general]\r\nname=not a maqam\r\n"
                   "[Q_Bayati]\r\nname =  Bayati \r\nipc= 2, 4 ,5,7,9,10,0\r\ncents=0,-50,0,0,0,0,0\r\ncentsAsc=\r\n"
                   "[maqam1]\r\nname=Kurd\r\n"
                   "[q_rast]\r\nname=Rast\r\nipc=0,2,4,5,7,9,11\r\ncents=0,0,-50,0,0,0,-50\r\n"
                   "centsDes=0,0,-50,0,0,0,-100\r\n"),
              "");
    ASSERT_EQ(maqams.maqamCount(), 2);
    EXPECT_EQ(maqams.maqamName(1), "Bayati");
    EXPECT_EQ(maqams.maqamName(2), "Rast");
    EXPECT_EQ(maqams.maqamName(0), "");
    EXPECT_EQ(maqams.maqamName(3), "");

    const MaqamRec& bayati = *maqams.maqamAt(1);
    EXPECT_EQ(bayati.ipc, (DegreeValues{2, 4, 5, 7, 9, 10, 0}));
    EXPECT_EQ(bayati.centsAsc, bayati.cents);
    EXPECT_EQ(bayati.centsDes, bayati.cents);
    const MaqamRec& rast = *maqams.maqamAt(2);
    EXPECT_EQ(rast.centsAsc, rast.cents);
    EXPECT_EQ(rast.centsDes, (DegreeValues{0, 0, -50, 0, 0, 0, -100}));
}

TEST_F(MaqamsTest, FirstFaultIsReportedAndLeavesNoMaqam)
{
    const std::string good = "[q_ok]\r\nname=Ok\r\nipc=0,2,4,5,7,9,11\r\ncents=0,0,0,0,0,0,0\r\n";
    struct Case {
        const char* section;
        const char* expected;
    };
    const Case cases[] = {
        {"[Q_Bad]\r\nipc=0,2,4,5,7,9,11,0\r\ncents=0,0,0,0,0,0,0\r\n", "Error in ipc of sec. Q_Bad"},
        {"[q_bad]\r\nipc=0,2,4,5,7,9,11,\r\ncents=0,0,0,0,0,0,0\r\n", "Error in ipc of sec. q_bad"},
        {"[q_bad]\r\nipc=0,2,4,5,seven,9,11\r\ncents=0,0,0,0,0,0,0\r\n", "Error in ipc of sec. q_bad"},
        {"[q_bad]\r\ncents=0,0,0,0,0,0,0\r\n", "Error in ipc of sec. q_bad"},
        {"[q_bad]\r\nipc=0,2,4,5,7,9,11\r\ncents=0,0,0,0,0,0\r\n", "Error in centShifts of sec. q_bad"},
        {"[q_bad]\r\nipc=0,2,4,5,7,9,11\r\ncents=0,0,0,0,0,0,0\r\ncentsAsc=0\r\n",
         "Error in centShiftsAsc of sec. q_bad"},
        {"[q_bad]\r\nipc=0,2,4,5,7,9,11\r\ncents=0,0,0,0,0,0,0\r\ncentsDes=,,,,,,\r\n",
         "Error in centShiftsDes of sec. q_bad"},
        {"", "No maqams."},
        {"; only a comment\r\nname=Rast\r\n", "No maqams."},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.section);
        const bool noSections = std::string(c.section).find('[') == std::string::npos;
        EXPECT_EQ(load(noSections ? c.section : good + c.section + good), c.expected);
        EXPECT_EQ(maqams.maqamCount(), 0);
    }
    EXPECT_EQ(maqams.loadMaqams((m_dir / "absent.ini").string()), "No maqams.");
}

TEST_F(MaqamsTest, SectionsWithoutMaqamsGiveAnEmptyList)
{
    ASSERT_EQ(load(kRastAndBayati), "");
    maqams.selectMaqam(1, 0);
    EXPECT_EQ(load("[general]\r\nx=1\r\n[q]\r\n"), "");
    EXPECT_EQ(maqams.maqamCount(), 0);
    EXPECT_FALSE(maqams.isMaqamSelected());
}

TEST_F(MaqamsTest, HomeTonicAndTonicSpellings)
{
    ASSERT_EQ(load(kRastAndBayati), "");
    EXPECT_EQ(maqams.maqamHomeTonic(1), (MaqamTonic{0, 0}));
    EXPECT_EQ(maqams.maqamHomeTonic(3), (MaqamTonic{4, -1}));
    // Rast's seventh is a semitone under the octave: flats; Bayati's is a whole tone: sharps;
    // Sikah's tonic is a quarter tone low: quarter-tone sharps.
    EXPECT_EQ(maqams.maqamTonics(1)[10], (SpelledNote{6, kFlat}));
    EXPECT_EQ(maqams.maqamTonics(2)[10], (SpelledNote{5, kSharp}));
    EXPECT_EQ(maqams.maqamTonics(3)[3], (SpelledNote{1, kQuarterSharp}));
    EXPECT_EQ(maqams.maqamTonics(3)[4], (SpelledNote{2, kQuarterFlat}));
}

TEST_F(MaqamsTest, SelectingMovesTheDegreesToTheTonicAndRespells)
{
    ASSERT_EQ(load(kRastAndBayati), "");
    maqams.selectMaqam(1, 2);
    ASSERT_TRUE(maqams.isMaqamSelected());
    EXPECT_EQ(maqams.curMaqamIndex(), 1);
    EXPECT_EQ(maqams.curMaqam().ipc, (DegreeValues{2, 4, 6, 7, 9, 11, 1}));
    EXPECT_EQ(maqams.curMaqam().cents, maqams.maqamAt(1)->cents);
    EXPECT_EQ(maqams.maqamAt(1)->ipc[0], 0);
    EXPECT_EQ(maqams.curDegreeOf(6), 2);
    EXPECT_EQ(maqams.curDegreeOf(5), -1);

    // Rast on D: C sharp and F sharp have no degree under them; E flat, A flat, B flat do.
    const SpelledNote blackKeys[] = {{0, kSharp}, {2, kFlat}, {3, kSharp}, {5, kFlat}, {6, kFlat}};
    const int32_t semitones[] = {1, 3, 6, 8, 10};
    for (size_t i = 0; i < std::size(semitones); ++i) {
        SCOPED_TRACE(semitones[i]);
        const auto step = static_cast<size_t>(2 * semitones[i]);
        EXPECT_EQ(maqams.curMaqam().stepSpelling[step], blackKeys[i]);
        EXPECT_EQ(maqams.curMaqam().stepSpelling[step + 1].accidental, kQuarterFlat);
    }

    maqams.selectMaqam(2, 11);  // Bayati on B: every degree one semitone down
    EXPECT_EQ(maqams.curMaqam().ipc, (DegreeValues{11, 1, 2, 4, 6, 7, 9}));

    for (const int32_t none : {0, -1, 4}) {
        SCOPED_TRACE(none);
        maqams.selectMaqam(none, 0);
        EXPECT_FALSE(maqams.isMaqamSelected());
        EXPECT_EQ(maqams.curDegreeOf(0), -1);
    }
}

TEST_F(MaqamsTest, SpellPitchFindsTheQuarterToneStep)
{
    ASSERT_EQ(load(kRastAndBayati), "");
    struct Case {
        int32_t note, cents;
        int32_t maqam, tonic;
        SpelledNote expected;
    };
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
        SCOPED_TRACE(testing::Message() << c.note << " " << c.cents << " maqam " << c.maqam);
        maqams.selectMaqam(c.maqam, c.tonic);
        EXPECT_EQ(maqams.spellPitch(c.note, c.cents), c.expected);
    }
}

TEST_F(MaqamsTest, MarkersNameAMaqamAndATonic)
{
    ASSERT_EQ(load(kRastAndBayati), "");
    struct Case {
        const char* text;
        std::optional<MaqamMarker> expected;
    };
    const Case cases[] = {
        {"q:rast/0", MaqamMarker{1, 0}},
        {"Q:BAYATI/11", MaqamMarker{2, 11}},
        {"Q:Sikah/ 4", MaqamMarker{3, 4}},
        {"Q:Rast/12", std::nullopt},
        {"Q:Rast/-1", std::nullopt},
        {"Q:Rast/", std::nullopt},
        {"Q:Rast/x", std::nullopt},
        {"Q:Rast", std::nullopt},
        {"Q:Kurd/0", std::nullopt},
        {"Q: Rast/0", std::nullopt},
        {"X:Rast/0", std::nullopt},
        {"Q:/0", std::nullopt},
        {"Q:", std::nullopt},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(maqams.parseMaqamMarker(c.text), c.expected);
    }

    EXPECT_EQ(maqams.applyMaqamMarker("q:rast/0"), (MaqamMarker{1, 0}));
    EXPECT_EQ(maqams.curMaqamIndex(), 1);
    EXPECT_EQ(maqams.curMaqam().ipc[0], 0);
    EXPECT_FALSE(maqams.applyMaqamMarker("Q:Rast/12"));
    EXPECT_EQ(maqams.curMaqamIndex(), 1);  // an ignored marker changes nothing
}

// Degrees as cents above the tonic must rise in steps a learner can play, and stay in the octave.
void expectPlayableLine(const MaqamRec& rec, const DegreeValues& cents, int32_t lowestShift)
{
    int32_t previous = -1;
    for (size_t i = 0; i < kMaqamDegrees; ++i) {
        SCOPED_TRACE(testing::Message() << "degree " << i + 1);
        EXPECT_GE(rec.ipc[i], 0);
        EXPECT_LE(rec.ipc[i], 11);
        EXPECT_GE(cents[i], lowestShift);
        EXPECT_LE(cents[i], 50);
        const int32_t above = pitchClassOf(int64_t{rec.ipc[i]} - rec.ipc[0]) * 100 + cents[i] - cents[0];
        if (i > 0) {
            EXPECT_GE(above - previous, 100);
            EXPECT_LE(above - previous, 300);
        }
        previous = above;
    }
    EXPECT_GE(1200 - previous, 100);
    EXPECT_LE(1200 - previous, 300);
}

TEST_F(MaqamsTest, ShippedMaqamsLoadAndAreSound)
{
    const std::string path = std::string(TARABIX_SOURCE_DIR) + "/data/maqams.ini";
    std::ifstream in(path, std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
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
        // A descending line may lower a half-flat degree to the flat below it.
        expectPlayableLine(rec, rec.centsDes, -100);
        const auto marker = maqams.parseMaqamMarker("Q:" + rec.name + "/" + std::to_string(rec.ipc[0]));
        EXPECT_EQ(marker, (MaqamMarker{index, rec.ipc[0]}));
    }
}

}  // namespace
}  // namespace tarabix
