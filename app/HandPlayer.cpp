#include "app/HandPlayer.h"

#include "base/Rounding.h"
#include "base/TickSource.h"
#include "oud/model/mUdCtrl.h"
#include "oud/view/KeyGuideOverlay.h"
#include "oud/view/UdDisplay.h"
#include "oud/view/UdPictureWidget.h"
#include "playback/PieceRouter.h"
#include "playback/mMidiMain.h"

#include <QCoreApplication>
#include <QKeyEvent>

#include <thread>

namespace tarabix {
namespace {

// How far from a string, in picture units, a click still stops it.
constexpr double kMouseRadius = 8.0;
// The rows never move along the strings: their first key is always the open string.
constexpr int32_t kRowsPositionShift = 0;

}  // namespace

HandPlayer::HandPlayer(mUdCtrl& oud, UdDisplay* display, UdPictureWidget* board, QObject* parent)
    : QObject(parent), m_oud(oud), m_display(display), m_board(board)
{
    velocity = [] { return PieceRouter::kDefaultVolume; };
    if (!board)
        return;
    connect(board, &UdPictureWidget::picturePressed, this, &HandPlayer::press);
    connect(board, &UdPictureWidget::pictureMoved, this, &HandPlayer::move);
    connect(board, &UdPictureWidget::pictureReleased, this,
            [this](PicPointF, Qt::MouseButton button) { release(button); });
    m_guides = new KeyGuideOverlay(board, &m_oud, display);
    m_guides->setVisible(false);
}

void HandPlayer::setOptions(const HandPlayOptions& options)
{
    m_options = options;
    showKeyGuides(options.showKbGuides);
}

void HandPlayer::showKeyGuides(bool show)
{
    m_options.showKbGuides = show;
    updateGuides();
    if (m_guides)
        m_guides->setVisible(show);
}

void HandPlayer::updateGuides()
{
    if (m_guides)
        m_guides->setGrid(m_rowsDownShift, kRowsPositionShift, m_oud.curNumStrings() < kMaxStrings);
}

void HandPlayer::moveRows(int delta)
{
    const int32_t shifted = m_rowsDownShift + delta;
    if (shifted < 0 || shifted >= 3)
        return;
    m_rowsDownShift = shifted;
    updateGuides();
}

void HandPlayer::focusBoard()
{
    if (m_board)
        m_board->setFocus();
}

bool HandPlayer::holdsNote() const
{
    if (m_mouse.sounding())
        return true;
    for (const auto& row : m_keys)
        for (const Held& held : row)
            if (held.sounding())
                return true;
    return false;
}

// The mark goes up and is painted before the note sounds, so eye and ear meet. The window stays
// alive meanwhile, and may take the release of this very note: then nothing more is sent.
void HandPlayer::strike(Held& held, const FoundPitch& pitch)
{
    const uint32_t id = ++m_strikes;
    held = {pitch.note, pitch.cents, m_options.playHilite && m_display, id};
    if (held.marked) {
        const int32_t side = m_display->noteOnDisplay(pitch.note, pitch.cents, true);
        if (side != 0 && showRangeSide)
            showRangeSide(side);
    }
    QCoreApplication::processEvents();
    QCoreApplication::processEvents();
    const auto stillHeld = [&held, id] { return held.strike == id && held.sounding(); };
    if (!stillHeld())
        return;
    const int loudness = velocity();
    midiNoteOn(kChannel, pitch.note, pitch.cents, loudness);
    // A course of two strings is struck twice; the lowest string is single.
    if (!m_options.doubling || pitch.string == 0)
        return;
    waitPumping(m_options.doubleOnMs);
    if (!stillHeld())
        return;
    midiNoteOff(kChannel, pitch.note);
    waitPumping(m_options.doubleOffMs);
    if (stillHeld())
        midiNoteOn(kChannel, pitch.note, pitch.cents, loudness);
}

void HandPlayer::lift(Held& held)
{
    if (!held.sounding())
        return;
    const Held was = held;
    held = {};
    midiNoteOff(kChannel, was.note);
    if (was.marked && m_display && m_display->noteOffDisplay(was.note, was.cents, true) && showRangeSide)
        showRangeSide(0);
}

// The doubling gaps are a few milliseconds: a short busy wait that keeps the window alive.
void HandPlayer::waitPumping(int32_t ms)
{
    const int32_t end = tickMs() + ms;
    while (tickMs() < end) {
        QCoreApplication::processEvents();
        std::this_thread::yield();
    }
}

void HandPlayer::press(PicPointF point, Qt::MouseButton button)
{
    if (button != Qt::LeftButton)
        return;
    focusBoard();
    // A second press without a release between (a lost release, a touch screen): the first finger
    // has left its string.
    lift(m_mouse);
    const FoundPitch pitch = m_oud.pitchAtPoint(point, m_options.approxQrt, kMouseRadius);
    if (!pitch.found())
        return;
    m_lastMousePoint = point;
    strike(m_mouse, pitch);
}

void HandPlayer::release(Qt::MouseButton button)
{
    if (button == Qt::LeftButton)
        lift(m_mouse);
}

void HandPlayer::move(PicPointF point, Qt::MouseButtons buttons)
{
    if (!(buttons & Qt::LeftButton) || !m_options.playMouseMove)
        return;
    const double dx = roundHalfEven(point.x - m_lastMousePoint.x);
    const double dy = roundHalfEven(point.y - m_lastMousePoint.y);
    // Sliding along a string re-strikes the note at each new place: 5 units across or 4 up/down.
    if (dx * dx >= 25 || dy * dy >= 16)
        press(point, Qt::LeftButton);
}

bool HandPlayer::key(const QKeyEvent& event, bool down)
{
    const Qt::KeyboardModifiers mods = event.modifiers() & ~(Qt::KeypadModifier | Qt::ShiftModifier);
    if (mods != Qt::NoModifier)
        return false;  // Ctrl+U and the menus' shortcuts stay theirs
    const int key = event.key();
    const bool rowsUp = key == Qt::Key_Escape || key == Qt::Key_Up;
    const bool rowsDown = key == Qt::Key_Down || isKeyLeftOfOne(event);
    if (rowsUp || rowsDown) {
        // Consumed whoever has the focus: a slider or list must not take the same press as well.
        if (down && !event.isAutoRepeat())
            moveRows(rowsUp ? -1 : +1);
        return true;
    }
    const KeyGridCell cell = keyGridCell(event);
    if (!cell.valid() || cell.row >= kKeyGridRows || cell.column >= kKeyGridColumns[0])
        return false;
    focusBoard();
    Held& held = m_keys[static_cast<size_t>(cell.row)][static_cast<size_t>(cell.column)];
    if (!down) {
        if (!event.isAutoRepeat())
            lift(held);
        return true;
    }
    if (held.sounding())
        return true;  // the system repeating a held key
    const FoundPitch pitch = m_oud.pitchAtGridCell({cell.row, cell.column}, m_rowsDownShift, kRowsPositionShift,
                                                   m_oud.orientation(), m_oud.curNumStrings() < kMaxStrings);
    if (pitch.note >= 0)
        strike(held, pitch);
    return true;
}

}  // namespace tarabix
