#include "oud/view/UdPictureWidget.h"

#include "oud/view/UdDisplay.h"

#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>

#include <cmath>

namespace tarabix {

UdPictureWidget::UdPictureWidget(UdDisplay* display, QWidget* parent)
    : QWidget(parent)
    , m_display(display)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    m_display->onChanged = [this](const QRect& rect) { update(toWidget(rect)); };
}

QSize UdPictureWidget::sizeHint() const
{
    return m_display->picUd().size();
}

int UdPictureWidget::heightForWidth(int width) const
{
    const QSize picture = m_display->picUd().size();
    return picture.width() > 0 ? width * picture.height() / picture.width() : 0;
}

QRectF UdPictureWidget::pictureArea() const
{
    const QSizeF picture = m_display->picUd().size();
    if (picture.isEmpty() || width() <= 0 || height() <= 0)
        return QRectF();
    const QSizeF shown = picture.scaled(size(), Qt::KeepAspectRatio);
    return QRectF(QPointF((width() - shown.width()) / 2.0, (height() - shown.height()) / 2.0), shown);
}

QPointF UdPictureWidget::toPicture(const QPointF& widgetPoint) const
{
    const QRectF area = pictureArea();
    if (area.isEmpty())
        return QPointF();
    const QSizeF picture = m_display->picUd().size();
    // A mouse position names a whole widget pixel; its centre is mapped, and picture pixel x is
    // centred on x + 0.5, so at scale 1 a point maps to the same pixel.
    return QPointF((widgetPoint.x() + 0.5 - area.left()) * picture.width() / area.width() - 0.5,
                   (widgetPoint.y() + 0.5 - area.top()) * picture.height() / area.height() - 0.5);
}

QRect UdPictureWidget::toWidget(const QRect& pictureRect) const
{
    const QRectF area = pictureArea();
    const QSizeF picture = m_display->picUd().size();
    if (area.isEmpty())
        return QRect();
    const double sx = area.width() / picture.width();
    const double sy = area.height() / picture.height();
    // One pixel of margin: smooth scaling blends each picture pixel into its neighbours.
    const double left = std::floor(area.left() + (pictureRect.left() - 1) * sx);
    const double top = std::floor(area.top() + (pictureRect.top() - 1) * sy);
    const double right = std::ceil(area.left() + (pictureRect.right() + 2) * sx);
    const double bottom = std::ceil(area.top() + (pictureRect.bottom() + 2) * sy);
    return QRect(QPoint(int(left), int(top)), QPoint(int(right), int(bottom))).intersected(rect());
}

void UdPictureWidget::paintEvent(QPaintEvent* event)
{
    QPainter p(this);
    p.setClipRegion(event->region());
    const QRectF area = pictureArea();
    p.fillRect(rect(), palette().window());
    p.setRenderHint(QPainter::SmoothPixmapTransform);
    p.drawImage(area, m_display->picUd());
}

PicPointF UdPictureWidget::pictureUnits(const QPointF& widgetPoint) const
{
    const QPointF p = toPicture(widgetPoint);
    return PicPointF{p.x(), p.y()};
}

void UdPictureWidget::mousePressEvent(QMouseEvent* event)
{
    emit picturePressed(pictureUnits(event->position()), event->button());
}

void UdPictureWidget::mouseMoveEvent(QMouseEvent* event)
{
    emit pictureMoved(pictureUnits(event->position()), event->buttons());
}

void UdPictureWidget::mouseReleaseEvent(QMouseEvent* event)
{
    emit pictureReleased(pictureUnits(event->position()), event->button());
}

}  // namespace tarabix
