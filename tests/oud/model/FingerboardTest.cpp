#include "UsualOud.h"

#include "oud/model/RestingMarks.h"

#include <gtest/gtest.h>

#include <cmath>
#include <tuple>

namespace tarabix {
namespace {

std::tuple<int32_t, int32_t, int32_t, int32_t> fields(const FoundPitch& p) { return {p.note, p.cents, p.string, p.position}; }

class Fingerboard : public ::testing::Test {
protected:
    void SetUp() override { test::tuneUsualOud(ud); }

    // The point `distance` pixels off string s (as currently oriented), square to it, at fraction t from its nut.
    PicPointF at(int32_t s, double t, double distance = 0.0) const
    {
        const PicPoint a = ud.curStringA()[static_cast<size_t>(s)], b = ud.curStringB()[static_cast<size_t>(s)];
        const double len = std::hypot(b.x - a.x, b.y - a.y);
        return {a.x + t * (b.x - a.x) - distance * (b.y - a.y) / len, a.y + t * (b.y - a.y) + distance * (b.x - a.x) / len};
    }

    mUdCtrl ud;
};

// A click just left of a nut sounds the open string (in a mirrored view too); a click too far
// off the outer strings or between two strings finds nothing.
TEST_F(Fingerboard, ClicksFindTheNearestStringWithinTheRadius)
{
    for (const int32_t orient : {kLeftMirrorView, kRightPlayerView}) {
        ud.setOrientation(orient, true);
        for (int32_t s = 0; s < 6; ++s)
            EXPECT_EQ(fields(ud.pitchAtPoint(at(s, -0.02), false, 8.0)), std::make_tuple(ud.curStringPitch()[static_cast<size_t>(s)], 0, s, -1))
                << "orientation " << orient << " string " << s;
    }
    for (const auto& [s, away] : {std::pair{0, 1.0}, std::pair{5, -1.0}}) {  // off the outer side of the outer strings
        EXPECT_FALSE(ud.pitchAtPoint(at(s, 0.5, 9.0 * away), false, 8.0).found()) << s;
        EXPECT_EQ(ud.pitchAtPoint(at(s, 0.5, 7.9 * away), false, 8.0).string, s);
    }
    EXPECT_FALSE(ud.pitchAtPoint({59.0, 99.0}, false, 8.0).found());  // 12 pixels from strings 2 and 3
}

TEST_F(Fingerboard, SnappingToQuarterTones)
{
    // Zone fractions at which string 0 sounds exactly 24, 25, 74 and 75 cents above F2.
    const std::tuple<double, NotePitch, NotePitch> cases[] = {
        {0.04139543, {41, 24}, {41, 0}}, {0.04310782, {41, 25}, {41, 50}},
        {0.12581459, {41, 74}, {41, 50}}, {0.12747823, {41, 75}, {42, 0}}, {1.0, {48, 0}, {48, 0}}};
    for (const auto& [t, free, snapped] : cases) {
        const FoundPitch f = ud.pitchAtPoint(at(0, t), false, 8.0), s = ud.pitchAtPoint(at(0, t), true, 8.0);
        EXPECT_EQ(std::make_pair(NotePitch{f.note, f.cents}, NotePitch{s.note, s.cents}), std::make_pair(free, snapped)) << t;
    }
}

TEST_F(Fingerboard, KeyboardGridPerOrientation)
{
    struct Case { int32_t orient, row, column, stringShift, positionShift; bool skipTop; FoundPitch expected; };
    const Case cases[] = {
        {0, 0, 0, 0, 0, true, {}}, {0, 1, 3, 0, 0, false, {61, 50, 4, 3}}, {0, 0, 0, 1, 2, true, {61, 0, 4, 2}},
        {2, 0, 0, 0, 0, false, {69, 50, 5, 9}}, {3, 2, 0, 0, 1, false, {54, 0, 2, 8}}, {1, 6, 0, 0, 0, false, {}}};
    for (const Case& c : cases)
        EXPECT_EQ(fields(ud.pitchAtGridCell({c.row, c.column}, c.stringShift, c.positionShift, c.orient, c.skipTop)), fields(c.expected))
            << "orientation " << c.orient << " row " << c.row << " column " << c.column;
}

TEST(FingerboardPitch, NormalizePitch)
{
    const std::pair<NotePitch, NotePitch> cases[] = {
        {{60, -50}, {59, 50}}, {{60, -100}, {59, 0}}, {{60, -150}, {58, 50}}, {{60, 99}, {60, 99}},
        {{60, 100}, {61, 0}}, {{60, 250}, {62, 50}}, {{0, INT32_MIN}, {-21474837, 52}}};
    for (auto [in, out] : cases) {
        normalizePitch(in.note, in.cents);
        EXPECT_EQ(in, out);
    }
}

TEST(FingerboardTable, StringsTheTableCannotHoldAreRefused)
{
    mUdCtrl ud;
    ud.loadTuningsText("3 :: a :: b :: 100 121\r\n4 :: c :: d :: 5 120\r\n");
    ud.applyTuning(3, 0);
    EXPECT_EQ(ud.positionTableStatus(), kStringOutsideTable);
    EXPECT_EQ(ud.positionAt(200), (PositionEntry{59, 153, 0}));
    EXPECT_FALSE(ud.positionAt(242).playable());
    ud.applyTuning(4, 0);
    EXPECT_EQ(ud.positionTableStatus(), 0);
    EXPECT_EQ(ud.positionAt(254), (PositionEntry{678, 143, 1}));
    ud.applyTuning(4, -1);  // the low string falls below note 0
    EXPECT_EQ(ud.positionTableStatus(), kStringOutsideTable);
    EXPECT_EQ(ud.positionAt(2 * 108), (PositionEntry{59, 134, 1}));
    ud.applyTuning(4, 1000000000);
    EXPECT_EQ(ud.positionTableStatus(), kStringOutsideTable);
}

using test::kUsualOud;
const std::string kCF = "1 :: C2 - F2 - A2 - D3 - G3 - C4 :: Do - Fa - La - Re - Sol - Do :: 36 41 45 50 55 60";

std::vector<TuningRec> parsed(const std::string& text, int32_t expectedStatus)
{
    std::vector<TuningRec> tunings;
    EXPECT_EQ(parseTunings(text, tunings), expectedStatus);
    return tunings;
}

TEST(Tunings, TextWithoutCrLfOrUsableLineGivesTheBuiltInTuning)
{
    for (const std::string& text : {kUsualOud + "\n" + kCF, std::string("x :: a :: b :: 40\r\n// c\r\n\r\n")})
        EXPECT_EQ(parsed(text, kTuningsBuiltIn), std::vector<TuningRec>{builtInTuning()}) << text;
    // So does a file that cannot be read, whatever was loaded before.
    mUdCtrl ud;
    ud.loadTuningsText(kCF + "\r\n");
    EXPECT_EQ(ud.loadTunings(TARABIX_SOURCE_DIR "/data"), kTuningsBuiltIn);
    EXPECT_EQ(ud.tunings(), std::vector<TuningRec>{builtInTuning()});
}

TEST(Tunings, UsableLinesAreReadInFileOrderAndBadOnesSkipped)
{
    // " //" is no comment: that line is skipped for its id, like the other bad lines.
    const auto tunings = parsed("// header :: with :: four :: fields\r\n" + kCF + "\r\n\r\n //0 :: a :: b :: 40\r\n"
                                    + "x :: a :: b :: 40\r\n1 :: a :: b :: 40  45\r\n" + kUsualOud + "\r\n",
                                kTuningsLoaded);
    ASSERT_EQ(tunings.size(), 2u);
    EXPECT_EQ(tunings[0].id, 1);  // then the whole line read
    EXPECT_EQ(tunings[1], (TuningRec{0, 6, {41, 45, 50, 55, 60, 65}, {}, "F2 - A2 - D3 - G3 - C4 - F4", "Fa - La - Re - Sol - Do - Fa"}));
}

TEST(Tunings, WhichLinesCount)
{
    const std::pair<const char*, bool> cases[] = {
        {"2 :: a::b :: c :: 40 45", true}, {"-7 :: a :: b :: 40", true}, {"2 :: a :: b :: 40 45 :: 50", false}, {"2 :: a :: b", false},
        {"2 :: a :: b :: 40 45 ", false}, {"2 :: a :: b :: ", false}, {"2 :: a :: b :: 30 35 40 45 50 55 60", false},
        {"2 :: a :: b :: 40 128", false}, {"2 :: a :: b :: -1 40", false}, {"99999999999 :: a :: b :: 40", false}, {"2 ::a :: b :: 40", false}};
    for (const auto& [line, usable] : cases)
        EXPECT_EQ(parseTuningLine(line).has_value(), usable) << line;
    EXPECT_EQ(parseTuningLine("2 :: a::b :: c :: 40 45")->name, "a::b");
    const std::pair<int32_t, const char*> captions[] = {{0, "+0 Octave"}, {2, "+2 Octaves"}, {-1, "-1 Octave"}, {-3, "-3 Octaves"}};
    for (const auto& [shift, caption] : captions)
        EXPECT_EQ(octaveCaption(shift), caption);
}

TEST(Tunings, ApplyTuning)
{
    mUdCtrl ud;
    ud.loadTuningsText(kUsualOud + "\r\n" + kCF + "\r\n7 :: G2 - A2 - D3 - G3 - C4 :: Sol - La - Re - Sol - Do :: 43 45 50 55 60\r\n");
    int restores = 0;
    ud.onRestorePicture = [&restores] { ++restores; };
    ud.applyTuning(0, 0);
    ud.applyTuning(0, 0);
    EXPECT_EQ(restores, 1);  // the same id and shift again does nothing

    ud.applyTuning(1, 0);
    ud.applyTuning(1, -1);
    EXPECT_EQ(restores, 2);  // only the octave changed: marks stay
    EXPECT_EQ(ud.curStringPitch(), (std::array<int32_t, 6>{24, 29, 33, 38, 43, 48}));

    ud.applyTuning(42, 1);  // unknown id: the first tuning
    EXPECT_EQ(std::make_pair(ud.curTuningId(), ud.curStringPitch()[5]), std::make_pair(0, 77));
    ud.applyTuning(7, 0);  // fewer strings clear the rest, and the absent string takes no part
    EXPECT_EQ(std::make_pair(ud.curNumStrings(), ud.highestNote()), std::make_pair(5, 67));
    EXPECT_EQ(ud.curStringPitch(), (std::array<int32_t, 6>{43, 45, 50, 55, 60, 0}));
    EXPECT_FALSE(ud.positionAt(0).playable() || ud.pitchAtPoint({59.0, 43.0}, false, 8.0).found() ||
                 ud.pitchAtGridCell({0, 0}, 0, 0, kRightPlayerView, false).found());
    EXPECT_EQ(ud.pitchAtPoint({59.0, 65.0}, false, 8.0).note + ud.pitchAtGridCell({1, 0}, 0, 0, kRightPlayerView, false).note, 120);
}

int64_t centsOf(int32_t note, int32_t cents) { return int64_t{100} * note + cents; }

void loadShippedTunings(mUdCtrl& ud) { ASSERT_EQ(ud.loadTunings(TARABIX_SOURCE_DIR "/data/tunings.ini"), kTuningsLoaded); }

TEST(FingerboardPlaces, BassStringBesideTheHighestCourse)
{
    mUdCtrl ud;
    loadShippedTunings(ud);
    ud.applyTuning(9, 0);  // C3 D3 G3 C4 F4, then the bass F2 as string 5
    ASSERT_EQ(ud.curStringPitch()[5], 41);
    // C3 is string 0 open (not the bass string's seventh semitone) and a quarter tone above it lies
    // by string 0's nut; only the bass string reaches below C3; D3 is string 1 open, not stopped on
    // string 0; 72 tops the range.
    struct Case { NotePitch pitch; int32_t string, quarterTones, finger; };
    const Case cases[] = {{{48, 0}, 0, 0, 0}, {{49, -50}, 0, 1, 1}, {{41, 0}, 5, 0, 0}, {{44, 0}, 5, 6, 3},
                          {{47, 50}, 5, 13, 4}, {{50, 0}, 1, 0, 0}, {{72, 0}, 4, 14, 4}};
    for (const auto& [pitch, string, quarterTones, finger] : cases) {
        EXPECT_EQ(ud.placeOfPitch(pitch.note, pitch.cents), (PitchPlace{*ud.stringStopPoint(string, quarterTones), string})) << pitch.note;
        EXPECT_EQ(ud.fingerForPitch(pitch.note, pitch.cents), finger) << pitch.note << "/" << pitch.cents;
    }
    // The range runs from the bass string to the top string's seventh semitone, without a gap.
    for (const auto& [id, low, high] : {std::tuple{9, 41, 72}, std::tuple{10, 43, 74}}) {
        ud.applyTuning(id, 0);
        EXPECT_EQ(std::make_pair(ud.lowestNote(), ud.highestNote()), std::make_pair(low, high)) << id;
        for (int32_t q = -1; q <= kPositionCount; ++q)
            EXPECT_EQ(ud.positionAt(q).playable(), q >= 2 * low && q <= 2 * high) << id << " q " << q;
    }
}

TEST(FingerboardPlaces, APitchLiesWhereItsSoundingQuarterToneIsStopped)
{
    mUdCtrl ud;
    test::tuneUsualOud(ud);
    // A quarter tone written from the note above lies where it is written from the note below.
    const PositionEntry e = ud.positionAt(127);
    EXPECT_TRUE(ud.placeOfPitch(64, -50) == (PitchPlace{{e.x, e.y}, e.string}) && ud.placeOfPitch(63, 50) == (PitchPlace{{e.x, e.y}, e.string}));
    // Below the lowest open string, past the top string's zone, outside MIDI.
    for (const NotePitch off : {NotePitch{41, -10}, {72, 10}, {-1, 0}, {127, 99}, {INT32_MAX, INT32_MIN}})
        EXPECT_FALSE(ud.placeOfPitch(off.note, off.cents)) << off.note << "/" << off.cents;

    // The string and finger are those of the place: E half-flat three quarter tones up the D string
    // is the first finger; 10 cents under the open D is stopped on the A string, by the fourth.
    const std::tuple<NotePitch, int32_t, int32_t> fingers[] = {
        {{52, -50}, 2, 1}, {{45, -50}, 0, 4}, {{50, 10}, 2, 0}, {{50, 30}, 2, 1}, {{50, -10}, 1, 4}, {{72, -10}, 5, 4}};
    for (const auto& [pitch, string, finger] : fingers)
        EXPECT_EQ(std::make_pair(ud.placeOfPitch(pitch.note, pitch.cents).value_or(PitchPlace{}).string, ud.fingerForPitch(pitch.note, pitch.cents)),
                  std::make_pair(string, finger)) << pitch.note << "/" << pitch.cents;
    EXPECT_EQ(ud.fingerForPitch(72, 50), -1);
}

// For every shipped maqam on every tonic, in every view and for the usual oud and both tunings with
// the bass string last: the resting marks are the scale's pitches within the range, and a click
// on each one (quarter tones on, as the window's mouse) sounds that very pitch.
TEST(FingerboardPlaces, EveryRestingMarkSoundsItsOwnPitchWhenPressed)
{
    mMaqams maqams;
    ASSERT_EQ(maqams.loadMaqams(TARABIX_SOURCE_DIR "/data/maqams.ini"), "");
    ASSERT_GE(maqams.maqamCount(), 20);
    mUdCtrl ud;
    loadShippedTunings(ud);
    for (const int32_t tuning : {0, 9, 10}) {
        ud.applyTuning(tuning, 0);
        const int64_t low = centsOf(ud.lowestNote(), ud.lowestCents());
        const int64_t high = centsOf(ud.highestNote(), ud.highestCents());
        for (int32_t view = 0; view < 4; ++view) {
            ud.setOrientation(view, true);
            for (int32_t m = 1; m <= maqams.maqamCount(); ++m) {
                // Each shipped maqam answers to its own name (a name used twice or holding a "/" would not).
                ASSERT_EQ(maqams.parseMaqamMarker("Q:" + maqams.maqamName(m) + "/0"), (MaqamMarker{m, 0}));
                for (int32_t tonic = 0; tonic < 12; ++tonic) {
                    SCOPED_TRACE(testing::Message() << "tuning " << tuning << " view " << view << " " << maqams.maqamName(m) << " on " << tonic);
                    maqams.selectMaqam(m, tonic);
                    const RestingScale scale = restingScaleOf(maqams);
                    size_t inRange = 0;
                    for (int32_t d = 0; d < 7; ++d)
                        for (int32_t octave = 0; octave < 10; ++octave) {
                            const int64_t c = centsOf(scale.degree(d).note + 12 * octave, scale.degree(d).cents);
                            inRange += c >= low && c <= high;
                        }
                    const std::vector<RestingMark> marks = restingMarks(ud, scale);
                    ASSERT_EQ(marks.size(), inRange);
                    for (const RestingMark& mark : marks) {
                        const PicPoint p = mark.place.point;
                        const FoundPitch found = ud.pitchAtPoint({double(p.x), double(p.y)}, true, 8.0);
                        ASSERT_EQ(std::make_pair(centsOf(found.note, found.cents), found.string),
                                  std::make_pair(centsOf(mark.note, mark.cents), mark.place.string))
                            << "mark " << mark.note << "/" << mark.cents << " at " << p.x << "," << p.y;
                    }
                }
            }
        }
    }
}

}  // namespace
}  // namespace tarabix
