#include "app/SheetPicture.h"
#include "app/fSheet.h"

#include <QApplication>
#include <QBuffer>
#include <QScrollArea>
#include <QTest>
#include <QWheelEvent>

#include <gtest/gtest.h>

#include <string>

namespace tarabix {
namespace {

QImage pageOf(int width, int height)
{
    QImage page(width, height, QImage::Format_RGB32);
    page.fill(Qt::white);
    return page;
}

std::string encoded(const QImage& image, const char* format)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, format);
    return bytes.toStdString();
}

TEST(PictureFromBytes, ReadsWhatQtReadsAndNothingElse)
{
    for (const char* format : {"PNG", "BMP", "JPG"}) {
        SCOPED_TRACE(format);
        EXPECT_EQ(pictureFromBytes(encoded(pageOf(30, 20), format)).size(), QSize(30, 20));
    }
    const std::string png = encoded(pageOf(30, 20), "PNG");
    for (const std::string& bad : {std::string(), std::string("not a picture"), png.substr(0, png.size() / 3)}) {
        SCOPED_TRACE(bad.size());
        EXPECT_TRUE(pictureFromBytes(bad).isNull());
    }
}

class SheetViewer : public ::testing::Test {
protected:
    void TearDown() override { fSheet::unload(); }

    static fSheet& open(const QImage& picture, const QString& title = "piece.mzf")
    {
        fSheet::showSheet(nullptr, picture, title);
        EXPECT_TRUE(QTest::qWaitForWindowExposed(fSheet::instance()));
        return *fSheet::instance();
    }
};

TEST_F(SheetViewer, OpensFittedToTheWidthWithTitle)
{
    fSheet& sheet = open(pageOf(2000, 3000), "zoroony.mzf");
    EXPECT_EQ(sheet.windowTitle(), "Sheet - zoroony.mzf");
    const int viewportWidth = sheet.findChild<QScrollArea*>()->viewport()->width();
    EXPECT_LE(sheet.shownPictureSize().width(), viewportWidth);
    EXPECT_GE(sheet.shownPictureSize().width(), viewportWidth - 40);
    EXPECT_NEAR(sheet.shownPictureSize().height(), sheet.shownPictureSize().width() * 1.5, 2);
}

TEST_F(SheetViewer, ZoomsByKeysAndWheelWithinLimits)
{
    fSheet& sheet = open(pageOf(800, 1000));
    QWidget* viewport = sheet.findChild<QScrollArea*>()->viewport();
    const auto ctrlWheel = [viewport](int delta) {
        const QPointF at(10, 10);
        QWheelEvent wheel(at, viewport->mapToGlobal(at), QPoint(), QPoint(0, delta), Qt::NoButton, Qt::ControlModifier,
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(viewport, &wheel);
    };
    sheet.setZoom(1.0);
    QTest::keyClick(&sheet, Qt::Key_Plus, Qt::ControlModifier);
    EXPECT_DOUBLE_EQ(sheet.zoom(), fSheet::kZoomStep);
    QTest::keyClick(&sheet, Qt::Key_Minus, Qt::ControlModifier);
    EXPECT_DOUBLE_EQ(sheet.zoom(), 1.0);
    ctrlWheel(120);
    EXPECT_DOUBLE_EQ(sheet.zoom(), fSheet::kZoomStep);
    ctrlWheel(-120);
    ctrlWheel(-120);
    EXPECT_DOUBLE_EQ(sheet.zoom(), 1.0 / fSheet::kZoomStep);
    EXPECT_EQ(sheet.shownPictureSize(), QSize(640, 800));
    sheet.setZoom(100);
    EXPECT_DOUBLE_EQ(sheet.zoom(), fSheet::kMaxZoom);
    sheet.setZoom(0);
    EXPECT_DOUBLE_EQ(sheet.zoom(), fSheet::kMinZoom);
}

TEST_F(SheetViewer, ReopensAtTheSizeTheLearnerLeftItAndOneWindowOnly)
{
    open(pageOf(100, 100)).resize(500, 420);
    QTest::qWait(10);
    fSheet::unload();
    EXPECT_FALSE(fSheet::isLoaded());

    fSheet& again = open(pageOf(100, 100), "other.mzf");
    EXPECT_EQ(again.size(), QSize(500, 420));
    fSheet::showSheet(nullptr, pageOf(50, 50), "third.mzf");
    EXPECT_EQ(fSheet::instance(), &again);
    EXPECT_EQ(again.windowTitle(), "Sheet - third.mzf");
}

}  // namespace
}  // namespace tarabix
