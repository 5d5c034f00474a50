#include "DisplayRig.h"
#include "oud/view/KeyGrid.h"
#include "oud/view/UdPictureWidget.h"

#include <QKeyEvent>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

#include <cmath>

namespace tarabix {
namespace {

struct WidgetRig : test::DisplayRig {
    UdPictureWidget widget{&display};
    explicit WidgetRig(QSize size) { widget.resize(size); }
};

TEST(UdPictureWidget, MapsPointsBothWaysAtAnyScale)
{
    // Natural size, a full-HD window's 2.5 times, and a window wider than the picture's shape.
    for (const QSize size : {QSize(743, 188), QSize(1857, 470), QSize(1200, 188)}) {
        SCOPED_TRACE(size.width());
        WidgetRig rig(size);
        const QRectF area = rig.widget.pictureArea();
        EXPECT_NEAR(area.width() / area.height(), 743.0 / 188.0, 0.01);
        EXPECT_NEAR(area.center().x(), size.width() / 2.0, 0.5);
        const double scale = area.width() / 743.0;
        for (const QPoint pixel : {QPoint(0, 0), QPoint(59, 111), QPoint(742, 187)}) {
            // The widget pixel under the middle of the scaled picture pixel.
            const QPointF m = area.topLeft() + (QPointF(pixel) + QPointF(0.5, 0.5)) * scale;
            const QPoint middle(static_cast<int>(std::floor(m.x())), static_cast<int>(std::floor(m.y())));
            const QPointF back = rig.widget.toPicture(QPointF(middle));
            EXPECT_NEAR(back.x(), pixel.x(), 0.5);
            EXPECT_NEAR(back.y(), pixel.y(), 0.5);
            EXPECT_TRUE(rig.widget.toWidget(QRect(pixel, QSize(1, 1))).contains(middle));
        }
    }
    WidgetRig natural({743, 188});
    EXPECT_EQ(natural.widget.toPicture(QPointF(59, 111)), QPointF(59, 111));
}

TEST(UdPictureWidget, PressesArriveInPictureUnits)
{
    WidgetRig rig({1486, 376});
    QSignalSpy pressed(&rig.widget, &UdPictureWidget::picturePressed);
    QTest::mouseClick(&rig.widget, Qt::LeftButton, {}, QPoint(2 * 59 + 1, 2 * 111 + 1));
    ASSERT_EQ(pressed.count(), 1);
    const auto point = pressed.at(0).at(0).value<PicPointF>();
    EXPECT_NEAR(point.x, 59.0, 0.5);
    EXPECT_NEAR(point.y, 111.0, 0.5);
    EXPECT_EQ(pressed.at(0).at(1).value<Qt::MouseButton>(), Qt::LeftButton);
}

int distance(const QColor& a, const QColor& b) { return std::abs(a.red() - b.red()) + std::abs(a.green() - b.green()) + std::abs(a.blue() - b.blue()); }

TEST(UdPictureWidget, ShowsTheMarkWhereItWasDrawn)
{
    WidgetRig rig({1486, 376});
    rig.display.drawCircleMark(52, 0, false, false);
    const PicPoint p = rig.pointOf(52, 0);
    const QImage shown = rig.widget.grab().toImage();
    // Across the mark's square the window must look like the marked layer, not the resting one.
    const QRect mark = rig.widget.toWidget(rig.display.circleMarkRect(p)).adjusted(4, 4, -4, -4);
    int likeMarked = 0, total = 0;
    for (int y = mark.top(); y <= mark.bottom(); ++y) {
        for (int x = mark.left(); x <= mark.right(); ++x) {
            const QPointF pic = rig.widget.toPicture(QPointF(x, y));
            const QPoint px(static_cast<int>(std::lround(pic.x())), static_cast<int>(std::lround(pic.y())));
            const QColor seen = shown.pixelColor(x, y);
            likeMarked += distance(seen, rig.display.picUd().pixelColor(px)) <
                          distance(seen, rig.display.picUdClone().pixelColor(px));
            ++total;
        }
    }
    EXPECT_GT(likeMarked, total * 8 / 10);
}

TEST(KeyGrid, RowsByKeyMeaningWithBackslashSharingA)
{
    struct Case { int key; int column; int row; };
    const Case cases[] = {
        {Qt::Key_1, 0, 0}, {Qt::Key_0, 9, 0}, {Qt::Key_Backspace, 12, 0}, {Qt::Key_Q, 0, 1},
        {Qt::Key_BracketRight, 11, 1}, {Qt::Key_A, 0, 2}, {Qt::Key_Backslash, 0, 2},
        {Qt::Key_Apostrophe, 10, 2}, {Qt::Key_Z, 0, 3}, {Qt::Key_Slash, 9, 3},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.key);
        const KeyGridCell cell = keyGridCell(c.key);
        EXPECT_EQ(cell.column, c.column);
        EXPECT_EQ(cell.row, c.row);
        EXPECT_FALSE(keyGridCaption(cell).isEmpty());
    }
    EXPECT_FALSE(keyGridCell(Qt::Key_Space).valid());
    EXPECT_FALSE(keyGridCell(Qt::Key_F1).valid());
}

TEST(KeyGrid, PhysicalPositionsIgnoreTheLayout)
{
    // On AZERTY the key at the Q position types "A", and the one at the A position types "Q".
    EXPECT_EQ(keyGridCellAtScanCode(16).row, 1);
    EXPECT_EQ(keyGridCellAtScanCode(16).column, 0);
    EXPECT_EQ(keyGridCellAtScanCode(30).row, 2);
    EXPECT_EQ(keyGridCellAtScanCode(43).row, 2);
    EXPECT_EQ(keyGridCellAtScanCode(43).column, 0);
    EXPECT_EQ(keyGridCellAtScanCode(14).column, 12);
    EXPECT_EQ(keyGridCellAtScanCode(53).column, 9);
    EXPECT_FALSE(keyGridCellAtScanCode(57).valid());  // the space bar

    // Without a scan code (synthesised events) the key's meaning decides.
    const QKeyEvent typed(QEvent::KeyPress, Qt::Key_W, Qt::NoModifier);
    EXPECT_EQ(keyGridCell(typed).column, 1);
    EXPECT_EQ(keyGridCell(typed).row, 1);
}

}  // namespace
}  // namespace tarabix
