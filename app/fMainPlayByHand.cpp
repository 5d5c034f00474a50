// The window's share of playing by hand: the hand player over the fingerboard, the keys that reach
// it from anywhere in the window, and the spinner that moves its key rows. What a press or a key
// sounds and marks is the hand player's (HandPlayer.cpp).
#include "app/fMain.h"

#include "app/HandPlayer.h"
#include "oud/view/UdPictureWidget.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMenuBar>
#include <QSpinBox>

namespace tarabix {

void fMain::connectPlayByHand()
{
    m_hand = std::make_unique<HandPlayer>(m_oud, m_display.get(), m_fingerboard);
    m_hand->velocity = [this] { return m_router.volume(); };
    m_hand->showRangeSide = [this](int32_t side) { showRangeSide(side); };
    // The spinner only gives a direction; it always returns to 0. Its first use shows hidden
    // guides rather than moving rows the learner cannot see.
    connect(udKbDownShift, &QSpinBox::valueChanged, this, [this](int value) {
        if (value == 0)
            return;
        m_fingerboard->setFocus();
        if (m_hand->options().showKbGuides)
            m_hand->moveRows(value < 0 ? 1 : -1);
        else
            m_hand->showKeyGuides(true);
        const QSignalBlocker block(udKbDownShift);
        udKbDownShift->setValue(0);
    });
    // Grid keys reach the window whichever control has the focus, as the learner expects of a
    // keyboard that plays.
    qApp->installEventFilter(this);
}

bool fMain::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease) {
        auto* widget = qobject_cast<QWidget*>(watched);
        // The menu bar keeps its keys while the learner walks its menus: the Esc that closes a
        // menu, or leaves the bar, moves no key rows.
        const bool menuBar = qobject_cast<QMenuBar*>(watched) != nullptr;
        if (widget && widget->window() == this && widget != this && !menuBar) {
            auto* key = static_cast<QKeyEvent*>(event);
            if (handleGridKey(key, event->type() == QEvent::KeyPress))
                return true;
        }
    }
    return QMainWindow::eventFilter(watched, event);
}

void fMain::keyPressEvent(QKeyEvent* event)
{
    if (!handleGridKey(event, true))
        QMainWindow::keyPressEvent(event);
}

void fMain::keyReleaseEvent(QKeyEvent* event)
{
    if (!handleGridKey(event, false))
        QMainWindow::keyReleaseEvent(event);
}

// True when the key was the grid's and is consumed.
bool fMain::handleGridKey(QKeyEvent* event, bool down)
{
    return m_formLoaded && m_hand && m_hand->key(*event, down);
}

}  // namespace tarabix
