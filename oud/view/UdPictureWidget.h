#pragma once

#include "oud/model/FingerboardGeometry.h"

#include <QImage>
#include <QWidget>

namespace tarabix {

class UdDisplay;

// Shows the displayed fingerboard layer scaled smoothly to the widget, keeping its proportions,
// and reports mouse presses and moves in picture units. Only the parts of the picture that the
// display reports as changed are repainted.
class UdPictureWidget : public QWidget {
    Q_OBJECT
public:
    explicit UdPictureWidget(UdDisplay* display, QWidget* parent = nullptr);

    // Where the picture is drawn inside the widget.
    QRectF pictureArea() const;
    QPointF toPicture(const QPointF& widgetPoint) const;
    QRect toWidget(const QRect& pictureRect) const;

    QSize sizeHint() const override;
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;

signals:
    void picturePressed(tarabix::PicPointF point, Qt::MouseButton button);
    void pictureMoved(tarabix::PicPointF point, Qt::MouseButtons buttons);
    void pictureReleased(tarabix::PicPointF point, Qt::MouseButton button);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    PicPointF pictureUnits(const QPointF& widgetPoint) const;

    UdDisplay* m_display;
};

}  // namespace tarabix
