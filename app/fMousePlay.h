#pragma once

#include <QDialog>

class QCheckBox;
class QPushButton;

namespace tarabix {

class UserSettings;

// The choices for sounding single notes with the mouse and the computer keyboard.
struct MousePlayOptions {
    bool approxQrt = true;       // mouse pitches snap to the nearest quarter tone
    bool playMouseMove = false;  // sliding along a string re-strikes the note
    bool playHilite = true;      // played notes are marked on the fingerboard
    bool doubling = false;       // notes on doubled strings are struck twice
    bool showKbGuides = true;    // the key labels over the fingerboard (not kept between runs)
};

// The mouse and keyboard play options dialog. OK stores the first four choices and emits
// optionsAccepted; the window then shows or hides the key labels by showKbGuides.
class fMousePlay : public QDialog {
    Q_OBJECT
public:
    fMousePlay(const MousePlayOptions& options, UserSettings& settings, QWidget* parent = nullptr);

    const MousePlayOptions& options() const { return m_options; }

    QCheckBox* chkAprxQrt = nullptr;
    QCheckBox* chkPlayMove = nullptr;
    QCheckBox* chkHiliteQrt = nullptr;
    QCheckBox* chkDblSound = nullptr;
    QCheckBox* chkSowKbGuides = nullptr;
    QPushButton* cmdOK = nullptr;
    QPushButton* cmdCancel = nullptr;

signals:
    void optionsAccepted(const tarabix::MousePlayOptions& options);

private:
    void buildControls();
    void applyDependencies();
    void cmdOK_Click();

    MousePlayOptions m_options;
    UserSettings& m_settings;
};

}  // namespace tarabix
