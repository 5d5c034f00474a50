#include "tools/gen/MarkStripPainter.h"

#include <QPainter>
#include <QRadialGradient>

#include <array>

namespace tarabix::gen {

namespace {

// Odd so that a mark has a centre pixel; as large as the closest strings at the nut allow.
constexpr int kCell = 17;
constexpr int kCentre = kCell / 2;
const QColor kKey(255, 0, 255);

struct FingerStyle {
    QColor fill;
    QColor digit;
};

// Open string white, then blue, green, orange and red for the index to the little finger.
constexpr std::array<std::array<int, 6>, 5> kFingers = {{
    {250, 250, 246, 30, 30, 30},
    {38, 112, 232, 255, 255, 255},
    {28, 160, 64, 255, 255, 255},
    {250, 150, 20, 30, 20, 0},
    {218, 32, 58, 255, 255, 255},
}};

FingerStyle fingerStyle(int finger)
{
    const auto& f = kFingers[static_cast<size_t>(finger)];
    return {QColor(f[0], f[1], f[2]), QColor(f[3], f[4], f[5])};
}

// Edge pixels are blended into the key colour's place as partial alpha so that the marks stay
// round on any wood; fully outside pixels keep the key colour itself.
void keyOutside(QImage& cell)
{
    for (int y = 0; y < cell.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(cell.scanLine(y));
        for (int x = 0; x < cell.width(); ++x) {
            if (qAlpha(line[x]) == 0)
                line[x] = kKey.rgb();
        }
    }
}

QImage fingerCell(int finger, const QFont& digitFont)
{
    QImage cell(kCell, kCell, QImage::Format_ARGB32_Premultiplied);
    cell.fill(Qt::transparent);
    const FingerStyle style = fingerStyle(finger);
    QPainter p(&cell);
    p.setRenderHint(QPainter::Antialiasing);
    const QPointF c(kCentre + 0.5, kCentre + 0.5);
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(20, 12, 8));
    p.drawEllipse(c, 8.4, 8.4);
    QRadialGradient g(c - QPointF(2.5, 2.5), 9.0);
    g.setColorAt(0.0, style.fill.lighter(135));
    g.setColorAt(1.0, style.fill);
    p.setBrush(g);
    p.setPen(QPen(QColor(255, 255, 255, 200), 1.0));
    p.drawEllipse(c, 7.0, 7.0);
    p.setRenderHint(QPainter::TextAntialiasing);
    p.setFont(digitFont);
    p.setPen(style.digit);
    p.drawText(QRectF(0, 0.5, kCell + 1, kCell), Qt::AlignCenter, QString::number(finger));
    p.end();
    return cell;
}

// Shown all over the fingerboard at rest, so it stays small and quiet: a pale ring with a dark
// rim that sounding marks cover completely.
QImage restingCell()
{
    QImage cell(kCell, kCell, QImage::Format_ARGB32_Premultiplied);
    cell.fill(Qt::transparent);
    QPainter p(&cell);
    p.setRenderHint(QPainter::Antialiasing);
    const QPointF c(kCentre + 0.5, kCentre + 0.5);
    p.setPen(QPen(QColor(30, 20, 14), 1.0));
    p.setBrush(QColor(221, 190, 165));
    p.drawEllipse(c, 4.2, 4.2);
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(150, 110, 80));
    p.drawEllipse(c, 1.3, 1.3);
    p.end();
    return cell;
}

}  // namespace

MarkStrip paintMarkStrip(const QFont& digitFont)
{
    MarkStrip result;
    result.strip = QImage(kCell * kMarkCellCount, kCell, QImage::Format_ARGB32);
    result.strip.fill(Qt::transparent);
    QPainter p(&result.strip);
    p.setCompositionMode(QPainter::CompositionMode_Source);
    for (int cell = 0; cell < kMarkCellCount; ++cell) {
        const QImage image = cell == kRestingMarkCell ? restingCell() : fingerCell(cell, digitFont);
        p.drawImage(cell * kCell, 0, image);
        result.table[static_cast<size_t>(cell)] = MarkRecord{kKey.rgb(), kCentre, kCentre};
    }
    p.end();
    keyOutside(result.strip);
    return result;
}

}  // namespace tarabix::gen
