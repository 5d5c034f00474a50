#include "oud/model/Tunings.h"
#include "oud/model/mUdCtrl.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace tarabix {
namespace {

const std::string kHighF = "0 :: F2 - A2 - D3 - G3 - C4 - F4 :: Fa - La - Re - Sol - Do - Fa :: 41 45 50 55 60 65";
const std::string kCF = "1 :: C2 - F2 - A2 - D3 - G3 - C4 :: Do - Fa - La - Re - Sol - Do :: 36 41 45 50 55 60";

std::vector<TuningRec> parsed(const std::string& text, int32_t expectedStatus)
{
    std::vector<TuningRec> tunings;
    EXPECT_EQ(parseTunings(text, tunings), expectedStatus);
    return tunings;
}

TEST(Tunings, TextWithoutLineEndGivesTheBuiltInTuning)
{
    for (const std::string& text : {kHighF, std::string(), kHighF + "\n", kHighF + "\n" + kCF}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(parsed(text, kTuningsBuiltIn), std::vector<TuningRec>{builtInTuning()});
    }
}

TEST(Tunings, BuiltInTuningKeepsItsShape)
{
    const TuningRec rec = builtInTuning();
    EXPECT_EQ(rec.numStrings, 6);
    EXPECT_EQ(rec.stringPitch, (std::array<int32_t, 6>{0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(rec.stringCents, (std::array<int32_t, 6>{0, 45, 50, 55, 60, 65}));
}

TEST(Tunings, LinesAreReadInFileOrder)
{
    const auto tunings = parsed("// header :: with :: four :: fields\r\n" + kCF + "\r\n\r\n" + kHighF + "\r\n", kTuningsLoaded);
    ASSERT_EQ(tunings.size(), 2u);
    EXPECT_EQ(tunings[0].id, 1);
    EXPECT_EQ(tunings[1].id, 0);
    EXPECT_EQ(tunings[1].name, "F2 - A2 - D3 - G3 - C4 - F4");
    EXPECT_EQ(tunings[1].nameSolfege, "Fa - La - Re - Sol - Do - Fa");
    EXPECT_EQ(tunings[1].numStrings, 6);
    EXPECT_EQ(tunings[1].stringPitch, (std::array<int32_t, 6>{41, 45, 50, 55, 60, 65}));
    EXPECT_EQ(tunings[1].stringCents, (std::array<int32_t, 6>{}));
}

TEST(Tunings, WhichLinesCount)
{
    struct Case { const char* line; bool usable; };
    const Case cases[] = {
        {"2 :: a::b :: c :: 40 45", true},
        {"2 :: a :: b :: 40 45 :: 50", false},
        {"2 :: a :: b", false},
        {"x :: a :: b :: 40 45", false},
        {"2 :: a :: b :: 40 4x", false},
        {"2 :: a :: b :: 40  45", false},
        {"2 :: a :: b :: 40 45 ", false},
        {"2 :: a :: b :: ", false},
        {"2 :: a :: b :: 30 35 40 45 50 55 60", false},
        {"2 :: a :: b :: 40 128", false},
        {"2 :: a :: b :: -1 40", false},
        {"99999999999 :: a :: b :: 40", false},
        {"-7 :: a :: b :: 40", true},
        {"2 ::a :: b :: 40", false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.line);
        EXPECT_EQ(parseTuningLine(c.line).has_value(), c.usable);
    }
    const auto colons = parseTuningLine("2 :: a::b :: c :: 40 45");
    ASSERT_TRUE(colons);
    EXPECT_EQ(colons->name, "a::b");
    EXPECT_EQ(colons->numStrings, 2);
}

TEST(Tunings, BlankBeforeSlashesIsNotAComment)
{
    // Read as a tuning line, it is skipped for its id; the lines after it still load.
    EXPECT_FALSE(parseTuningLine(" //0 :: a :: b :: 40"));
    const auto tunings = parsed(" //0 :: a :: b :: 40\r\n" + kCF + "\r\n", kTuningsLoaded);
    ASSERT_EQ(tunings.size(), 1u);
    EXPECT_EQ(tunings[0].id, 1);
}

TEST(Tunings, BadLinesAreSkippedAndNoUsableLineFallsBack)
{
    EXPECT_EQ(parsed("x :: a :: b :: 40\r\n" + kCF + "\r\n1 :: a :: b :: 40  45\r\n", kTuningsLoaded).size(), 1u);
    EXPECT_EQ(parsed("x :: a :: b :: 40\r\n// c\r\n\r\n", kTuningsBuiltIn), std::vector<TuningRec>{builtInTuning()});
}

TEST(Tunings, OctaveCaptions)
{
    const std::pair<int32_t, const char*> cases[] = {
        {0, "+0 Octave"}, {1, "+1 Octave"}, {2, "+2 Octaves"}, {-1, "-1 Octave"}, {-3, "-3 Octaves"}};
    for (const auto& [shift, caption] : cases)
        EXPECT_EQ(octaveCaption(shift), caption);
}

TEST(Tunings, LookupByIndexAndId)
{
    mUdCtrl ud;
    ASSERT_EQ(ud.loadTuningsText(kCF + "\r\n" + kHighF + "\r\n"), kTuningsLoaded);
    int32_t id = 5;
    EXPECT_EQ(ud.tuningAt(1, kNamesWestern, id), "F2 - A2 - D3 - G3 - C4 - F4");
    EXPECT_EQ(id, 0);
    EXPECT_EQ(ud.tuningAt(0, 7, id), "Do - Fa - La - Re - Sol - Do");
    EXPECT_EQ(id, 1);
    EXPECT_EQ(ud.tuningAt(2, kNamesWestern, id), "");
    EXPECT_EQ(id, -1);
    int32_t index = 9;
    EXPECT_EQ(ud.tuningById(0, kNamesSolfege, index), "Fa - La - Re - Sol - Do - Fa");
    EXPECT_EQ(index, 1);
    index = 9;
    EXPECT_EQ(ud.tuningById(3, kNamesWestern, index), "");
    EXPECT_EQ(index, 9);
}

struct ApplyCounter {
    explicit ApplyCounter(mUdCtrl& ud) { ud.onRestorePicture = [this] { ++restores; }; }
    int restores = 0;
};

TEST(Tunings, ApplyingTheSameTuningTwiceDoesNothing)
{
    mUdCtrl ud;
    ud.loadTuningsText(kCF + "\r\n" + kHighF + "\r\n");
    ApplyCounter counter(ud);
    ud.applyTuning(0, 0);
    EXPECT_EQ(counter.restores, 1);
    ud.applyTuning(0, 0);
    EXPECT_EQ(counter.restores, 1);
    EXPECT_EQ(ud.curTuningId(), 0);
    EXPECT_EQ(ud.curStringPitch(), (std::array<int32_t, 6>{41, 45, 50, 55, 60, 65}));
}

TEST(Tunings, AnOctaveMovesEveryOpenString)
{
    mUdCtrl ud;
    ud.loadTuningsText(kCF + "\r\n" + kHighF + "\r\n");
    ApplyCounter counter(ud);
    ud.applyTuning(1, 0);
    ud.applyTuning(1, -1);
    EXPECT_EQ(counter.restores, 1);  // only the octave changed: marks stay
    EXPECT_EQ(ud.curTuneOctShift(), -1);
    EXPECT_EQ(ud.curStringPitch(), (std::array<int32_t, 6>{24, 29, 33, 38, 43, 48}));
    EXPECT_EQ(ud.lowestNote(), 24);
    EXPECT_EQ(ud.highestNote(), 55);
}

TEST(Tunings, UnknownIdTakesTheFirstTuningAndFewerStringsClearTheRest)
{
    mUdCtrl ud;
    ud.loadTuningsText(kHighF + "\r\n7 :: G2 - A2 - D3 - G3 - C4 :: Sol - La - Re - Sol - Do :: 43 45 50 55 60\r\n");
    ud.applyTuning(42, 1);
    EXPECT_EQ(ud.curTuningId(), 0);
    EXPECT_EQ(ud.curStringPitch()[5], 77);
    ud.applyTuning(7, 0);
    EXPECT_EQ(ud.curNumStrings(), 5);
    EXPECT_EQ(ud.curStringPitch(), (std::array<int32_t, 6>{43, 45, 50, 55, 60, 0}));
    EXPECT_EQ(ud.highestNote(), 67);
}

TEST(Tunings, FilesThatCannotBeUsed)
{
    const auto dir = std::filesystem::temp_directory_path() / ("tarabix-tunings-" + std::to_string(::testing::UnitTest::GetInstance()->random_seed()));
    std::filesystem::create_directories(dir);
    const auto path = dir / "tunings.ini";
    { std::ofstream(path, std::ios::binary) << kHighF; }
    mUdCtrl ud;
    EXPECT_EQ(ud.loadTunings(path.string()), kTuningsBuiltIn);
    EXPECT_EQ(ud.tunings(), std::vector<TuningRec>{builtInTuning()});
    { std::ofstream(path, std::ios::binary) << kHighF << "\r\n"; }
    EXPECT_EQ(ud.loadTunings(path.string()), kTuningsLoaded);
    EXPECT_EQ(ud.tunings()[0].stringPitch[0], 41);
    EXPECT_EQ(ud.loadTunings((dir / "missing.ini").string()), kTuningsBuiltIn);
    EXPECT_EQ(ud.tuningCount(), 1);
    EXPECT_EQ(ud.loadTunings(dir.string()), kTuningsBuiltIn);
    std::filesystem::remove_all(dir);
}

TEST(Tunings, ShippedFileLoads)
{
    mUdCtrl ud;
    ASSERT_EQ(ud.loadTunings(TARABIX_SOURCE_DIR "/data/tunings.ini"), kTuningsLoaded);
    ASSERT_GE(ud.tuningCount(), 10);
    int32_t id = -1;
    EXPECT_EQ(ud.tuningAt(0, kNamesWestern, id), "F2 - A2 - D3 - G3 - C4 - F4");
    EXPECT_EQ(id, 0);
    EXPECT_EQ(ud.tunings()[0].stringPitch, (std::array<int32_t, 6>{41, 45, 50, 55, 60, 65}));
    for (int32_t i = 0; i < ud.tuningCount(); ++i) {
        const TuningRec& rec = ud.tunings()[static_cast<size_t>(i)];
        SCOPED_TRACE(rec.name);
        int32_t index = -1;
        ud.tuningById(rec.id, kNamesWestern, index);
        EXPECT_EQ(index, i) << "ids must be unique";
        ud.applyTuning(rec.id, 0);
        EXPECT_EQ(ud.positionTableStatus(), 0);
    }
}

}  // namespace
}  // namespace tarabix
