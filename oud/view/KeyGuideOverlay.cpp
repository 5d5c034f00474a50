#include "oud/view/KeyGuideOverlay.h"

#include "oud/model/mUdCtrl.h"
#include "oud/view/KeyGrid.h"
#include "oud/view/UdDisplay.h"
#include "oud/view/UdPictureWidget.h"

#include <QEvent>
#include <QPainter>

namespace tarabix {

KeyGuideOverlay::KeyGuideOverlay(UdPictureWidget* board, const mUdCtrl* model, const UdDisplay* display)
    : QWidget(board)
    , m_board(board)
    , m_model(model)
    , m_display(display)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setAttribute(Qt::WA_NoSystemBackground);
    setGeometry(board->rect());
    board->installEventFilter(this);
}

void KeyGuideOverlay::setGrid(int stringShift, int positionShift, bool skipTopString)
{
    m_stringShift = stringShift;
    m_positionShift = positionShift;
    m_skipTopString = skipTopString;
    update();
}

bool KeyGuideOverlay::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_board && event->type() == QEvent::Resize)
        setGeometry(m_board->rect());
    return QWidget::eventFilter(watched, event);
}

void KeyGuideOverlay::paintEvent(QPaintEvent*)
{
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    QFont font = p.font();
    font.setPixelSize(qBound(8, int(m_board->pictureArea().height() / 20), 14));
    font.setBold(true);
    p.setFont(font);
    const QFontMetrics metrics(font);
    const QRectF area = m_board->pictureArea();
    const QSizeF picture = m_display->picUd().size();
    if (area.isEmpty() || picture.isEmpty())
        return;

    for (int row = 0; row < kKeyGridRows; ++row) {
        for (int column = 0; column < kKeyGridColumns[row]; ++column) {
            const FoundPitch pitch = m_model->pitchAtGridCell({row, column}, m_stringShift, m_positionShift,
                                                              m_model->orientation(), m_skipTopString);
            if (!pitch.found())
                continue;
            // At the cell's own string, even where the display shows that pitch on a higher one.
            const std::optional<PicPoint> at = m_model->stringStopPoint(pitch.string, pitch.position);
            if (!at)
                continue;
            const QPoint centre(int(area.left() + (at->x + 0.5) * area.width() / picture.width()),
                                int(area.top() + (at->y + 0.5) * area.height() / picture.height()));
            const QString caption = keyGridCaption({column, row});
            // Above-left of the stopping place, so the mark of a sounding note stays readable.
            QRect box(0, 0, metrics.horizontalAdvance(caption) + 4, metrics.height());
            box.moveBottomRight(centre + QPoint(-3, -3));
            p.setPen(Qt::NoPen);
            p.setBrush(QColor(255, 255, 255, 150));
            p.drawRoundedRect(box, 3, 3);
            p.setPen(QColor(40, 40, 90));
            p.drawText(box, Qt::AlignCenter, caption);
        }
    }
}

}  // namespace tarabix
