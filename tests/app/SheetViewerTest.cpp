#include "app/SheetPicture.h"
#include "app/fSheet.h"

#include <QApplication>
#include <QBuffer>
#include <QPushButton>
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
    const QImage page = pageOf(30, 20);
    for (const char* format : {"PNG", "BMP", "JPG"}) {
        SCOPED_TRACE(format);
        const QImage picture = pictureFromBytes(encoded(page, format));
        ASSERT_FALSE(picture.isNull());
        EXPECT_EQ(picture.size(), QSize(30, 20));
    }
    const std::string png = encoded(page, "PNG");
    for (const std::string& bad : {std::string(), std::string("not a picture"), png.substr(0, png.size() / 3)}) {
        SCOPED_TRACE(bad.size());
        EXPECT_TRUE(pictureFromBytes(bad).isNull());
    }
}

class SheetViewer : public ::testing::Test {
protected:
    void TearDown() override { fSheet::unload(); }

    fSheet& open(const QImage& picture, const QString& title = "piece.mzf")
    {
        fSheet::showSheet(nullptr, picture, title);
        fSheet* sheet = fSheet::instance();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(sheet));
        return *sheet;
    }

    void ctrlWheel(fSheet& sheet, int delta)
    {
        QWidget* viewport = sheet.findChild<QScrollArea*>()->viewport();
        const QPointF at(10, 10);
        QWheelEvent wheel(at, viewport->mapToGlobal(at), QPoint(), QPoint(0, delta), Qt::NoButton, Qt::ControlModifier,
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(viewport, &wheel);
    }
};

TEST_F(SheetViewer, OpensFittedToTheWidthWithTitle)
{
    fSheet& sheet = open(pageOf(2000, 3000), "zoroony.mzf");
    EXPECT_TRUE(fSheet::isLoaded());
    EXPECT_EQ(sheet.windowTitle(), "Sheet - zoroony.mzf");
    QScrollArea* scroll = sheet.findChild<QScrollArea*>();
    const int viewportWidth = scroll->viewport()->width();
    EXPECT_LE(sheet.shownPictureSize().width(), viewportWidth);
    EXPECT_GE(sheet.shownPictureSize().width(), viewportWidth - 40);
    EXPECT_NEAR(sheet.shownPictureSize().height(), sheet.shownPictureSize().width() * 1.5, 2);
}

TEST_F(SheetViewer, ZoomsByKeysWheelAndButtonsWithinLimits)
{
    fSheet& sheet = open(pageOf(800, 1000));
    sheet.setZoom(1.0);
    QTest::keyClick(&sheet, Qt::Key_Plus, Qt::ControlModifier);
    EXPECT_DOUBLE_EQ(sheet.zoom(), fSheet::kZoomStep);
    QTest::keyClick(&sheet, Qt::Key_Minus, Qt::ControlModifier);
    EXPECT_DOUBLE_EQ(sheet.zoom(), 1.0);
    ctrlWheel(sheet, 120);
    EXPECT_DOUBLE_EQ(sheet.zoom(), fSheet::kZoomStep);
    ctrlWheel(sheet, -120);
    ctrlWheel(sheet, -120);
    EXPECT_DOUBLE_EQ(sheet.zoom(), 1.0 / fSheet::kZoomStep);
    EXPECT_EQ(sheet.shownPictureSize(), QSize(640, 800));

    for (QPushButton* button : sheet.findChildren<QPushButton*>()) {
        if (button->text() == "Zoom in") {
            for (int i = 0; i < 8; ++i)
                QTest::mouseClick(button, Qt::LeftButton);
            EXPECT_DOUBLE_EQ(sheet.zoom(), fSheet::kMaxZoom);
        }
    }
    for (int i = 0; i < 40; ++i)
        sheet.zoomOut();
    EXPECT_DOUBLE_EQ(sheet.zoom(), fSheet::kMinZoom);
}

TEST_F(SheetViewer, ReopensAtTheSizeTheLearnerLeftItAndOneWindowOnly)
{
    fSheet& first = open(pageOf(100, 100));
    first.resize(500, 420);
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
