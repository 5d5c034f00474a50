#pragma once

#include <QWidget>

namespace tarabix {

class mUdCtrl;
class UdDisplay;
class UdPictureWidget;

// The key labels laid over the fingerboard: each key of the four-row grid shown where the note it
// plays sits, so a learner sees which key stops which place. Transparent to the mouse.
class KeyGuideOverlay : public QWidget {
    Q_OBJECT
public:
    KeyGuideOverlay(UdPictureWidget* board, const mUdCtrl* model, const UdDisplay* display);

    // The grid as the window maps it: strings moved by stringShift, places by positionShift.
    void setGrid(int stringShift, int positionShift, bool skipTopString);

protected:
    void paintEvent(QPaintEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    UdPictureWidget* m_board;
    const mUdCtrl* m_model;
    const UdDisplay* m_display;
    int m_stringShift = 1;
    int m_positionShift = 0;
    bool m_skipTopString = false;
};

}  // namespace tarabix
