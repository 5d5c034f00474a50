#include "app/fSheet.h"

#include <QApplication>
#include <QScrollArea>
#include <QTest>
#include <QWheelEvent>

#include <gtest/gtest.h>

namespace tarabix {
namespace {

TEST(SheetViewer, OpensFittedToTheWidthAndZoomsByKeysAndWheelWithinLimits)
{
    QImage page(2000, 3000, QImage::Format_RGB32);
    page.fill(Qt::white);
    fSheet::showSheet(nullptr, page, "piece.mzf");
    fSheet& sheet = *fSheet::instance();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&sheet));
    QWidget* viewport = sheet.findChild<QScrollArea*>()->viewport();
    EXPECT_LE(sheet.shownPictureSize().width(), viewport->width());
    EXPECT_GE(sheet.shownPictureSize().width(), viewport->width() - 40);
    EXPECT_NEAR(sheet.shownPictureSize().height(), sheet.shownPictureSize().width() * 1.5, 2);

    sheet.setZoom(1.0);
    QTest::keyClick(&sheet, Qt::Key_Plus, Qt::ControlModifier);
    EXPECT_DOUBLE_EQ(sheet.zoom(), fSheet::kZoomStep);
    const QPointF at(10, 10);  // Ctrl and the wheel, twice down
    QWheelEvent wheel(at, viewport->mapToGlobal(at), QPoint(), QPoint(0, -120), Qt::NoButton, Qt::ControlModifier,
                      Qt::NoScrollPhase, false);
    for (int i = 0; i < 2; ++i)
        QApplication::sendEvent(viewport, &wheel);
    EXPECT_DOUBLE_EQ(sheet.zoom(), 1.0 / fSheet::kZoomStep);
    EXPECT_EQ(sheet.shownPictureSize(), QSize(1600, 2400));
    sheet.setZoom(100);
    EXPECT_DOUBLE_EQ(sheet.zoom(), fSheet::kMaxZoom);
    sheet.setZoom(0);
    EXPECT_DOUBLE_EQ(sheet.zoom(), fSheet::kMinZoom);
    fSheet::unload();
}

}  // namespace
}  // namespace tarabix
