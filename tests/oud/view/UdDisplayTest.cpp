#include "DisplayRig.h"

#include <gtest/gtest.h>

#include <cmath>
#include <set>
#include <tuple>

namespace tarabix {
namespace {

using Rig = test::DisplayRig;

QRect changedArea(const QImage& a, const QImage& b)
{
    QRect area;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x)
            if (a.pixel(x, y) != b.pixel(x, y))
                area |= QRect(x, y, 1, 1);
    return area;
}

QRect marksArea(const Rig& rig) { return changedArea(rig.display.picUd(), rig.display.picUdClone()); }

// Where a pitch `centsAboveOpen` above the open string of s is stopped: by the fret-spacing law,
// as a fraction of the drawn seven-semitone zone.
PicPoint shiftedPoint(size_t s, double centsAboveOpen)
{
    const double f = (1.0 - std::pow(2.0, -centsAboveOpen / 1200.0)) / (1.0 - std::pow(2.0, -7.0 / 12.0));
    return {static_cast<int32_t>(std::nearbyint((kStringEnd[s].x - kStringNut[s].x) * f + kStringNut[s].x)),
            static_cast<int32_t>(std::nearbyint((kStringEnd[s].y - kStringNut[s].y) * f + kStringNut[s].y))};
}

TEST(UdDisplay, AMarkIsCentredOnThePointOfItsPitch)
{
    const PositionEntry quarterAbove = Rig().model.positionAt(2 * 50 + 1);
    const std::tuple<int32_t, int32_t, PicPoint> cases[] = {
        {50, 0, kStringNut[2]},                         // D3: string 2's open string
        {72, 0, kStringEnd[5]},                         // seventh semitone on the top string
        {45, 0, kStringNut[1]},                         // A2 goes to string 1, not string 0
        {50, 50, {quarterAbove.x, quarterAbove.y}},     // the quarter tone above uses its own table entry
        {52, -50, shiftedPoint(2, 150.0)},              // E half-flat: three quarter tones up the D string
        {50, 25, shiftedPoint(2, 25.0)},                // shifts off the quarter-tone grid
        {55, -30, shiftedPoint(2, 470.0)},              // nearest quarter tone 54.5 is on the D string
        {50, -10, shiftedPoint(1, 490.0)},              // just under the open D: on the A string
    };
    for (const auto& [note, cents, expected] : cases) {
        SCOPED_TRACE(std::to_string(note) + "/" + std::to_string(cents));
        Rig rig;
        ASSERT_EQ(rig.display.drawCircleMark(note, cents, false, false), 1);
        EXPECT_EQ(marksArea(rig).center(), QPoint(expected.x, expected.y));
        EXPECT_TRUE(rig.lastChange.contains(marksArea(rig)));
    }
}

TEST(UdDisplay, FingersPickTheirOwnMark)
{
    Rig rig;
    // D3 open (finger 0), E3 (2), F3 (3) on string 2 and F3 + a quarter tone (4): four colours.
    std::set<QRgb> centres;
    for (const auto& [note, cents] : {std::pair{50, 0}, {52, 0}, {53, 0}, {53, 50}}) {
        rig.display.drawCircleMark(note, cents, false, false);
        const PicPoint p = rig.pointOf(note, cents);
        centres.insert(rig.display.picUd().pixel(p.x, p.y));
    }
    EXPECT_EQ(centres.size(), 4u);
}

TEST(UdDisplay, ErasingRestoresTheRestingPicture)
{
    Rig rig;
    rig.display.redrawResting();
    const QImage resting = rig.display.picUd().copy();
    rig.display.drawCircleMark(52, 0, false, false);
    ASSERT_NE(rig.display.picUd(), resting);
    rig.display.eraseCircleMark(52, 0);
    EXPECT_EQ(rig.display.picUd(), resting);
    // Two marks at one point vanish together when either ends.
    rig.display.drawCircleMark(55, 0, false, false);
    rig.display.drawCircleMark(55, 0, false, false);
    rig.display.eraseCircleMark(55, 0);
    EXPECT_EQ(rig.display.picUd(), resting);
    // An erase with no mark, or off the fingerboard, changes nothing.
    rig.display.eraseCircleMark(50, 0);
    rig.display.eraseNameLabel(52, 0);
    rig.display.eraseCircleMark(20, 0);
    EXPECT_EQ(rig.display.picUd(), resting);
}

TEST(UdDisplay, LabelsFramedAndFilledByState)
{
    const std::tuple<bool, QRgb, QRgb> cases[] = {{true, qRgb(192, 0, 0), qRgb(255, 255, 204)}, {false, qRgb(221, 190, 165), qRgb(255, 255, 255)}};
    for (const auto& [highlighted, frame, fill] : cases) {
        SCOPED_TRACE(highlighted);
        Rig rig;
        ASSERT_EQ(rig.display.drawNameLabel(52, 0, highlighted, 2, kQuarterFlat, false), 1);
        const PicPoint p = rig.pointOf(52, 0);
        const QRect box = rig.display.labelRect(p);
        EXPECT_TRUE(box.contains(p.x, p.y));
        const QImage& shown = rig.display.picUd();
        for (const QPoint corner : {box.topLeft(), box.topRight(), box.bottomLeft(), box.bottomRight()})
            EXPECT_EQ(shown.pixel(corner), frame);
        for (const QPoint inside : {box.topLeft() + QPoint(1, 1), box.bottomRight() - QPoint(1, 1)})
            EXPECT_EQ(shown.pixel(inside), fill);
        int ink = 0;  // the name itself is dark ink inside the frame
        for (int y = box.top() + 1; y < box.bottom(); ++y)
            for (int x = box.left() + 1; x < box.right(); ++x)
                ink += qGray(shown.pixel(x, y)) < 80;
        EXPECT_GT(ink, 20);
        rig.display.eraseNameLabel(52, 0);
        EXPECT_EQ(rig.display.picUd(), rig.display.picUdClone());
    }
}

TEST(UdDisplay, NothingIsDrawnOffTheFingerboardOrBeforeATuning)
{
    Rig untuned(false);
    EXPECT_EQ(untuned.display.drawCircleMark(50, 0, true, false) + untuned.display.drawNameLabel(50, 0, true, 1, 0, true), 0);
    EXPECT_EQ(untuned.display.rangeSide(50, 0), kRangeUnknown);

    Rig rig;
    for (const auto& [note, cents] : {std::pair{40, 0}, {73, 0}, {-5, 0}, {127, 50}, {1000, 0}, {200, 25}})
        EXPECT_EQ(rig.display.drawCircleMark(note, cents, true, false) + rig.display.drawNameLabel(note, cents, true, 0, 0, true), 0) << note << "/" << cents;
    EXPECT_EQ(rig.display.drawNameLabel(50, 0, true, 7, 0, true), 0);  // no such letter
    EXPECT_EQ(rig.display.picUd(), rig.display.picUdCloneUnmarked());
}

TEST(UdDisplay, RangeSides)
{
    // The built-in tuning has every string at note 0 but cents 0, 45 .. 65: the top of its range
    // is note 7, and is measured against the lowest string's 0 cents.
    Rig rig, builtIn(false);
    builtIn.model.setDefaultTuning();
    builtIn.model.applyTuning(0, 0);
    const std::tuple<Rig*, int32_t, int32_t, int32_t> cases[] = {
        {&rig, 40, 50, kRangeBelow},  // a quarter tone below the lowest open string
        {&rig, 41, 0, kRangeInside}, {&rig, 72, 0, kRangeInside}, {&rig, 72, 50, kRangeAbove}, {&rig, 73, 0, kRangeAbove},
        {&builtIn, 0, -1, kRangeBelow}, {&builtIn, 7, 0, kRangeInside}, {&builtIn, 7, 30, kRangeAbove}};
    for (const auto& [r, note, cents, side] : cases)
        EXPECT_EQ(r->display.rangeSide(note, cents), side) << note << "/" << cents;
}

TEST(UdDisplay, NoteOnDrawsByPlayModeAndReportsTheRangeSide)
{
    struct Case { int32_t mode, note; bool shown, drawsSomething; int32_t side; };
    const Case cases[] = {{kPresNothing, 50, true, false, kRangeInside}, {kPresNothing, 30, true, false, kRangeBelow},
        {kPresNothing, 90, true, false, kRangeAbove}, {kPresCircles, 50, true, true, kRangeInside}, {kPresCircles, 90, true, false, kRangeAbove},
        {kPresNames, 50, true, true, kRangeInside}, {kPresCircles, 50, false, false, kRangeInside}};
    for (const Case& c : cases) {
        SCOPED_TRACE("mode " + std::to_string(c.mode) + " note " + std::to_string(c.note));
        Rig rig;
        rig.display.setSpeller([](int32_t, int32_t) { return SpelledNote{1, kNatural}; });
        rig.display.setPresentation({.playNoMaqam = c.mode});
        EXPECT_EQ(rig.display.noteOnDisplay(c.note, 0, c.shown), c.side);
        EXPECT_EQ(rig.display.picUd() != rig.display.picUdClone(), c.drawsSomething);
        EXPECT_EQ(rig.display.noteOffDisplay(c.note, 0, c.shown), c.shown);
        EXPECT_EQ(rig.display.picUd(), rig.display.picUdClone());
    }
}

// The resting picture holds a mark at each place of the scale and nothing anywhere else.
TEST(UdDisplay, RestingMarksAreDrawnAtTheScalesPlacesOnly)
{
    Rig rig;
    const RestingScale rast{true, {0, 2, 4, 5, 7, 9, 11}, {0, 0, -50, 0, 0, 0, -50}};
    rig.display.setPresentation({.restMaqam = kPresCircles});
    rig.display.setRestingScale(rast);
    rig.display.redrawResting();
    const QImage& shown = rig.display.picUd();
    const QImage& clean = rig.display.picUdCloneUnmarked();
    EXPECT_EQ(shown, rig.display.picUdClone());
    const std::vector<RestingMark> marks = restingMarks(rig.model, rast);
    ASSERT_GT(marks.size(), 10u);
    QRegion covered;
    for (const RestingMark& mark : marks) {
        const PicPoint p = mark.place.point;
        EXPECT_NE(shown.pixel(p.x, p.y), clean.pixel(p.x, p.y)) << p.x << "," << p.y;
        covered += rig.display.circleMarkRect(p);
    }
    int stray = 0;  // changed pixels outside the marks
    for (int y = 0; y < shown.height(); ++y)
        for (int x = 0; x < shown.width(); ++x)
            stray += shown.pixel(x, y) != clean.pixel(x, y) && !covered.contains(QPoint(x, y));
    EXPECT_EQ(stray, 0);
}

TEST(UdDisplay, APlayedQuarterToneCoversItsRestingLabel)
{
    // Rast on C: a piece or the mouse sounds E half-flat as D + 150 cents. Its highlighted label
    // must lie exactly over the resting E half-flat label and read the same.
    mMaqams maqams;
    ASSERT_EQ(maqams.loadMaqams(TARABIX_SOURCE_DIR "/data/maqams.ini"), "");
    maqams.selectMaqam(maqams.findMaqam("rast"), 0);
    Rig played, expected;
    for (Rig* rig : {&played, &expected}) {
        rig->display.setPresentation({.restMaqam = kPresNames, .playMaqam = kPresNames});
        rig->display.followMaqams(&maqams);
        rig->display.redrawResting();
    }
    played.display.noteOnDisplay(51, 50, true);
    EXPECT_EQ(marksArea(played), played.display.labelRect(played.pointOf(52, -50)));
    expected.display.drawNameLabel(52, -50, true, 2, kQuarterFlat, false);  // "E" and the half-flat sign
    EXPECT_EQ(played.display.picUd(), expected.display.picUd());
}

TEST(UdDisplay, ASecondOrientationFlipsThePicture)
{
    Rig rig;
    const QImage upright = rig.display.picUdCloneUnmarked().copy();
    rig.model.setOrientation(kRightMirrorView, true);
    EXPECT_EQ(rig.display.picUdCloneUnmarked(), upright.mirrored(false, true));
    EXPECT_EQ(rig.display.picUd(), rig.display.picUdCloneUnmarked());
    rig.model.setOrientation(kLeftMirrorView, true);  // 1 then 3: only the left-right flip is added
    EXPECT_EQ(rig.display.picUdCloneUnmarked(), upright.mirrored(true, true));
    rig.display.drawCircleMark(50, 0, false, false);
    EXPECT_EQ(marksArea(rig).center(), QPoint(742 - kStringNut[2].x, 187 - kStringNut[2].y));
    rig.model.setOrientation(kRightPlayerView, true);
    EXPECT_EQ(rig.display.picUdCloneUnmarked(), upright);
}

}  // namespace
}  // namespace tarabix
