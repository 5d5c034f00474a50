#include "tools/gen/FingerboardPainter.h"

#include "oud/model/FingerboardGeometry.h"
#include "oud/view/UdResources.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QRadialGradient>

#include <algorithm>
#include <array>
#include <cmath>
#include <random>

namespace tarabix::gen {

namespace {

constexpr int kW = kUdPictureWidth;
constexpr int kH = kUdPictureHeight;

struct Segment {
    QPointF a;
    QPointF b;
};

constexpr double kNutX = kStringNut[0].x;
constexpr double kZoneEndX = kStringEnd[0].x;
constexpr double kNutLeft = 52.0;
constexpr double kFingerboardEnd = 708.0;

// Pixel (x, y) covers the square from (x, y) to (x + 1, y + 1); a line through pixel centres is
// centred on the pixels that the marks are centred on.
QPointF centre(int x, int y)
{
    return {x + 0.5, y + 0.5};
}

Segment stringSegment(size_t s)
{
    return {centre(kStringNut[s].x, kStringNut[s].y), centre(kStringEnd[s].x, kStringEnd[s].y)};
}

double yOnLine(const Segment& seg, double x)
{
    return seg.a.y() + (seg.b.y() - seg.a.y()) * (x - seg.a.x()) / (seg.b.x() - seg.a.x());
}

// The fingerboard's long edges run parallel to the outer strings, a little outside them.
const Segment kTopEdge{{kNutX, kStringNut[5].y + 0.5 - 11.0}, {kZoneEndX, kStringEnd[5].y + 0.5 - 14.0}};
const Segment kBottomEdge{{kNutX, kStringNut[0].y + 0.5 + 11.0}, {kZoneEndX, kStringEnd[0].y + 0.5 + 13.0}};

// The round body meets the neck along an arc; the soundboard lies to the right of it.
constexpr double kBodyCentreX = 1000.0;
constexpr double kBodyRadius = 316.0;
constexpr double kMidY = kH / 2.0;

double bodyEdgeX(double y)
{
    const double dy = y - kMidY;
    return kBodyCentreX - std::sqrt(kBodyRadius * kBodyRadius - dy * dy);
}

QPainterPath bodyPath()
{
    QPainterPath p;
    p.addEllipse(QPointF(kBodyCentreX, kMidY), kBodyRadius, kBodyRadius);
    return p;
}

QPainterPath fingerboardPath(double left, double right)
{
    QPainterPath p;
    p.moveTo(left, yOnLine(kTopEdge, left));
    p.lineTo(right - 6.0, yOnLine(kTopEdge, right - 6.0));
    // The fingerboard ends on the soundboard in a shallow round.
    p.quadTo(right + 4.0, kMidY, right - 6.0, yOnLine(kBottomEdge, right - 6.0));
    p.lineTo(left, yOnLine(kBottomEdge, left));
    p.closeSubpath();
    return p;
}

void paintBackdrop(QPainter& p)
{
    QLinearGradient g(0, 0, 0, kH);
    g.setColorAt(0.0, QColor(58, 64, 74));
    g.setColorAt(0.5, QColor(44, 49, 58));
    g.setColorAt(1.0, QColor(30, 34, 41));
    p.fillRect(QRectF(0, 0, kW, kH), g);
}

// Soft shadow of the instrument on the backdrop, built from widening translucent copies.
void paintShadow(QPainter& p, const QPainterPath& shape)
{
    p.setPen(Qt::NoPen);
    for (int i = 6; i >= 1; --i) {
        p.setBrush(QColor(0, 0, 0, 18));
        p.drawPath(shape.translated(i * 0.6, i * 1.1));
    }
}

void paintGrain(QPainter& p, std::mt19937& rng, const QRectF& area, const QColor& base, int lines,
                double amplitude, const Segment& top, const Segment& bottom)
{
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    for (int i = 0; i < lines; ++i) {
        const double v = unit(rng);
        const double phase = unit(rng) * 6.28;
        const double wave = 40.0 + unit(rng) * 160.0;
        const int shade = static_cast<int>((unit(rng) - 0.5) * 50.0);
        QColor c(std::clamp(base.red() + shade, 0, 255), std::clamp(base.green() + shade, 0, 255),
                 std::clamp(base.blue() + shade, 0, 255), 60 + static_cast<int>(unit(rng) * 90));
        QPainterPath line;
        for (double x = area.left(); x <= area.right(); x += 3.0) {
            const double t = yOnLine(top, x);
            const double b = yOnLine(bottom, x);
            const double y = t + v * (b - t) + amplitude * std::sin(x / wave + phase);
            if (x == area.left())
                line.moveTo(x, y);
            else
                line.lineTo(x, y);
        }
        p.setPen(QPen(c, 0.6 + unit(rng) * 0.9));
        p.setBrush(Qt::NoBrush);
        p.drawPath(line);
    }
}

void paintSoundboard(QPainter& p, std::mt19937& rng)
{
    const QPainterPath body = bodyPath();
    p.save();
    p.setClipPath(body);
    QLinearGradient g(bodyEdgeX(kMidY), 0, kW, 0);
    g.setColorAt(0.0, QColor(214, 178, 118));
    g.setColorAt(1.0, QColor(232, 202, 148));
    p.fillRect(QRectF(0, 0, kW, kH), g);
    // Spruce grain runs along the strings: fine, straight, close lines.
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    for (double y = 0.5; y < kH; y += 1.6 + unit(rng) * 2.2) {
        p.setPen(QPen(QColor(170, 126, 70, 40 + static_cast<int>(unit(rng) * 60)), 0.7));
        p.drawLine(QPointF(600, y), QPointF(kW, y + (unit(rng) - 0.5) * 1.5));
    }
    // A hint of the rosette, its rings and carved lattice just entering the picture.
    const QPointF rose(790.0, kMidY);
    p.setBrush(Qt::NoBrush);
    p.setPen(QPen(QColor(120, 70, 30), 3.0));
    p.drawEllipse(rose, 56.0, 56.0);
    p.setPen(QPen(QColor(60, 34, 16), 1.2));
    p.drawEllipse(rose, 51.0, 51.0);
    p.drawEllipse(rose, 61.0, 61.0);
    p.setPen(QPen(QColor(150, 95, 45), 1.4, Qt::DotLine));
    p.drawEllipse(rose, 64.5, 64.5);
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(45, 28, 16));
    for (int ring = 0; ring < 3; ++ring) {
        const double r = 45.0 - ring * 6.0;
        for (int k = 0; k < 40; ++k) {
            const double a = k * 3.14159265 / 20.0 + ring * 0.08;
            p.drawEllipse(QPointF(rose.x() + r * std::cos(a), rose.y() + r * std::sin(a)), 1.8, 1.8);
        }
    }
    p.restore();
    // The edge of the body: dark binding and a light purfling line.
    p.setBrush(Qt::NoBrush);
    p.setPen(QPen(QColor(52, 30, 18), 4.0));
    p.drawPath(body);
    p.setPen(QPen(QColor(240, 226, 196), 1.0));
    p.drawEllipse(QPointF(kBodyCentreX, kMidY), kBodyRadius - 3.2, kBodyRadius - 3.2);
}

void paintPegbox(QPainter& p)
{
    // The pegbox bends back from the nut; from the front we see its top and the peg heads.
    QPainterPath box;
    box.moveTo(kNutLeft, yOnLine(kTopEdge, kNutLeft) + 1.0);
    box.lineTo(0, yOnLine(kTopEdge, 0) + 2.0);
    box.lineTo(0, yOnLine(kBottomEdge, 0) - 2.0);
    box.lineTo(kNutLeft, yOnLine(kBottomEdge, kNutLeft) - 1.0);
    box.closeSubpath();
    paintShadow(p, box);
    QLinearGradient g(0, 30, 0, 160);
    g.setColorAt(0.0, QColor(92, 48, 26));
    g.setColorAt(0.5, QColor(120, 66, 36));
    g.setColorAt(1.0, QColor(78, 40, 22));
    p.setPen(QPen(QColor(40, 20, 10), 1.0));
    p.setBrush(g);
    p.drawPath(box);
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(26, 14, 8));
    p.drawRoundedRect(QRectF(5, 40, 40, 117), 6, 6);
    // Peg heads stand out above and below the box.
    for (int i = 0; i < 3; ++i) {
        const double x = 9.0 + i * 15.0;
        for (const double y : {yOnLine(kTopEdge, x) + 4.0, yOnLine(kBottomEdge, x) - 4.0}) {
            QRadialGradient head(QPointF(x - 1.5, y - 1.5), 6.0);
            head.setColorAt(0.0, QColor(110, 86, 70));
            head.setColorAt(1.0, QColor(22, 16, 12));
            p.setBrush(head);
            p.setPen(QPen(QColor(10, 6, 4), 0.8));
            p.drawEllipse(QPointF(x, y), 5.5, 5.5);
        }
    }
}

void paintFingerboardWood(QPainter& p, std::mt19937& rng)
{
    const QPainterPath board = fingerboardPath(kNutLeft, kFingerboardEnd);
    paintShadow(p, board);
    // The neck's side shows as a thin warm band along the fingerboard's edges.
    p.setPen(QPen(QColor(128, 72, 38), 5.0));
    p.setBrush(Qt::NoBrush);
    p.drawPath(board);
    QLinearGradient across(0, 10, 0, 180);
    across.setColorAt(0.0, QColor(34, 24, 20));
    across.setColorAt(0.45, QColor(56, 40, 32));
    across.setColorAt(1.0, QColor(28, 20, 16));
    p.setPen(Qt::NoPen);
    p.setBrush(across);
    p.drawPath(board);
    p.save();
    p.setClipPath(board);
    paintGrain(p, rng, QRectF(kNutLeft - 5, 0, kFingerboardEnd - kNutLeft + 20, kH), QColor(70, 50, 40), 110,
               1.2, kTopEdge, kBottomEdge);
    p.restore();
    // A bevel along the long edges.
    p.setBrush(Qt::NoBrush);
    p.setPen(QPen(QColor(120, 96, 80, 140), 1.0));
    p.drawLine(QPointF(kNutLeft, yOnLine(kTopEdge, kNutLeft) + 1.0),
               QPointF(kFingerboardEnd - 6.0, yOnLine(kTopEdge, kFingerboardEnd - 6.0) + 1.0));
    p.setPen(QPen(QColor(0, 0, 0, 150), 1.0));
    p.drawLine(QPointF(kNutLeft, yOnLine(kBottomEdge, kNutLeft) - 1.0),
               QPointF(kFingerboardEnd - 6.0, yOnLine(kBottomEdge, kFingerboardEnd - 6.0) - 1.0));
}

void paintNut(QPainter& p)
{
    const double top = yOnLine(kTopEdge, kNutLeft) - 1.0;
    const double bottom = yOnLine(kBottomEdge, kNutLeft) + 1.0;
    QLinearGradient g(kNutLeft, 0, kNutX + 1.0, 0);
    g.setColorAt(0.0, QColor(196, 186, 160));
    g.setColorAt(0.5, QColor(246, 240, 222));
    g.setColorAt(1.0, QColor(176, 166, 140));
    p.setPen(QPen(QColor(90, 80, 60), 0.8));
    p.setBrush(g);
    p.drawRoundedRect(QRectF(kNutLeft, top, kNutX + 1.0 - kNutLeft, bottom - top), 1.5, 1.5);
}

struct Course {
    bool doubled;
    double width;
    QColor colour;
    QColor highlight;
};

// The three lower courses are wound (metal over silk), the upper three plain gut-coloured nylon.
Course courseOf(int s)
{
    if (s == 0)
        return {false, 2.4, QColor(186, 160, 118), QColor(240, 226, 190)};
    if (s <= 2)
        return {true, 1.3, QColor(190, 172, 140), QColor(242, 232, 210)};
    return {true, 1.1, QColor(222, 214, 196), QColor(252, 250, 244)};
}

void paintStrings(QPainter& p)
{
    for (size_t s = 0; s < kStringNut.size(); ++s) {
        const Segment seg = stringSegment(s);
        const Course c = courseOf(static_cast<int>(s));
        // From the peg hole in the pegbox to the right edge, straight through nut and zone end.
        const QPointF from(14.0 + (s % 3) * 12.0, yOnLine(seg, 14.0 + (s % 3) * 12.0));
        const QPointF to(kW + 2.0, yOnLine(seg, kW + 2.0));
        const QPointF along = (to - from) / std::hypot(to.x() - from.x(), to.y() - from.y());
        const QPointF normal(-along.y(), along.x());
        const std::array<double, 2> pair = {-1.35, 1.35};
        const int count = c.doubled ? 2 : 1;
        for (int i = 0; i < count; ++i) {
            const QPointF shift = c.doubled ? normal * pair[static_cast<size_t>(i)] : QPointF();
            p.setPen(QPen(QColor(0, 0, 0, 110), c.width + 0.6, Qt::SolidLine, Qt::FlatCap));
            p.drawLine(from + shift + QPointF(0.8, 1.8), to + shift + QPointF(0.8, 1.8));
            p.setPen(QPen(c.colour, c.width, Qt::SolidLine, Qt::FlatCap));
            p.drawLine(from + shift, to + shift);
            p.setPen(QPen(c.highlight, c.width * 0.35, Qt::SolidLine, Qt::FlatCap));
            p.drawLine(from + shift - normal * (c.width * 0.2), to + shift - normal * (c.width * 0.2));
        }
    }
}

}  // namespace

QImage paintFingerboard()
{
    QImage image(kW, kH, QImage::Format_ARGB32_Premultiplied);
    std::mt19937 rng(743188u);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    paintBackdrop(p);
    paintShadow(p, bodyPath());
    paintSoundboard(p, rng);
    paintPegbox(p);
    paintFingerboardWood(p, rng);
    paintNut(p);
    paintStrings(p);
    p.end();
    return image.convertToFormat(QImage::Format_RGB32);
}

}  // namespace tarabix::gen
