#include "oud/model/mUdCtrl.h"

#include <gtest/gtest.h>

#include <cmath>

namespace tarabix {
namespace {

const std::string kHighF = "0 :: F2 - A2 - D3 - G3 - C4 - F4 :: Fa - La - Re - Sol - Do - Fa :: 41 45 50 55 60 65\r\n";
const std::array<int32_t, 6> kHighFPitch = {41, 45, 50, 55, 60, 65};

class Fingerboard : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_EQ(ud.loadTuningsText(kHighF), kTuningsLoaded);
        ud.applyTuning(0, 0);
    }

    // The point of string s's segment (as currently oriented) at fraction t from its nut.
    PicPointF along(int32_t s, double t) const
    {
        const PicPoint a = ud.curStringA()[static_cast<size_t>(s)];
        const PicPoint b = ud.curStringB()[static_cast<size_t>(s)];
        return {a.x + t * (b.x - a.x), a.y + t * (b.y - a.y)};
    }

    // The point `distance` pixels off string s, square to it, level with fraction t.
    PicPointF off(int32_t s, double t, double distance) const
    {
        const PicPoint a = ud.curStringA()[static_cast<size_t>(s)];
        const PicPoint b = ud.curStringB()[static_cast<size_t>(s)];
        const double len = std::hypot(b.x - a.x, b.y - a.y);
        const PicPointF p = along(s, t);
        return {p.x - distance * (b.y - a.y) / len, p.y + distance * (b.x - a.x) / len};
    }

    mUdCtrl ud;
};

TEST_F(Fingerboard, SharedPitchesGoToTheHigherString)
{
    EXPECT_EQ(ud.positionAt(2 * 45), (PositionEntry{59, 134, 1}));
    EXPECT_EQ(ud.positionAt(2 * 41 + 7).string, 0);
    EXPECT_EQ(ud.positionAt(2 * 41 + 8).string, 1);
    EXPECT_EQ(ud.fingerFor(45, false), 0);
    EXPECT_EQ(ud.fingerFor(45, true), 1);
}

TEST_F(Fingerboard, TableCoversTheZoneOfEveryStringAndNothingElse)
{
    EXPECT_EQ(ud.positionAt(144), (PositionEntry{678, 23, 5}));
    for (int32_t q = 0; q < kPositionCount; ++q) {
        SCOPED_TRACE(q);
        EXPECT_EQ(ud.positionAt(q).playable(), q >= 82 && q <= 144);
    }
    EXPECT_FALSE(ud.positionAt(-1).playable());
    EXPECT_FALSE(ud.positionAt(255).playable());
    // Stops along string 0, rounded halves to even from the fret-spacing law.
    EXPECT_EQ(ud.positionAt(82), (PositionEntry{59, 153, 0}));
    EXPECT_EQ(ud.positionAt(83), (PositionEntry{112, 155, 0}));
    EXPECT_EQ(ud.positionAt(84), (PositionEntry{163, 156, 0}));
    EXPECT_EQ(ud.lowestNote(), 41);
    EXPECT_EQ(ud.highestNote(), 72);
}

TEST_F(Fingerboard, Fingers)
{
    const std::tuple<int32_t, bool, int32_t> cases[] = {
        {60, false, 0}, {61, false, 1}, {61, true, 1}, {62, false, 2}, {63, false, 3}, {63, true, 4},
        {64, false, 4}, {72, false, 4}, {40, false, -1}, {73, false, -1}, {-3, false, -1}, {200, false, -1}};
    for (const auto& [note, quarter, finger] : cases) {
        SCOPED_TRACE(testing::Message() << note << (quarter ? " + quarter" : ""));
        EXPECT_EQ(ud.fingerFor(note, quarter), finger);
    }
}

TEST_F(Fingerboard, ClickOnANutGivesTheOpenStringInEveryOrientation)
{
    for (int32_t orient = 0; orient < 4; ++orient) {
        ud.setOrientation(orient, true);
        for (int32_t s = 0; s < 6; ++s) {
            SCOPED_TRACE(testing::Message() << "orientation " << orient << " string " << s);
            const FoundPitch p = ud.pitchAtPoint(along(s, 0.0), false, 8.0);
            EXPECT_EQ(p.note, kHighFPitch[static_cast<size_t>(s)]);
            EXPECT_EQ(p.cents, 0);
            EXPECT_EQ(p.string, s);
            const FoundPitch leftOfNut = ud.pitchAtPoint(along(s, -0.02), false, 8.0);
            EXPECT_EQ(leftOfNut.note, p.note);
            EXPECT_EQ(leftOfNut.cents, 0);
        }
    }
}

TEST_F(Fingerboard, ClickRadius)
{
    for (int32_t s : {0, 5}) {
        SCOPED_TRACE(s);
        const double away = s == 0 ? 1.0 : -1.0;  // off the outer side of the outer strings
        EXPECT_FALSE(ud.pitchAtPoint(off(s, 0.5, 9.0 * away), false, 8.0).found());
        EXPECT_EQ(ud.pitchAtPoint(off(s, 0.5, 7.9 * away), false, 8.0).string, s);
    }
    // Halfway between strings 2 and 3 at the nut: 12 pixels from both.
    EXPECT_FALSE(ud.pitchAtPoint({59.0, 99.0}, false, 8.0).found());
}

TEST_F(Fingerboard, SnappingToQuarterTones)
{
    // Zone fractions at which string 0 sounds exactly 24, 25, 74 and 75 cents above F2.
    struct Case { double t; NotePitch free, snapped; };
    const Case cases[] = {
        {0.04139543, {41, 24}, {41, 0}}, {0.04310782, {41, 25}, {41, 50}},
        {0.12581459, {41, 74}, {41, 50}}, {0.12747823, {41, 75}, {42, 0}},
        {1.0, {48, 0}, {48, 0}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.t);
        const FoundPitch free = ud.pitchAtPoint(along(0, c.t), false, 8.0);
        const FoundPitch snapped = ud.pitchAtPoint(along(0, c.t), true, 8.0);
        EXPECT_EQ((NotePitch{free.note, free.cents}), c.free);
        EXPECT_EQ((NotePitch{snapped.note, snapped.cents}), c.snapped);
    }
}

TEST_F(Fingerboard, OrientationFlipsByTheChangedBits)
{
    std::vector<std::pair<int32_t, int32_t>> flips;
    ud.onOrientationChanged = [&](int32_t from, int32_t to) { flips.emplace_back(from, to); };
    ud.setOrientation(1, true);
    ud.setOrientation(3, true);
    ud.setOrientation(3, true);
    ud.setOrientation(4, true);
    ASSERT_EQ(flips.size(), 2u);
    EXPECT_EQ(flips[1].first ^ flips[1].second, kFlipHorizontal);
    EXPECT_EQ(ud.orientation(), 3);
    EXPECT_EQ(ud.curStringA()[0], (PicPoint{683, 34}));
    EXPECT_EQ(ud.curStringB()[5], (PicPoint{64, 164}));
    EXPECT_EQ(ud.positionAt(144), (PositionEntry{64, 164, 5}));

    ud.setOrientation(0, false);  // start-up order: the table waits for the first tuning
    EXPECT_EQ(ud.positionAt(144), (PositionEntry{64, 164, 5}));
}

TEST_F(Fingerboard, KeyboardGridPerOrientation)
{
    struct Case { int32_t orient, row, column, stringShift, positionShift; bool skipTop; FoundPitch expected; };
    const Case cases[] = {
        {0, 0, 0, 0, 0, false, {65, 0, 5, 0}},
        {0, 0, 0, 0, 0, true, {}},
        {0, 1, 3, 0, 0, false, {61, 50, 4, 3}},
        {0, 0, 0, 1, 2, true, {61, 0, 4, 2}},
        {1, 0, 0, 0, 0, false, {41, 0, 0, 0}},
        {1, 3, 4, 1, 0, false, {62, 0, 4, 4}},
        {2, 0, 0, 0, 0, false, {69, 50, 5, 9}},
        {2, 5, 9, 0, 0, false, {41, 0, 0, 0}},
        {3, 0, 9, 0, 0, false, {41, 0, 0, 0}},
        {3, 2, 0, 0, 1, false, {54, 0, 2, 8}},
        {0, 6, 0, 0, 0, false, {}},
        {1, 6, 0, 0, 0, false, {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "orientation " << c.orient << " row " << c.row << " column " << c.column);
        const FoundPitch p = ud.pitchAtGridCell({c.row, c.column}, c.stringShift, c.positionShift, c.orient, c.skipTop);
        EXPECT_EQ(p.note, c.expected.note);
        EXPECT_EQ(p.cents, c.expected.cents);
        EXPECT_EQ(p.string, c.expected.string);
        EXPECT_EQ(p.position, c.expected.position);
    }
}

TEST(FingerboardPitch, NormalizePitch)
{
    const std::pair<NotePitch, NotePitch> cases[] = {
        {{60, -50}, {59, 50}}, {{60, -100}, {59, 0}}, {{60, -150}, {58, 50}}, {{60, 0}, {60, 0}},
        {{60, 99}, {60, 99}}, {{60, 100}, {61, 0}}, {{60, 250}, {62, 50}}, {{0, INT32_MIN}, {-21474837, 52}}};
    for (const auto& [in, out] : cases) {
        SCOPED_TRACE(testing::Message() << in.note << ", " << in.cents);
        NotePitch p = in;
        normalizePitch(p.note, p.cents);
        EXPECT_EQ(p, out);
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
    EXPECT_FALSE(ud.positionAt(254).playable());

    ud.applyTuning(4, 0);
    EXPECT_EQ(ud.positionTableStatus(), 0);
    EXPECT_EQ(ud.positionAt(254), (PositionEntry{678, 143, 1}));
    ud.applyTuning(4, -1);  // the low string falls below note 0
    EXPECT_EQ(ud.positionTableStatus(), kStringOutsideTable);
    EXPECT_EQ(ud.positionAt(2 * 108), (PositionEntry{59, 134, 1}));
    ud.applyTuning(4, 1000000000);
    EXPECT_EQ(ud.positionTableStatus(), kStringOutsideTable);
}

TEST(FingerboardTable, AbsentStringsTakeNoPart)
{
    mUdCtrl ud;
    ud.loadTuningsText("7 :: G2 - A2 - D3 - G3 - C4 :: Sol - La - Re - Sol - Do :: 43 45 50 55 60\r\n");
    ud.applyTuning(7, 0);
    EXPECT_FALSE(ud.positionAt(0).playable());  // string 5 holds pitch 0 but is not on the oud
    EXPECT_FALSE(ud.pitchAtPoint({59.0, 43.0}, false, 8.0).found());
    EXPECT_EQ(ud.pitchAtPoint({59.0, 65.0}, false, 8.0).note, 60);
    EXPECT_FALSE(ud.pitchAtGridCell({0, 0}, 0, 0, kRightPlayerView, false).found());
    EXPECT_EQ(ud.pitchAtGridCell({1, 0}, 0, 0, kRightPlayerView, false).note, 60);
}

}  // namespace
}  // namespace tarabix
