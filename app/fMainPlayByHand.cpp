// Playing single notes by hand: the left mouse button on the fingerboard and four rows of the
// computer keyboard. Every note goes to channel 0 at the window's volume.
#include "app/fMain.h"

#include "base/Rounding.h"
#include "base/TickSource.h"
#include "oud/view/KeyGrid.h"
#include "oud/view/KeyGuideOverlay.h"
#include "oud/view/UdPictureWidget.h"
#include "playback/mMidiMain.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMenuBar>
#include <QSpinBox>

#include <thread>

namespace tarabix {
namespace {

constexpr int kHandChannel = 0;
constexpr double kMouseRadius = 8.0;

}  // namespace

void fMain::connectPlayByHand()
{
    connect(m_fingerboard, &UdPictureWidget::picturePressed, this, &fMain::fingerboardPressed);
    connect(m_fingerboard, &UdPictureWidget::pictureMoved, this, &fMain::fingerboardMoved);
    connect(m_fingerboard, &UdPictureWidget::pictureReleased, this, &fMain::fingerboardReleased);
    m_keyGuides = new KeyGuideOverlay(m_fingerboard, &m_oud, m_display.get());
    m_keyGuides->setVisible(false);
    // The spinner only gives a direction; it always returns to 0.
    connect(udKbDownShift, &QSpinBox::valueChanged, this, [this](int value) {
        if (value == 0)
            return;
        m_fingerboard->setFocus();
        if (m_kbLabelsShown)
            shiftKeyboard(value < 0 ? 1 : -1);
        else
            showHideKbLabels(true);
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
    if (!m_formLoaded || !m_fingerboard)
        return false;
    const Qt::KeyboardModifiers mods = event->modifiers() & ~(Qt::KeypadModifier | Qt::ShiftModifier);
    if (mods != Qt::NoModifier)
        return false;  // Ctrl+U and the menus' shortcuts stay theirs
    const int key = event->key();
    const bool rowsUp = key == Qt::Key_Escape || key == Qt::Key_Up;
    const bool rowsDown = key == Qt::Key_Down || isKeyLeftOfOne(*event);
    if (rowsUp || rowsDown) {
        // Consumed whoever has the focus: a slider or list must not take the same press as well.
        if (down && !event->isAutoRepeat())
            shiftKeyboard(rowsUp ? -1 : +1);
        return true;
    }
    const KeyGridCell cell = keyGridCell(*event);
    if (!cell.valid())
        return false;
    m_fingerboard->setFocus();
    const FoundPitch pitch = m_oud.pitchAtGridCell({cell.row, cell.column}, m_kbDownShift, m_kbPositionShift,
                                                   m_oud.orientation(), m_oud.curNumStrings() < kMaxStrings);
    if (pitch.note < 0)
        return true;
    bool& isDown = m_keysDown[cell.column][cell.row];
    if (down) {
        if (isDown)
            return true;
        isDown = true;
        if (m_mkbDoubling && pitch.string != 0)
            playNoteDoubled(kHandChannel, pitch.note, pitch.cents, m_router.volume(), m_mkbPlayHilite);
        else
            playNote(kHandChannel, pitch.note, pitch.cents, m_router.volume(), m_mkbPlayHilite);
    } else if (!event->isAutoRepeat()) {
        isDown = false;
        stopNote(kHandChannel, pitch.note, pitch.cents, m_mkbPlayHilite);
    }
    return true;
}

bool fMain::handHoldsNote() const
{
    if (m_mouseNote >= 0)
        return true;
    for (const auto& column : m_keysDown)
        for (bool down : column)
            if (down)
                return true;
    return false;
}

void fMain::shiftKeyboard(int delta)
{
    const int32_t shifted = m_kbDownShift + delta;
    if (shifted < 0 || shifted >= 3)
        return;
    m_kbDownShift = shifted;
    if (m_keyGuides)
        m_keyGuides->setGrid(m_kbDownShift, m_kbPositionShift, m_oud.curNumStrings() < kMaxStrings);
    const QSignalBlocker block(udKbDownShift);
    udKbDownShift->setValue(0);
}

void fMain::showHideKbLabels(bool show)
{
    m_kbLabelsShown = show;
    if (!m_keyGuides)
        return;
    m_keyGuides->setGrid(m_kbDownShift, m_kbPositionShift, m_oud.curNumStrings() < kMaxStrings);
    m_keyGuides->setVisible(show);
}

void fMain::playNote(int ch, int32_t note, int32_t cents, int velocity, bool highlight)
{
    if (highlight && m_display) {
        const int32_t side = m_display->noteOnDisplay(note, cents, true);
        if (side != 0)
            showRangeSide(side);
    }
    QCoreApplication::processEvents();
    QCoreApplication::processEvents();
    midiNoteOn(ch, note, cents, velocity);
}

void fMain::playNoteDoubled(int ch, int32_t note, int32_t cents, int velocity, bool highlight)
{
    playNote(ch, note, cents, velocity, highlight);
    waitPumping(m_mkbDblOn1MS);
    midiNoteOff(ch, note);
    waitPumping(m_mkbDblOffMS);
    midiNoteOn(ch, note, cents, velocity);
}

void fMain::stopNote(int ch, int32_t note, int32_t cents, bool highlight)
{
    midiNoteOff(ch, note);
    if (highlight && m_display && m_display->noteOffDisplay(note, cents, true))
        showRangeSide(0);
}

// The doubling delays are a few milliseconds: a short busy wait that keeps the window alive.
void fMain::waitPumping(int32_t ms)
{
    const int32_t end = tickMs() + ms;
    while (tickMs() < end) {
        QCoreApplication::processEvents();
        std::this_thread::yield();
    }
}

void fMain::fingerboardPressed(PicPointF point, Qt::MouseButton button)
{
    if (button != Qt::LeftButton)
        return;
    m_fingerboard->setFocus();
    const FoundPitch pitch = m_oud.pitchAtPoint(point, m_approxQrt, kMouseRadius);
    if (!pitch.found())
        return;
    m_mouseNote = pitch.note;
    m_mouseCents = pitch.cents;
    m_lastMousePoint = point;
    if (m_mkbDoubling && pitch.string != 0)
        playNoteDoubled(kHandChannel, pitch.note, pitch.cents, m_router.volume(), m_mkbPlayHilite);
    else
        playNote(kHandChannel, pitch.note, pitch.cents, m_router.volume(), m_mkbPlayHilite);
}

void fMain::fingerboardReleased(PicPointF, Qt::MouseButton button)
{
    if (button != Qt::LeftButton || m_mouseNote < 0)
        return;
    stopNote(kHandChannel, m_mouseNote, m_mouseCents, m_mkbPlayHilite);
    m_mouseNote = -1;
}

void fMain::fingerboardMoved(PicPointF point, Qt::MouseButtons buttons)
{
    if (!(buttons & Qt::LeftButton) || !m_playMouseMove)
        return;
    const double dx = roundHalfEven(point.x - m_lastMousePoint.x);
    const double dy = roundHalfEven(point.y - m_lastMousePoint.y);
    // Sliding along a string re-strikes the note at each new place: 5 units across or 4 up/down.
    if (dx * dx >= 25 || dy * dy >= 16) {
        fingerboardReleased(point, Qt::LeftButton);
        fingerboardPressed(point, Qt::LeftButton);
    }
}

}  // namespace tarabix
