#include "UsualOud.h"

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
        const PicPoint a = ud.curStringA()[static_cast<size_t>(s)];
        const PicPoint b = ud.curStringB()[static_cast<size_t>(s)];
        const double len = std::hypot(b.x - a.x, b.y - a.y);
        return {a.x + t * (b.x - a.x) - distance * (b.y - a.y) / len, a.y + t * (b.y - a.y) + distance * (b.x - a.x) / len};
    }

    mUdCtrl ud;
};

TEST_F(Fingerboard, PositionTable)
{
    // Pitches two strings share go to the higher one: A2 sits on string 1's nut, not on string 0.
    const std::pair<int32_t, PositionEntry> cases[] = {
        {90, {59, 134, 1}}, {144, {678, 23, 5}},
        // Stops along string 0, rounded halves to even from the fret-spacing law.
        {82, {59, 153, 0}}, {83, {112, 155, 0}}, {84, {163, 156, 0}}};
    for (const auto& [q, entry] : cases)
        EXPECT_EQ(ud.positionAt(q), entry) << q;
    EXPECT_EQ(ud.positionAt(89).string, 0);
    for (int32_t q = -1; q <= kPositionCount; ++q)
        EXPECT_EQ(ud.positionAt(q).playable(), q >= 82 && q <= 144) << q;
    EXPECT_EQ(ud.lowestNote(), 41);
    EXPECT_EQ(ud.highestNote(), 72);
}

TEST_F(Fingerboard, ClickOnANutGivesTheOpenStringInEveryOrientation)
{
    for (int32_t orient = 0; orient < 4; ++orient) {
        ud.setOrientation(orient, true);
        for (int32_t s = 0; s < 6; ++s) {
            SCOPED_TRACE(testing::Message() << "orientation " << orient << " string " << s);
            const int32_t open = ud.curStringPitch()[static_cast<size_t>(s)];
            EXPECT_EQ(fields(ud.pitchAtPoint(at(s, 0.0), false, 8.0)), std::make_tuple(open, 0, s, -1));
            EXPECT_EQ(fields(ud.pitchAtPoint(at(s, -0.02), false, 8.0)), std::make_tuple(open, 0, s, -1));
        }
    }
}

TEST_F(Fingerboard, ClickRadius)
{
    for (const auto& [s, away] : {std::pair{0, 1.0}, std::pair{5, -1.0}}) {  // off the outer side of the outer strings
        EXPECT_FALSE(ud.pitchAtPoint(at(s, 0.5, 9.0 * away), false, 8.0).found()) << s;
        EXPECT_EQ(ud.pitchAtPoint(at(s, 0.5, 7.9 * away), false, 8.0).string, s);
    }
    EXPECT_FALSE(ud.pitchAtPoint({59.0, 99.0}, false, 8.0).found());  // 12 pixels from strings 2 and 3
}

TEST_F(Fingerboard, SnappingToQuarterTones)
{
    // Zone fractions at which string 0 sounds exactly 24, 25, 74 and 75 cents above F2.
    struct Case { double t; NotePitch free, snapped; };
    const Case cases[] = {
        {0.04139543, {41, 24}, {41, 0}}, {0.04310782, {41, 25}, {41, 50}},
        {0.12581459, {41, 74}, {41, 50}}, {0.12747823, {41, 75}, {42, 0}}, {1.0, {48, 0}, {48, 0}}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.t);
        const FoundPitch free = ud.pitchAtPoint(at(0, c.t), false, 8.0);
        const FoundPitch snapped = ud.pitchAtPoint(at(0, c.t), true, 8.0);
        EXPECT_EQ((NotePitch{free.note, free.cents}), c.free);
        EXPECT_EQ((NotePitch{snapped.note, snapped.cents}), c.snapped);
    }
}

TEST_F(Fingerboard, OrientationFlipsByTheChangedBits)
{
    std::vector<std::pair<int32_t, int32_t>> flips;
    ud.onOrientationChanged = [&](int32_t from, int32_t to) { flips.emplace_back(from, to); };
    for (const int32_t orient : {1, 3, 3, 4})
        ud.setOrientation(orient, true);
    ASSERT_EQ(flips.size(), 2u);
    EXPECT_EQ(flips[1].first ^ flips[1].second, kFlipHorizontal);  // 3 after 1: left-right only
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
        {0, 0, 0, 0, 0, false, {65, 0, 5, 0}}, {0, 0, 0, 0, 0, true, {}}, {0, 1, 3, 0, 0, false, {61, 50, 4, 3}},
        {0, 0, 0, 1, 2, true, {61, 0, 4, 2}},  {1, 0, 0, 0, 0, false, {41, 0, 0, 0}}, {1, 3, 4, 1, 0, false, {62, 0, 4, 4}},
        {2, 0, 0, 0, 0, false, {69, 50, 5, 9}}, {2, 5, 9, 0, 0, false, {41, 0, 0, 0}}, {3, 0, 9, 0, 0, false, {41, 0, 0, 0}},
        {3, 2, 0, 0, 1, false, {54, 0, 2, 8}}, {0, 6, 0, 0, 0, false, {}}, {1, 6, 0, 0, 0, false, {}}};
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "orientation " << c.orient << " row " << c.row << " column " << c.column);
        EXPECT_EQ(fields(ud.pitchAtGridCell({c.row, c.column}, c.stringShift, c.positionShift, c.orient, c.skipTop)),
                  fields(c.expected));
    }
}

TEST(FingerboardPitch, NormalizePitch)
{
    const std::pair<NotePitch, NotePitch> cases[] = {
        {{60, -50}, {59, 50}}, {{60, -100}, {59, 0}}, {{60, -150}, {58, 50}}, {{60, 0}, {60, 0}},
        {{60, 99}, {60, 99}}, {{60, 100}, {61, 0}}, {{60, 250}, {62, 50}}, {{0, INT32_MIN}, {-21474837, 52}}};
    for (const auto& [in, out] : cases) {
        NotePitch p = in;
        normalizePitch(p.note, p.cents);
        EXPECT_EQ(p, out) << in.note << ", " << in.cents;
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
