#include "app/PositionBar.h"

#include <QMouseEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionSlider>

#include <algorithm>

namespace tarabix {

namespace {

constexpr int32_t kMsPerStep = 1000;  // the bar counts seconds
constexpr int32_t kShortestDragMs = 100;

}  // namespace

PositionBar::PositionBar(QWidget* parent) : QSlider(Qt::Horizontal, parent)
{
    setToolTip(tr("Position in the piece (seconds). Drag with Shift held to choose a loop."));
}

void PositionBar::setLoopRange(std::optional<Range> range)
{
    m_loop = range;
    update();
}

// Where the handle's centre can stand: the style's own groove less the handle, so a time maps to
// the bar as the handle would show it, at millisecond resolution.
PositionBar::Travel PositionBar::travel() const
{
    QStyleOptionSlider opt;
    initStyleOption(&opt);
    const QRect groove = style()->subControlRect(QStyle::CC_Slider, &opt, QStyle::SC_SliderGroove, this);
    const QRect handle = style()->subControlRect(QStyle::CC_Slider, &opt, QStyle::SC_SliderHandle, this);
    return {groove.x() + handle.width() / 2, groove.width() - handle.width()};
}

int PositionBar::xAt(int32_t ms) const
{
    const Travel t = travel();
    return t.start + QStyle::sliderPositionFromValue(minimum() * kMsPerStep, maximum() * kMsPerStep, ms, t.span);
}

int32_t PositionBar::msAt(int x) const
{
    const Travel t = travel();
    return QStyle::sliderValueFromPosition(minimum() * kMsPerStep, maximum() * kMsPerStep, x - t.start, t.span);
}

void PositionBar::paintEvent(QPaintEvent* event)
{
    QSlider::paintEvent(event);
    std::optional<Range> shown = m_loop;
    if (m_dragFromMs)
        shown = Range{std::min(*m_dragFromMs, m_dragToMs), std::max(*m_dragFromMs, m_dragToMs)};
    if (!shown || maximum() <= minimum())
        return;
    QPainter painter(this);
    const int left = xAt(shown->fromMs);
    const int right = std::max(xAt(shown->toMs), left + 2);
    const int band = std::max(6, height() / 4);
    const QRect rect(left, (height() - band) / 2, right - left, band);
    painter.fillRect(rect, QColor(0xCE, 0xDC, 0x08, 170));  // the Play button's colour
    painter.setPen(QColor(0x83, 0x3C, 0x11));
    painter.drawLine(left, rect.top() - 3, left, rect.bottom() + 3);
    painter.drawLine(right, rect.top() - 3, right, rect.bottom() + 3);
}

void PositionBar::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && (event->modifiers() & Qt::ShiftModifier)) {
        m_dragFromMs = msAt(event->position().toPoint().x());
        m_dragToMs = *m_dragFromMs;
        event->accept();
        update();
        return;
    }
    QSlider::mousePressEvent(event);
}

void PositionBar::mouseMoveEvent(QMouseEvent* event)
{
    if (m_dragFromMs) {
        m_dragToMs = msAt(event->position().toPoint().x());
        event->accept();
        update();
        return;
    }
    QSlider::mouseMoveEvent(event);
}

void PositionBar::mouseReleaseEvent(QMouseEvent* event)
{
    if (m_dragFromMs) {
        m_dragToMs = msAt(event->position().toPoint().x());
        const int32_t from = std::min(*m_dragFromMs, m_dragToMs);
        const int32_t to = std::max(*m_dragFromMs, m_dragToMs);
        m_dragFromMs.reset();
        event->accept();
        update();
        if (to - from >= kShortestDragMs)
            emit rangeDragged(from, to);
        return;
    }
    QSlider::mouseReleaseEvent(event);
}

}  // namespace tarabix
