#include "oud/model/FingerboardGeometry.h"
#include "oud/view/UdResources.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cmath>

namespace tarabix {
namespace {

const QString kDataDir = QStringLiteral(TARABIX_SOURCE_DIR "/data");

TEST(UdResources, ShippedPicturesLoad)
{
    const UdResourceLoad load = loadUdResources(kDataDir);
    ASSERT_EQ(load.missing, MissingResource::None) << load.detail.toStdString();
    EXPECT_EQ(load.resources.fingerboard.size(), QSize(kPictureWidth, kPictureHeight));
    EXPECT_EQ(load.resources.markStrip.width(), kMarkCellCount * load.resources.markWidth());
    // Offsets lead to the centre pixel of an odd-sized cell, so a mark sits centred on its point.
    for (const MarkRecord& r : load.resources.marks) {
        EXPECT_EQ(r.xOffset * 2 + 1, load.resources.markWidth());
        EXPECT_EQ(r.yOffset * 2 + 1, load.resources.markHeight());
    }
    const GlyphTable& g = load.resources.glyphs;
    EXPECT_EQ(load.resources.glyphStrip.width(), g.stripWidth());
    // The widest name with an accidental fits inside the label's frame.
    const int widest = *std::max_element(g.letterWidths.begin(), g.letterWidths.end());
    EXPECT_LE(widest + 2 + g.accidentalWidth, g.boxWidth - 2);
    EXPECT_LE(g.height, g.boxHeight - 2);
}

TEST(UdResources, TheFirstMissingResourceIsReported)
{
    // The window's start-up meets missing pictures; here the tables go missing and the files are broken.
    struct Case { const char* file; QByteArray replacement; MissingResource expected; };  // no replacement: removed
    const Case cases[] = {
        {kFingerboardPictureFile, "not a png", MissingResource::FingerboardPicture},
        {kMarkTableFile, {}, MissingResource::MarkPicture},
        {kMarkTableFile, "0 #ff00ff 8 8\n", MissingResource::MarkPicture},
        {kGlyphTableFile, "height 12\n", MissingResource::NoteNameFont},
        {kGlyphTableFile, "height 12\naccidental-width 8\nbox 38 14\nwidths 1 1 1 1 1 1 1 1 1 1 1 1 1 1\n",
         MissingResource::NoteNameFont},
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

TEST(MarkTableText, RoundTripsAndRefusesBrokenLines)
{
    MarkTable table{};
    for (int i = 0; i < kMarkCellCount; ++i)
        table[static_cast<size_t>(i)] = MarkRecord{qRgb(255, 0, 255), 3 + i % 2, 4};
    EXPECT_EQ(parseMarkTable(formatMarkTable(table), 9, 9, nullptr), table);
    // Five cells, out of order, a short line, a bad colour, offsets outside the cell or negative.
    const char* broken[] = {"0 #ff00ff 4 4\n1 #ff00ff 4 4\n2 #ff00ff 4 4\n3 #ff00ff 4 4\n4 #ff00ff 4 4\n", "0 #ff00ff 4 4\n2 #ff00ff 4 4\n",
                            "0 #ff00ff 4\n", "0 nocolour 4 4\n", "0 #ff00ff 9 4\n", "0 #ff00ff -1 4\n"};
    for (const char* text : broken) {
        SCOPED_TRACE(text);
        QString why;
        EXPECT_FALSE(parseMarkTable(QString::fromLatin1(text), 9, 9, &why));
        EXPECT_FALSE(why.isEmpty());
    }
}

TEST(GlyphTableText, RoundTripsAndRefusesBrokenValues)
{
    GlyphTable table{.height = 12, .accidentalWidth = 8, .boxWidth = 38, .boxHeight = 14};
    for (int i = 0; i < kLetterGlyphCount; ++i)
        table.letterWidths[static_cast<size_t>(i)] = 5 + i;
    EXPECT_EQ(parseGlyphTable(formatGlyphTable(table), nullptr), table);
    EXPECT_EQ(table.letterX(2), 5 + 6);
    EXPECT_EQ(table.accidentalX(1), table.letterX(kLetterGlyphCount) + 8);

    const QString good = formatGlyphTable(table);
    const std::pair<const char*, const char*> edits[] = {{"height 12", "height 0"}, {"height 12", "height 100000"}, {"box 38 14", "box 38"},
        {"box 38 14", "box 38 10"}, {"widths 5", "widths x"}, {"accidental-width 8\n", ""}, {"\nheight", "\ncolour red\nheight"}};
    for (const auto& [from, to] : edits) {
        const QString text = QString(good).replace(QString::fromLatin1(from), QString::fromLatin1(to));
        SCOPED_TRACE(text.toStdString());
        QString why;
        EXPECT_FALSE(parseGlyphTable(text, &why));
        EXPECT_FALSE(why.isEmpty());
    }
}

TEST(AccidentalGlyphs, CodesToStripOrder)
{
    const std::pair<int, int> cases[] = {{-1, 0}, {-2, 1}, {2, 2}, {1, 3}, {0, -1}, {3, -1}, {-3, -1}};
    for (const auto& [code, index] : cases)
        EXPECT_EQ(accidentalGlyphIndex(code), index) << code;
}

int brightness(QRgb c)
{
    return (qRed(c) + qGreen(c) + qBlue(c)) / 3;
}

// Marks land on the strings only if each string is drawn centred on its segment: across the
// string the light of the string must balance around the segment's line, and dark wood lie a
// few pixels away on both sides.
TEST(FingerboardPicture, EveryStringLiesOnItsSegment)
{
    QImage picture(QDir(kDataDir).filePath(QString::fromLatin1(kFingerboardPictureFile)));
    ASSERT_FALSE(picture.isNull());
    for (size_t s = 0; s < kStringNut.size(); ++s) {
        for (int x : {70, 200, 370, 520, 670}) {
            SCOPED_TRACE("string " + std::to_string(s) + " at x " + std::to_string(x));
            const PicPoint a = kStringNut[s];
            const PicPoint b = kStringEnd[s];
            const double y = a.y + double(b.y - a.y) * (x - a.x) / (b.x - a.x);
            const int row = static_cast<int>(std::lround(y));
            double weight = 0.0, moment = 0.0;
            const int wood = brightness(picture.pixel(x, row - 6)) + brightness(picture.pixel(x, row + 6));
            for (int dy = -3; dy <= 3; ++dy) {
                const double light = std::max(0, brightness(picture.pixel(x, row + dy)) - wood / 2);
                weight += light;
                moment += light * (row + dy);
            }
            ASSERT_GT(weight, 150.0);
            EXPECT_NEAR(moment / weight, y, 0.6);
            EXPECT_LT(wood / 2, 90);
        }
    }
}

}  // namespace
}  // namespace tarabix
