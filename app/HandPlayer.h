#pragma once

#include "app/HandPlayOptions.h"
#include "oud/model/FingerboardGeometry.h"
#include "oud/view/KeyGrid.h"

#include <QObject>

#include <array>
#include <cstdint>
#include <functional>

class QKeyEvent;

namespace tarabix {

class KeyGuideOverlay;
class UdDisplay;
class UdPictureWidget;
class mUdCtrl;
struct FoundPitch;

// Playing single notes by hand: the left mouse button on the fingerboard and four rows of the
// computer keyboard, by physical key position. Every note goes to channel 0 of the MIDI output at
// the window's volume, marked on the fingerboard first when the learner wants it. A release stops
// exactly what its press struck, whatever has moved since (the key rows, the tuning), and takes
// off only a mark the press put up.
//
// Which keys reach it, and from which widgets, is the window's business.
class HandPlayer : public QObject {
    Q_OBJECT
public:
    static constexpr int kChannel = 0;

    // Follows the mouse on `board` and lays the key guides over it; without a board (tests) the
    // calls below are the only way in. `display` may be null: nothing is marked then.
    HandPlayer(mUdCtrl& oud, UdDisplay* display, UdPictureWidget* board, QObject* parent = nullptr);

    void setOptions(const HandPlayOptions& options);
    const HandPlayOptions& options() const { return m_options; }

    // The velocity of each strike: the window's volume.
    std::function<int()> velocity;
    // The side of a marked note that lies off the instrument (kRangeBelow, kRangeAbove), and 0 once
    // a marked note is released.
    std::function<void(int32_t side)> showRangeSide;

    void press(PicPointF point, Qt::MouseButton button);
    void move(PicPointF point, Qt::MouseButtons buttons);
    void release(Qt::MouseButton button);

    // A key press or release; true when the key belongs to the grid (a note, or a move of the rows)
    // and must go nowhere else.
    bool key(const QKeyEvent& event, bool down);

    // Which strings the four rows lie on: 0 (the digits row on the top string) to 2. Moves beyond
    // either edge are ignored.
    void moveRows(int delta);
    int32_t rowsDownShift() const { return m_rowsDownShift; }
    void showKeyGuides(bool show);

    // A note struck by hand is still sounding: the window keeps its MIDI output meanwhile.
    bool holdsNote() const;

private:
    // A note struck by hand and not yet released.
    struct Held {
        int32_t note = -1;
        int32_t cents = 0;
        bool marked = false;
        uint32_t strike = 0;  // which strike put it here, so a strike knows it was not released
        bool sounding() const { return note >= 0; }
    };

    void strike(Held& held, const FoundPitch& pitch);
    void lift(Held& held);
    void waitPumping(int32_t ms);
    void focusBoard();
    void updateGuides();

    mUdCtrl& m_oud;
    UdDisplay* m_display;
    UdPictureWidget* m_board;
    KeyGuideOverlay* m_guides = nullptr;
    HandPlayOptions m_options;
    int32_t m_rowsDownShift = 1;
    uint32_t m_strikes = 0;
    Held m_mouse;
    PicPointF m_lastMousePoint{};
    std::array<std::array<Held, kKeyGridColumns[0]>, kKeyGridRows> m_keys{};
};

}  // namespace tarabix
