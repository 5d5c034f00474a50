#include "UsualOud.h"

#include <gtest/gtest.h>

namespace tarabix {
namespace {

using test::kUsualOud;
const std::string kCF = "1 :: C2 - F2 - A2 - D3 - G3 - C4 :: Do - Fa - La - Re - Sol - Do :: 36 41 45 50 55 60";
const std::string kFiveStrings = "7 :: G2 - A2 - D3 - G3 - C4 :: Sol - La - Re - Sol - Do :: 43 45 50 55 60";

std::vector<TuningRec> parsed(const std::string& text, int32_t expectedStatus)
{
    std::vector<TuningRec> tunings;
    EXPECT_EQ(parseTunings(text, tunings), expectedStatus);
    return tunings;
}

TEST(Tunings, TextWithoutCrLfOrUsableLineGivesTheBuiltInTuning)
{
    const std::string texts[] = {kUsualOud, "", kUsualOud + "\n", kUsualOud + "\n" + kCF, "x :: a :: b :: 40\r\n// c\r\n\r\n"};
    for (const std::string& text : texts)
        EXPECT_EQ(parsed(text, kTuningsBuiltIn), std::vector<TuningRec>{builtInTuning()}) << text;
    EXPECT_EQ(parsed(kUsualOud + "\r\n", kTuningsLoaded).size(), 1u);  // the same line with its CR LF
    // So does a file that cannot be read, whatever was loaded before.
    mUdCtrl ud;
    for (const char* path : {TARABIX_SOURCE_DIR "/data/absent.ini", TARABIX_SOURCE_DIR "/data"}) {
        ud.loadTuningsText(kCF + "\r\n");
        EXPECT_EQ(ud.loadTunings(path), kTuningsBuiltIn) << path;
        EXPECT_EQ(ud.tunings(), std::vector<TuningRec>{builtInTuning()});
    }
}

TEST(Tunings, UsableLinesAreReadInFileOrderAndBadOnesSkipped)
{
    // " //" is no comment: that line is skipped for its id, like the other bad lines.
    const auto tunings = parsed("// header :: with :: four :: fields\r\n" + kCF + "\r\n\r\n //0 :: a :: b :: 40\r\n"
                                    + "x :: a :: b :: 40\r\n1 :: a :: b :: 40  45\r\n" + kUsualOud + "\r\n",
                                kTuningsLoaded);
    ASSERT_EQ(tunings.size(), 2u);
    EXPECT_EQ(tunings[0].id, 1);
    EXPECT_EQ(tunings[1], (TuningRec{0, 6, {41, 45, 50, 55, 60, 65}, {}, "F2 - A2 - D3 - G3 - C4 - F4", "Fa - La - Re - Sol - Do - Fa"}));
}

TEST(Tunings, WhichLinesCount)
{
    const std::pair<const char*, bool> cases[] = {
        {"2 :: a::b :: c :: 40 45", true},     {"-7 :: a :: b :: 40", true},
        {" //0 :: a :: b :: 40", false},       {"2 :: a :: b :: 40 45 :: 50", false},
        {"2 :: a :: b", false},                {"x :: a :: b :: 40 45", false},
        {"2 :: a :: b :: 40 4x", false},       {"2 :: a :: b :: 40  45", false},
        {"2 :: a :: b :: 40 45 ", false},      {"2 :: a :: b :: ", false},
        {"2 :: a :: b :: 30 35 40 45 50 55 60", false}, {"2 :: a :: b :: 40 128", false},
        {"2 :: a :: b :: -1 40", false},       {"99999999999 :: a :: b :: 40", false},
        {"2 ::a :: b :: 40", false},
    };
    for (const auto& [line, usable] : cases)
        EXPECT_EQ(parseTuningLine(line).has_value(), usable) << line;
    EXPECT_EQ(parseTuningLine("2 :: a::b :: c :: 40 45")->name, "a::b");
}

TEST(Tunings, OctaveCaptions)
{
    const std::pair<int32_t, const char*> cases[] = {
        {0, "+0 Octave"}, {1, "+1 Octave"}, {2, "+2 Octaves"}, {-1, "-1 Octave"}, {-3, "-3 Octaves"}};
    for (const auto& [shift, caption] : cases)
        EXPECT_EQ(octaveCaption(shift), caption);
}

TEST(Tunings, ApplyTuning)
{
    mUdCtrl ud;
    ud.loadTuningsText(kUsualOud + "\r\n" + kCF + "\r\n" + kFiveStrings + "\r\n");
    int restores = 0;
    ud.onRestorePicture = [&restores] { ++restores; };
    ud.applyTuning(0, 0);
    ud.applyTuning(0, 0);
    EXPECT_EQ(restores, 1);  // the same id and shift again does nothing

    ud.applyTuning(1, 0);
    ud.applyTuning(1, -1);
    EXPECT_EQ(restores, 2);  // only the octave changed: marks stay
    EXPECT_EQ(ud.curTuneOctShift(), -1);
    EXPECT_EQ(ud.curStringPitch(), (std::array<int32_t, 6>{24, 29, 33, 38, 43, 48}));
    EXPECT_EQ(ud.lowestNote(), 24);
    EXPECT_EQ(ud.highestNote(), 55);

    ud.applyTuning(42, 1);  // unknown id: the first tuning
    EXPECT_EQ(ud.curTuningId(), 0);
    EXPECT_EQ(ud.curStringPitch()[5], 77);
    ud.applyTuning(7, 0);  // fewer strings clear the rest
    EXPECT_EQ(ud.curNumStrings(), 5);
    EXPECT_EQ(ud.curStringPitch(), (std::array<int32_t, 6>{43, 45, 50, 55, 60, 0}));
    EXPECT_EQ(ud.highestNote(), 67);
}

TEST(Tunings, ShippedFileLoads)
{
    mUdCtrl ud;
    ASSERT_EQ(ud.loadTunings(TARABIX_SOURCE_DIR "/data/tunings.ini"), kTuningsLoaded);
    ASSERT_GE(ud.tuningCount(), 10);
    EXPECT_EQ(ud.tunings()[0], parseTuningLine(kUsualOud));
    for (int32_t i = 0; i < ud.tuningCount(); ++i) {
        const TuningRec& rec = ud.tunings()[static_cast<size_t>(i)];
        int32_t index = -1;
        ud.tuningById(rec.id, kNamesWestern, index);
        EXPECT_EQ(index, i) << rec.name << ": ids must be unique";
        ud.applyTuning(rec.id, 0);
        EXPECT_EQ(ud.positionTableStatus(), 0) << rec.name;
    }
}

}  // namespace
}  // namespace tarabix
