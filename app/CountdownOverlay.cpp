#include "app/CountdownOverlay.h"

#include <QEvent>

namespace tarabix {

CountdownOverlay::CountdownOverlay(QWidget* over) : QLabel(over)
{
    setAlignment(Qt::AlignCenter);
    setStyleSheet(QStringLiteral("QLabel { color: white; background: rgba(40, 20, 8, 170); border-radius: 12px;"
                                 " font-size: 48px; font-weight: bold; padding: 4px 24px; }"));
    setAttribute(Qt::WA_TransparentForMouseEvents);  // the fingerboard stays playable under it
    over->installEventFilter(this);
    hide();
}

void CountdownOverlay::showCount(const QString& text)
{
    setText(text);
    adjustSize();
    centre();
    raise();
    show();
}

bool CountdownOverlay::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == parent() && event->type() == QEvent::Resize)
        centre();
    return QLabel::eventFilter(watched, event);
}

void CountdownOverlay::centre()
{
    const QWidget* over = parentWidget();
    move((over->width() - width()) / 2, (over->height() - height()) / 2);
}

}  // namespace tarabix
