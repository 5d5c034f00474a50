#include "DisplayRig.h"
#include "oud/view/KeyGrid.h"
#include "oud/view/UdPictureWidget.h"

#include <QDir>
#include <QFile>
#include <QKeyEvent>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <set>
#include <tuple>
#include <utility>

namespace tarabix {
namespace {

using Rig = test::DisplayRig;

// Where the displayed picture differs from the resting one.
QRect marksArea(const Rig& rig)
{
    const QImage& shown = rig.display.picUd();
    QRect area;
    for (int y = 0; y < shown.height(); ++y)
        for (int x = 0; x < shown.width(); ++x)
            if (shown.pixel(x, y) != rig.display.picUdClone().pixel(x, y))
                area |= QRect(x, y, 1, 1);
    return area;
}

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
        {72, 0, kStringEnd[5]},                         // seventh semitone on the top string
        {45, 0, kStringNut[1]},                         // A2 goes to string 1, not string 0
        {50, 50, {quarterAbove.x, quarterAbove.y}},     // the quarter tone above uses its own table entry
        {52, -50, shiftedPoint(2, 150.0)},              // E half-flat: three quarter tones up the D string
        {50, 25, shiftedPoint(2, 25.0)},                // shifts off the quarter-tone grid
        {55, -30, shiftedPoint(2, 470.0)},              // nearest quarter tone 54.5 is on the D string
        {50, -10, shiftedPoint(1, 490.0)},              // just under the open D: on the A string
    };
    for (const auto& [note, cents, expected] : cases) {
        Rig rig;
        ASSERT_EQ(rig.display.drawCircleMark(note, cents, false, false), 1) << note << "/" << cents;
        EXPECT_EQ(marksArea(rig).center(), QPoint(expected.x, expected.y)) << note << "/" << cents;
        EXPECT_TRUE(rig.lastChange.contains(marksArea(rig))) << note << "/" << cents;
    }
}

// Each finger has a mark of its own; erasing marks and labels, two marks at one point at once,
// gives back the resting picture; erasing nothing changes nothing.
TEST(UdDisplay, MarksAndLabelsEraseBackToTheRestingPicture)
{
    Rig rig;
    rig.display.redrawResting();
    const QImage resting = rig.display.picUd().copy();
    // D3 open (finger 0), E3 (2), F3 (3) on string 2 and F3 + a quarter tone (4): four colours.
    const std::pair<int32_t, int32_t> fingers[] = {{50, 0}, {52, 0}, {53, 0}, {53, 50}};
    std::set<QRgb> centres;
    for (const auto& [note, cents] : fingers) {
        rig.display.drawCircleMark(note, cents, false, false);
        centres.insert(rig.display.picUd().pixel(rig.pointOf(note, cents).x, rig.pointOf(note, cents).y));
    }
    EXPECT_EQ(centres.size(), 4u);
    for (const auto& [note, cents] : fingers)
        rig.display.eraseCircleMark(note, cents);

    // A highlighted label differs from a plain one, and one name from another.
    auto label = [&rig](bool highlighted, int32_t letter) {
        EXPECT_EQ(rig.display.drawNameLabel(52, 0, highlighted, letter, kQuarterFlat, false), 1);
        const QImage shown = rig.display.picUd().copy();
        rig.display.eraseNameLabel(52, 0);
        return shown;
    };
    const QImage litE = label(true, 2);
    EXPECT_TRUE(litE != resting && litE != label(false, 2) && litE != label(true, 0));
    rig.display.drawCircleMark(55, 0, false, false);
    rig.display.drawCircleMark(55, 0, false, false);
    for (const int32_t note : {55, 50, 20})
        rig.display.eraseCircleMark(note, 0);
    EXPECT_EQ(rig.display.picUd(), resting);
}

// A played note is drawn by the play mode when it lies on the fingerboard; otherwise the range
// arrow's side comes back. The built-in tuning has every string at note 0 but cents 0, 45 .. 65:
// the top of its range is note 7, measured against the lowest string's 0 cents.
TEST(UdDisplay, NoteOnDrawsByPlayModeOrReportsTheRangeSide)
{
    Rig rig, untuned(false), builtIn(false);
    builtIn.model.setDefaultTuning();
    builtIn.model.applyTuning(0, 0);
    struct Case { Rig* rig; int32_t mode, note, cents; bool shown, draws; int32_t side; };
    const Case cases[] = {
        {&rig, kPresNothing, 40, 50, true, false, kRangeBelow},  // a quarter tone below the lowest open string
        {&rig, kPresNothing, 41, 0, true, false, kRangeInside}, {&rig, kPresNothing, 72, 0, true, false, kRangeInside},
        {&rig, kPresNothing, 72, 50, true, false, kRangeAbove}, {&rig, kPresCircles, 50, 0, true, true, kRangeInside},
        {&rig, kPresCircles, -5, 0, true, false, kRangeBelow},  {&rig, kPresCircles, 73, 0, true, false, kRangeAbove},
        {&rig, kPresNames, 50, 0, true, true, kRangeInside},    {&rig, kPresNames, 200, 25, true, false, kRangeAbove},
        {&rig, kPresCircles, 50, 0, false, false, kRangeInside}, {&builtIn, kPresNothing, 0, -1, true, false, kRangeBelow},
        {&builtIn, kPresNothing, 7, 0, true, false, kRangeInside}, {&builtIn, kPresNothing, 7, 30, true, false, kRangeAbove},
        {&untuned, kPresCircles, 50, 0, true, false, kRangeUnknown}};
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "mode " << c.mode << " pitch " << c.note << "/" << c.cents);
        c.rig->display.setSpeller([](int32_t, int32_t) { return SpelledNote{1, kNatural}; });
        c.rig->display.setPresentation({.playNoMaqam = c.mode});
        EXPECT_EQ(c.rig->display.noteOnDisplay(c.note, c.cents, c.shown), c.side);
        EXPECT_EQ(c.rig->display.picUd() != c.rig->display.picUdClone(), c.draws);
        EXPECT_EQ(c.rig->display.noteOffDisplay(c.note, c.cents, c.shown), c.shown);
        EXPECT_EQ(c.rig->display.picUd(), c.rig->display.picUdClone());
    }
    EXPECT_EQ(rig.display.drawNameLabel(50, 0, true, 7, 0, true), 0);  // no such letter
}

// The resting picture holds a mark at each place of the scale and nothing anywhere else, on
// both layers.
TEST(UdDisplay, RestingMarksAreDrawnAtTheScalesPlacesOnly)
{
    Rig rig, expected;
    const RestingScale rast{true, {0, 2, 4, 5, 7, 9, 11}, {0, 0, -50, 0, 0, 0, -50}};
    rig.display.setPresentation({.restMaqam = kPresCircles});
    rig.display.setRestingScale(rast);
    rig.display.redrawResting();
    const std::vector<RestingMark> marks = restingMarks(expected.model, rast);
    ASSERT_GT(marks.size(), 10u);
    for (const RestingMark& mark : marks)
        ASSERT_EQ(expected.display.drawCircleMark(mark.note, mark.cents, true, true), 1);
    EXPECT_EQ(rig.display.picUdClone(), expected.display.picUdClone());
    EXPECT_EQ(rig.display.picUd(), rig.display.picUdClone());
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
}

// Coming notes' rings lie centred on the places of their pitches, beneath a sounding note's mark,
// which stays whole while they change and uncovers them when it goes; they follow a new view and
// leave no remnant. The same list again draws nothing.
TEST(UdDisplay, LookAheadRingsLieBeneathSoundingMarksAndLeaveNothing)
{
    Rig rig, soundingOnly;
    for (Rig* r : {&rig, &soundingOnly}) {
        r->display.setPresentation({.playNoMaqam = kPresCircles});
        r->display.redrawResting();
    }
    for (const auto& [note, cents] : {std::pair{52, -50}, {45, 0}, {72, 0}, {20, 0}}) {  // 20: off the fingerboard
        rig.display.showLookAhead({{note, cents, 1, 1}});
        const QImage alone = rig.display.picUd().copy();
        const auto at = rig.display.pointOfPitch(note, cents);
        EXPECT_EQ(marksArea(rig).center(), at ? QPoint(at->x, at->y) : QRect().center()) << note;
        rig.display.showLookAhead({{note, cents, 1, 1}, {note, cents, 3, kLookAheadLevels}});  // due again later
        EXPECT_EQ(rig.display.picUd(), alone) << note;
    }
    const std::vector<LookAheadMark> marks = {{52, -50, 1, kLookAheadLevels}, {45, 0, 2, 4}, {72, 0, 3, 1}};
    rig.display.showLookAhead(marks);
    rig.lastChange = QRect();
    rig.display.showLookAhead(marks);
    EXPECT_TRUE(rig.lastChange.isNull());

    // Note 52 - 50 sounds at the first ring: its mark lies over the ring, whole, as the rings
    // change beneath it; with the rings gone the picture is that of the sounding mark alone.
    const QRect mark = rig.display.circleMarkRect(rig.pointOf(52, -50));
    const QRect disc = mark.adjusted(4, 4, -4, -4);
    for (Rig* r : {&rig, &soundingOnly})
        ASSERT_EQ(r->display.noteOnDisplay(52, -50, true), kRangeInside);
    EXPECT_EQ(rig.display.picUd().copy(disc), soundingOnly.display.picUd().copy(disc));
    EXPECT_NE(rig.display.picUd().copy(mark), soundingOnly.display.picUd().copy(mark));
    rig.display.showLookAhead({{52, -50, 2, 1}, {45, 0, 1, 6}});
    EXPECT_EQ(rig.display.picUd().copy(disc), soundingOnly.display.picUd().copy(disc));
    rig.display.showLookAhead({});
    EXPECT_EQ(rig.display.picUd(), soundingOnly.display.picUd());
    rig.display.showLookAhead({{52, -50, 1, 3}});
    rig.display.noteOffDisplay(52, -50, true);
    EXPECT_EQ(rig.display.picUd(), rig.display.picUdAhead());
    EXPECT_NE(rig.display.picUd(), rig.display.picUdClone());

    rig.model.setOrientation(kRightMirrorView, true);
    EXPECT_EQ(marksArea(rig).center(), QPoint(rig.pointOf(52, -50).x, rig.pointOf(52, -50).y));
    rig.display.showLookAhead({});
    EXPECT_EQ(rig.display.picUd(), rig.display.picUdClone());
}

struct WidgetRig : test::DisplayRig {
    UdPictureWidget widget{&display};
    explicit WidgetRig(QSize size) { widget.resize(size); }
};

TEST(UdPictureWidget, MapsPointsBothWaysAtAnyScale)
{
    // Natural size, a full-HD window's 2.5 times, and a window wider than the picture's shape.
    for (const QSize size : {QSize(743, 188), QSize(1857, 470), QSize(1200, 188)}) {
        WidgetRig rig(size);
        const QRectF area = rig.widget.pictureArea();
        EXPECT_TRUE(std::abs(area.width() / area.height() - 743.0 / 188.0) < 0.01 && std::abs(area.center().x() - size.width() / 2.0) <= 0.5)
            << size.width();
        const double scale = area.width() / 743.0;
        for (const QPoint pixel : {QPoint(0, 0), QPoint(59, 111), QPoint(742, 187)}) {
            // The widget pixel under the middle of the scaled picture pixel.
            const QPointF m = area.topLeft() + (QPointF(pixel) + QPointF(0.5, 0.5)) * scale;
            const QPoint middle(static_cast<int>(std::floor(m.x())), static_cast<int>(std::floor(m.y())));
            const QPointF back = rig.widget.toPicture(QPointF(middle));
            EXPECT_TRUE(std::abs(back.x() - pixel.x()) <= 0.5 && std::abs(back.y() - pixel.y()) <= 0.5) << size.width() << " " << back.x() << "," << back.y();
            EXPECT_TRUE(rig.widget.toWidget(QRect(pixel, QSize(1, 1))).contains(middle)) << size.width();
        }
    }
}

int distance(const QColor& a, const QColor& b) { return std::abs(a.red() - b.red()) + std::abs(a.green() - b.green()) + std::abs(a.blue() - b.blue()); }

// At twice the natural size: a press arrives in picture units, and a mark shows where it was drawn.
TEST(UdPictureWidget, PressesArriveInPictureUnitsAndMarksShowWhereDrawn)
{
    WidgetRig rig({1486, 376});
    QSignalSpy pressed(&rig.widget, &UdPictureWidget::picturePressed);
    QTest::mouseClick(&rig.widget, Qt::LeftButton, {}, QPoint(2 * 59 + 1, 2 * 111 + 1));
    ASSERT_EQ(pressed.count(), 1);
    const auto point = pressed.at(0).at(0).value<PicPointF>();
    EXPECT_TRUE(std::abs(point.x - 59.0) <= 0.5 && std::abs(point.y - 111.0) <= 0.5) << point.x << "," << point.y;

    rig.display.drawCircleMark(52, 0, false, false);
    const QImage shown = rig.widget.grab().toImage();
    // Across the mark's square the window must look like the marked layer, not the resting one.
    const QRect mark = rig.widget.toWidget(rig.display.circleMarkRect(rig.pointOf(52, 0))).adjusted(4, 4, -4, -4);
    int likeMarked = 0;
    for (int y = mark.top(); y <= mark.bottom(); ++y)
        for (int x = mark.left(); x <= mark.right(); ++x) {
            const QPoint px = rig.widget.toPicture(QPointF(x, y)).toPoint();
            const QColor seen = shown.pixelColor(x, y);
            likeMarked += distance(seen, rig.display.picUd().pixelColor(px)) < distance(seen, rig.display.picUdClone().pixelColor(px));
        }
    EXPECT_GT(likeMarked, mark.width() * mark.height() * 8 / 10);
}

// Cells as (row, column) by the physical position, so that on AZERTY the key at the Q position
// (which types "A") is row 1; without a scan code (synthesised events) by the key's meaning, where
// backslash shares A's cell.
TEST(KeyGrid, CellsByPhysicalPositionOrByKeyMeaning)
{
    auto rowColumn = [](KeyGridCell cell) { return std::make_pair(cell.row, cell.column); };
    const std::pair<int, std::pair<int, int>> scanCodes[] = {{16, {1, 0}}, {43, {2, 0}}, {14, {0, 12}}, {53, {3, 9}}, {57, {-1, -1}}};
    for (const auto& [code, cell] : scanCodes)
        EXPECT_EQ(rowColumn(keyGridCellAtScanCode(code)), cell) << code;
    EXPECT_EQ(rowColumn(keyGridCell(QKeyEvent(QEvent::KeyPress, Qt::Key_W, Qt::NoModifier))), std::make_pair(1, 1));
    EXPECT_EQ(rowColumn(keyGridCell(Qt::Key_Backslash)), std::make_pair(2, 0));
    EXPECT_FALSE(keyGridCaption(keyGridCell(Qt::Key_BracketRight)).isEmpty());
}

const QString kDataDir = QStringLiteral(TARABIX_SOURCE_DIR "/data");

// The shipped pictures load. The window's start-up meets missing pictures; here the tables go
// missing and the files are broken.
TEST(UdResources, TheFirstMissingResourceIsReported)
{
    ASSERT_EQ(loadUdResources(kDataDir).missing, MissingResource::None);
    struct Case { const char* file; QByteArray replacement; MissingResource expected; };  // no replacement: removed
    const Case cases[] = {
        {kFingerboardPictureFile, "not a png", MissingResource::FingerboardPicture},
        {kMarkTableFile, {}, MissingResource::MarkPicture},
        {kMarkTableFile, "0 #ff00ff 4 4\n2 #ff00ff 4 4\n", MissingResource::MarkPicture},  // cells out of order
        {kGlyphTableFile, "height 12\n", MissingResource::NoteNameFont},
        {kGlyphTableFile, "height 12\naccidental-width 8\nbox 38 14\nwidths 1 1 1 1 1 1 1 1 1 1 1 1 1 1\n",
         MissingResource::NoteNameFont},  // not the strip's widths
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.file) + " / " + c.replacement.toStdString());
        QTemporaryDir dir;
        for (const char* name : {kFingerboardPictureFile, kMarkStripFile, kMarkTableFile, kGlyphStripFile, kGlyphTableFile})
            QFile::copy(QDir(kDataDir).filePath(QString::fromLatin1(name)), dir.filePath(QString::fromLatin1(name)));
        QFile file(dir.filePath(QString::fromLatin1(c.file)));
        if (c.replacement.isEmpty())
            file.remove();
        else
            ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(c.replacement) > 0);
        file.close();
        const UdResourceLoad load = loadUdResources(dir.path());
        EXPECT_EQ(load.missing, c.expected);
        EXPECT_FALSE(load.detail.isEmpty());
    }
}

// The asset generator writes the tables the loader reads: both round-trip, and broken values are
// refused with a reason.
TEST(ResourceTables, RoundTripAndRefuseBrokenValues)
{
    MarkTable marks{};
    for (int i = 0; i < kMarkCellCount; ++i)
        marks[static_cast<size_t>(i)] = MarkRecord{qRgb(255, 0, 255), 3 + i % 2, 4};
    EXPECT_EQ(parseMarkTable(formatMarkTable(marks), 9, 9, nullptr), marks);
    GlyphTable glyphs{.height = 12, .accidentalWidth = 8, .boxWidth = 38, .boxHeight = 14};
    for (int i = 0; i < kLetterGlyphCount; ++i)
        glyphs.letterWidths[static_cast<size_t>(i)] = 5 + i;
    EXPECT_EQ(parseGlyphTable(formatGlyphTable(glyphs), nullptr), glyphs);
    EXPECT_EQ(glyphs.accidentalX(1), glyphs.letterX(kLetterGlyphCount) + 8);

    QString why;  // a cell offset outside the cell, a box too small for the letters
    EXPECT_TRUE(!parseMarkTable(QStringLiteral("0 #ff00ff 9 4\n"), 9, 9, &why) && !std::exchange(why, {}).isEmpty());
    EXPECT_TRUE(!parseGlyphTable(formatGlyphTable(glyphs).replace(QStringLiteral("box 38 14"), QStringLiteral("box 38 10")), &why) && !why.isEmpty());
}

// Marks land on the strings only if each string is drawn centred on its segment: across the
// string its light must balance around the segment's line, with dark wood a few pixels away.
TEST(FingerboardPicture, EveryStringLiesOnItsSegment)
{
    const QImage picture(QDir(kDataDir).filePath(QString::fromLatin1(kFingerboardPictureFile)));
    auto brightness = [&picture](int x, int y) { const QRgb c = picture.pixel(x, y); return (qRed(c) + qGreen(c) + qBlue(c)) / 3; };
    for (size_t s = 0; s < kStringNut.size(); ++s) {
        for (int x : {70, 200, 370, 520, 670}) {
            const PicPoint a = kStringNut[s], b = kStringEnd[s];
            const double y = a.y + double(b.y - a.y) * (x - a.x) / (b.x - a.x);
            const int row = static_cast<int>(std::lround(y));
            const int wood = (brightness(x, row - 6) + brightness(x, row + 6)) / 2;
            double weight = 0.0, moment = 0.0;
            for (int dy = -3; dy <= 3; ++dy) {
                const double light = std::max(0, brightness(x, row + dy) - wood);
                weight += light;
                moment += light * (row + dy);
            }
            EXPECT_TRUE(weight > 150.0 && wood < 90) << "string " << s << " at x " << x;
            EXPECT_NEAR(moment / weight, y, 0.6) << "string " << s << " at x " << x;
        }
    }
}

}  // namespace
}  // namespace tarabix
