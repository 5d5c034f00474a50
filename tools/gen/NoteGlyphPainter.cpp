#include "tools/gen/NoteGlyphPainter.h"

#include <QPainter>

#include <algorithm>
#include <array>

namespace tarabix::gen {

namespace {

constexpr int kHeight = 12;
constexpr int kBaseline = 10;
constexpr int kAccidentalWidth = 8;
// Between the frame and the widest name on each side, and above and below the glyphs.
constexpr int kBoxPadding = 3;
constexpr int kBoxBorder = 1;
constexpr int kLetterAccidentalGap = 2;

const QColor kInk(16, 16, 16);

// In glyph index order: naming system + 2 x letter index.
constexpr std::array<const char*, kLetterGlyphCount> kNames = {
    "C", "Do", "D", "Re", "E", "Mi", "F", "Fa", "G", "Sol", "A", "La", "B", "Si"};

QImage cropToInk(const QImage& image)
{
    int left = image.width(), right = -1;
    for (int x = 0; x < image.width(); ++x) {
        for (int y = 0; y < image.height(); ++y) {
            if (qAlpha(image.pixel(x, y)) != 0) {
                left = std::min(left, x);
                right = std::max(right, x);
            }
        }
    }
    if (right < left)
        return image.copy(0, 0, 1, image.height());
    return image.copy(left, 0, right - left + 1, image.height());
}

QImage letterGlyph(const char* name, const QFont& font)
{
    QImage image(4 * kHeight, kHeight, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter p(&image);
    p.setRenderHint(QPainter::TextAntialiasing);
    p.setFont(font);
    p.setPen(kInk);
    p.drawText(QPointF(2, kBaseline), QString::fromLatin1(name));
    p.end();
    return cropToInk(image);
}

// Drawn pixel by pixel so that they stay crisp at their small size; '#' is ink. Uprights of the
// sharps are thin and their bars thick and rising, as in engraved music.
using AccidentalPixels = std::array<const char*, kHeight>;
constexpr std::array<AccidentalPixels, kAccidentalGlyphCount> kAccidentals = {{
    {".##...##", ".##.##..", ".###....", "###.....", ".##.##..", ".######.", ".###..##", ".##..##.",
     ".##.##..", ".####...", "........", "........"},
    {".##.....", ".##.....", ".##.....", ".##.....", ".##.##..", ".######.", ".###..##", ".##..##.",
     ".##.##..", ".####...", "........", "........"},
    {".....#..", "..#..#..", "..#..#..", "..#.####", "########", "####.#..", "..#..#..", "..#.####",
     "########", "####.#..", "..#..#..", "..#....."},
    {"...#....", "...#....", "...#....", "...####.", ".######.", ".####...", "...#....", "...####.",
     ".######.", ".####...", "...#....", "...#...."},
}};

QImage accidentalGlyph(int index)
{
    QImage image(kAccidentalWidth, kHeight, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    const AccidentalPixels& rows = kAccidentals[static_cast<size_t>(index)];
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kAccidentalWidth; ++x) {
            if (rows[static_cast<size_t>(y)][x] == '#')
                image.setPixel(x, y, kInk.rgb());
        }
    }
    return image;
}

}  // namespace

GlyphStrip paintGlyphStrip(const QFont& letterFont)
{
    std::array<QImage, kLetterGlyphCount> letters;
    GlyphStrip result;
    result.table.height = kHeight;
    result.table.accidentalWidth = kAccidentalWidth;
    int widest = 0;
    for (int i = 0; i < kLetterGlyphCount; ++i) {
        letters[static_cast<size_t>(i)] = letterGlyph(kNames[static_cast<size_t>(i)], letterFont);
        result.table.letterWidths[static_cast<size_t>(i)] = letters[static_cast<size_t>(i)].width();
        widest = std::max(widest, letters[static_cast<size_t>(i)].width());
    }
    result.table.boxWidth = widest + kLetterAccidentalGap + kAccidentalWidth + 2 * (kBoxBorder + kBoxPadding);
    result.table.boxHeight = kHeight + 2 * kBoxBorder;
    result.strip = QImage(result.table.stripWidth(), kHeight, QImage::Format_ARGB32);
    result.strip.fill(Qt::transparent);
    QPainter p(&result.strip);
    p.setCompositionMode(QPainter::CompositionMode_Source);
    for (int i = 0; i < kLetterGlyphCount; ++i)
        p.drawImage(result.table.letterX(i), 0, letters[static_cast<size_t>(i)]);
    for (int i = 0; i < kAccidentalGlyphCount; ++i)
        p.drawImage(result.table.accidentalX(i), 0, accidentalGlyph(i));
    p.end();
    return result;
}

}  // namespace tarabix::gen
