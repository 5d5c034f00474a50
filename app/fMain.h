#pragma once

#include "oud/model/mMaqams.h"
#include "oud/model/mUdCtrl.h"
#include "oud/view/UdDisplay.h"

#include <QMainWindow>
#include <QMessageBox>
#include <QSettings>

#include <array>
#include <functional>
#include <memory>

class QAction;
class QButtonGroup;
class QComboBox;
class QLabel;
class QPushButton;
class QSlider;
class QSpinBox;

namespace tarabix {

class UdPictureWidget;
class UserSettings;
class KeyGuideOverlay;

// How the window meets the world: where the program lives, which settings store it uses and how a
// message reaches the learner. Tests replace the store and the message box.
struct fMainEnvironment {
    QString programFolder;
    std::unique_ptr<QSettings> settingsStore;  // null: the learner's own store
    std::function<void(QMessageBox::Icon, const QString& text)> showMessage;  // null: a message box
};

// The main window: the fingerboard, the piece's transport and the learner's choices.
class fMain : public QMainWindow {
    Q_OBJECT
public:
    explicit fMain(fMainEnvironment environment);
    ~fMain() override;

    // The whole start-up. False when a picture the fingerboard needs is missing: the learner has
    // been told, and the program must end at once.
    bool load();
    bool isFormLoaded() const { return m_formLoaded; }

    // Read by the dialogs and by tests.
    mUdCtrl& oud() { return m_oud; }
    mMaqams& maqams() { return m_maqams; }
    UdDisplay* display() { return m_display.get(); }
    UdPictureWidget* fingerboard() { return m_fingerboard; }
    int32_t noteNamesType() const { return m_noteNamesType; }
    int32_t keyboardDownShift() const { return m_kbDownShift; }

protected:
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

    // Controls, named as the window's parts are named throughout the program.
    QPushButton* cmdOpen = nullptr;
    QPushButton* cmdSheet = nullptr;
    QPushButton* cmdHelp = nullptr;
    QLabel* lblFile = nullptr;

    QWidget* fingerboardHost = nullptr;
    QLabel* lblRangeLow = nullptr;
    QLabel* lblRangeHigh = nullptr;

    QPushButton* cmdPlay = nullptr;
    QPushButton* cmdPause = nullptr;
    QPushButton* cmdStop = nullptr;
    QSlider* sldPosition = nullptr;
    QLabel* lblPieceTime = nullptr;
    QLabel* lblPieceLength = nullptr;
    QSlider* sldSpeedR = nullptr;
    QLabel* lblSpeed = nullptr;
    QSlider* sldVolume = nullptr;
    QSpinBox* udMidiOctShift = nullptr;
    QLabel* lblMidiOctShift = nullptr;

    QComboBox* cmbTuning = nullptr;
    QSpinBox* udTuneOctShift = nullptr;
    QLabel* lblTuneOctShift = nullptr;
    QComboBox* cmbOrient = nullptr;
    QComboBox* cmbMaqams = nullptr;
    QComboBox* cmbMaqamStarts = nullptr;
    QButtonGroup* optNNames = nullptr;
    QSpinBox* udKbDownShift = nullptr;

    QAction* mnu_File_Open = nullptr;
    QAction* mnu_File_Close = nullptr;
    QAction* mnu_File_Exit = nullptr;
    QAction* mnu_Opts_Notes = nullptr;
    QAction* mnu_Opts_MKB = nullptr;
    QAction* mnu_Opts_Channels = nullptr;
    QAction* mnu_Opts_Delay_Opt[4] = {};
    QAction* mnu_Opts_Ontop = nullptr;
    QAction* mnu_Opts_Devs = nullptr;
    QAction* mnu_Help_Contents = nullptr;
    QAction* mnu_Help_About = nullptr;

private:
    // Layout (fMainLayout.cpp).
    void buildControls();
    void buildMenus();

    // Start-up and shutdown (fMain.cpp).
    void loadSettings();
    bool checkResources();
    void unload();
    void message(QMessageBox::Icon icon, const QString& text);

    // The instrument's choices (fMainOudControls.cpp).
    void connectOudControls();
    void optNNames_Click(int index);
    void fillTuningList();
    void cmbTuning_Click();
    void udTuneOctShift_Change();
    void applyTuningFromControls();
    void cmbOrient_Click();
    void fillMaqamLists();
    void cmbMaqams_Click();
    void cmbMaqamStarts_Click();
    void refillTonicList(int32_t maqamIndex);
    void applyMaqamMarker(const std::string& text);
    void applyNotePresentation();
    void redrawFingerboard();
    void showRangeSide(int32_t side);

    // Playing by mouse and computer keyboard (fMainPlayByHand.cpp).
    void connectPlayByHand();
    void playNote(int ch, int32_t note, int32_t cents, int velocity, bool highlight);
    void playNoteDoubled(int ch, int32_t note, int32_t cents, int velocity, bool highlight);
    void stopNote(int ch, int32_t note, int32_t cents, bool highlight);
    void shiftKeyboard(int delta);
    void showHideKbLabels(bool show);
    void fingerboardPressed(PicPointF point, Qt::MouseButton button);
    void fingerboardMoved(PicPointF point, Qt::MouseButtons buttons);
    void fingerboardReleased(PicPointF point, Qt::MouseButton button);
    void waitPumping(int32_t ms);
    bool handleGridKey(QKeyEvent* event, bool down);

    fMainEnvironment m_env;
    std::unique_ptr<UserSettings> m_settings;
    mUdCtrl m_oud;
    mMaqams m_maqams;
    std::unique_ptr<UdDisplay> m_display;
    UdPictureWidget* m_fingerboard = nullptr;
    KeyGuideOverlay* m_keyGuides = nullptr;

    bool m_formLoaded = false;
    bool m_initialising = false;
    bool m_fillingControls = false;
    bool m_refillingTonics = false;

    // Settings loaded at start-up.
    bool m_approxQrt = true;
    bool m_playMouseMove = false;
    bool m_mkbPlayHilite = true;
    bool m_mkbDoubling = false;
    int32_t m_mkbDblOn1MS = 5;
    int32_t m_mkbDblOffMS = 2;
    int32_t m_noteNamesType = 0;
    int32_t m_UdNotesPres_Rest_NoMaqam = 1;
    int32_t m_UdNotesPres_Play_NoMaqam = 1;
    int32_t m_UdNotesPres_Rest_Maqam = 1;
    int32_t m_UdNotesPres_Play_Maqam = 1;

    // The tuning last applied from the controls, and the one remembered in the settings.
    int32_t m_appliedTuningId = -1;
    int32_t m_appliedTuneOctShift = 0;
    int32_t m_storedTuningId = -1;

    int32_t m_volume = 100;
    // The player display's two per-channel tables; -1 is "no value", set whenever a piece changes.
    std::array<std::array<int16_t, 16>, 2> m_playerChannelTables{};
    void resetPlayerChannelTables();

    // Playing by hand.
    int32_t m_kbDownShift = 1;
    int32_t m_kbPositionShift = 0;
    bool m_kbLabelsShown = false;
    std::array<std::array<bool, 7>, 16> m_keysDown{};
    int32_t m_mouseNote = -1;
    int32_t m_mouseCents = 0;
    PicPointF m_lastMousePoint{};
};

}  // namespace tarabix
