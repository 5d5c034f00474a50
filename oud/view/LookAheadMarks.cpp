#include "oud/view/LookAheadMarks.h"

#include <QFont>
#include <QPainter>
#include <QPainterPath>

namespace tarabix {

namespace {

// A pale blue ring between dark edges reads on the dark wood and on the white name labels alike.
const QColor kRing(150, 220, 255);
const QColor kEdge(0, 18, 40, 220);
const QColor kInside(0, 18, 40, 150);  // darkens what lies beneath, so the number reads on a label
constexpr double kFaintest = 0.35;
constexpr double kStrongest = 1.0;
constexpr double kDigitFaintest = 0.75;

}  // namespace

int32_t lookAheadLevel(int32_t msUntilHeard, int32_t fadeMs)
{
    if (msUntilHeard <= 0)
        return kLookAheadLevels;
    if (fadeMs <= 0 || msUntilHeard >= fadeMs)
        return 1;
    const int64_t step = static_cast<int64_t>(msUntilHeard) * (kLookAheadLevels - 1) / fadeMs;
    return kLookAheadLevels - static_cast<int32_t>(step);
}

QImage lookAheadPicture(int32_t moment, int32_t level, QSize size)
{
    QImage picture(size, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    QPainter p(&picture);
    p.setRenderHint(QPainter::Antialiasing);
    const double nearness = static_cast<double>(level - 1) / (kLookAheadLevels - 1);
    p.setOpacity(kFaintest + (kStrongest - kFaintest) * nearness);
    const QRectF ring = QRectF(picture.rect()).adjusted(1.8, 1.8, -1.8, -1.8);
    p.setPen(QPen(kEdge, 3.4));
    p.setBrush(kInside);
    p.drawEllipse(ring);
    p.setPen(QPen(kRing, 1.6));
    p.setBrush(Qt::NoBrush);
    p.drawEllipse(ring);

    // The number stays readable while the ring is faint, on the wood and on a white label alike:
    // white with a dark edge.
    QFont font;
    font.setPixelSize(size.height() / 2);
    font.setBold(true);
    QPainterPath digit;
    digit.addText(0.0, 0.0, font, QString::number(moment));
    const QRectF box = digit.boundingRect();
    digit.translate(QRectF(picture.rect()).center() - box.center());
    p.setOpacity(kDigitFaintest + (kStrongest - kDigitFaintest) * nearness);
    p.setPen(QPen(kEdge, 2.4));
    p.setBrush(Qt::NoBrush);
    p.drawPath(digit);
    p.setPen(Qt::NoPen);
    p.setBrush(Qt::white);
    p.drawPath(digit);
    p.end();
    return picture;
}

}  // namespace tarabix
