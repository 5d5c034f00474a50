#pragma once

#include "app/PracticeSetup.h"
#include "base/MonotonicClock.h"
#include "midi/MidiFile.h"
#include "oud/model/mMaqams.h"
#include "oud/model/mUdCtrl.h"
#include "oud/view/UdDisplay.h"
#include "playback/MidiPlayer.h"
#include "playback/Metronome.h"
#include "playback/NextNotes.h"
#include "playback/PieceRouter.h"
#include "playback/qt/DelayedMarks.h"
#include "settings/LookAhead.h"

#include <QMainWindow>
#include <QMessageBox>
#include <QPointer>
#include <QSettings>

#include <functional>
#include <memory>
#include <vector>

class QAction;
class QButtonGroup;
class QComboBox;
class QLabel;
class QPushButton;
class QSlider;
class QSpinBox;
class QTimer;

namespace tarabix {

class CountdownOverlay;
class HandPlayer;
class PositionBar;
class PracticePanel;
class SpeedPercentBox;
class UdPictureWidget;
class UserSettings;
class QtPlayerWait;
class fChannels;

// How the window meets the world: where the program lives, which settings store it uses and how a
// message reaches the learner. Tests replace the store and the message box.
struct fMainEnvironment {
    QString programFolder;
    std::unique_ptr<QSettings> settingsStore;  // null: the learner's own store
    std::function<void(QMessageBox::Icon, const QString& text)> showMessage;  // null: a message box
    QString startFile;  // opened instead of the start-up sample, with messages
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

    // Makes the file the current piece. Quiet: no message box whatever goes wrong (start-up).
    void openFile(const QString& path, bool quiet);
    void closeFile();
    const QString& currentFilePath() const { return m_currFile; }
    int32_t pieceLength() const { return m_pieceLength; }

    // Read by the dialogs and by tests.
    mUdCtrl& oud() { return m_oud; }
    mMaqams& maqams() { return m_maqams; }
    UdDisplay* display() { return m_display.get(); }
    UdPictureWidget* fingerboard() { return m_fingerboard; }
    HandPlayer* handPlayer() { return m_hand.get(); }
    const PracticeSetup& practice() const { return m_practice; }

protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;
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
    PositionBar* sldPosition = nullptr;
    QLabel* lblPieceTime = nullptr;
    QLabel* lblPieceLength = nullptr;
    QSlider* sldSpeedR = nullptr;
    SpeedPercentBox* udSpeedPercent = nullptr;
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
    QAction* mnu_Play_Pause = nullptr;

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
    void applyMaqamMarker(MaqamMarker marker);
    void showNotesAs(const NotePresentation& chosen);
    int32_t nameSystem() const;
    void redrawFingerboard();
    void showRangeSide(int32_t side);

    // Opening and closing pieces (fMainFiles.cpp).
    void connectFileCommands();
    void cmdOpen_Click();
    void showNoFile();

    // Menus and dialogs (fMainMenus.cpp).
    void connectMenus();
    void mnu_Opts_Notes_Click();
    void mnu_Opts_MKB_Click();
    void mnu_Opts_Channels_Click();
    void showHelp();
    void cmdSheet_Click();
    uint16_t pieceChannels() const;

    // Transport (fMainTransport.cpp).
    void connectTransport();
    void cmdPlay_Toggled(bool down);
    void cmdPause_Toggled(bool down);
    void cmdStop_Click();
    bool countDownStartDelay();
    void startPlaying(int32_t fromMs);
    void pausePlaying();
    void stopPlaying();
    void sldPosition_Change(int seconds);
    void jumpTo(int32_t ms);
    void sldSpeedR_Change(int value, bool settled);
    void udSpeedPercent_Change(int percent);
    void applySpeed(float ratio);
    void udMidiOctShift_Change();
    void m_mf_p_msg(uint8_t status, uint8_t c1, uint8_t c2, int32_t absMSec);
    void m_mf_p_meta(int16_t track, uint8_t metaType, const std::string& txt, int32_t absMSec);
    void m_mf_p_donePB();
    void showPieceMark(const PieceMark& mark);
    void tmrAct_Timer();
    void showOutputNoticeOnce();
    void setButtonDown(QPushButton* button, bool down);

    // The practice room: loop, ramp, count-in, click, practice memory (fMainPractice.cpp).
    void connectPractice();
    int32_t practicePositionMs() const;
    void setLoopStartHere();
    void setLoopEndHere();
    void proposePractice(const PracticeSetup& next);
    void showPractice();
    void rememberThisPractice();
    void restorePractice();
    // The coming notes shown on the fingerboard ahead of the sound (fMainLookAhead.cpp).
    void connectLookAhead();
    void setLookAhead(const LookAhead& chosen);
    void lookAheadFrom(int32_t fromMs);
    void lookAheadDelivered(uint8_t status, uint8_t c1, uint8_t c2, int32_t absMs, int32_t dueMs);
    void showLookAhead();

    // The window's share of playing by hand: which keys reach the hand player (fMainPlayByHand.cpp).
    void connectPlayByHand();
    bool handleGridKey(QKeyEvent* event, bool down);

    fMainEnvironment m_env;
    std::unique_ptr<UserSettings> m_settings;
    mUdCtrl m_oud;
    mMaqams m_maqams;
    std::unique_ptr<UdDisplay> m_display;
    UdPictureWidget* m_fingerboard = nullptr;
    std::unique_ptr<HandPlayer> m_hand;

    // The open piece. Shared so that a piece replaced while the player still runs over it lives
    // until the player has let go.
    QString m_currFile;
    std::shared_ptr<MidiFile> m_mf = std::make_shared<MidiFile>();
    int32_t m_pieceLength = 0;

    MonotonicClock m_clock;
    std::unique_ptr<QtPlayerWait> m_wait;
    MidiPlayer m_player;
    PieceRouter m_router;
    // The fingerboard's marks of the piece's events, shown as the output sounds them.
    DelayedMarks m_pieceMarks{[this] { return m_clock.millis(); }, [this](const PieceMark& m) { showPieceMark(m); }};
    bool m_playing = false;
    bool m_paused = false;
    bool m_inPlay = false;  // MidiPlayer::play is on the stack
    // Where Resume starts: where the pause stopped the piece, or where the position slider was
    // moved to since.
    int32_t m_resumeFromMs = 0;
    bool m_positionUpdatesSuspended = false;
    bool m_settingButtons = false;  // the program sets the transport buttons: their handlers stay still
    int32_t m_startDelayMs = 0;
    bool m_countingDown = false;    // the start delay counts down (its waits run the window)
    bool m_startCancelled = false;  // a stop came while it did
    CountdownOverlay* m_countdown = nullptr;
    bool m_countInShown = false;  // the overlay counts the player's count-in, until the first note

    // The practice row and what it holds.
    PracticePanel* m_practicePanel = nullptr;
    PracticeSetup m_practice;
    Metronome m_metronome;
    // Where the music is: the piece time of the last event handed over, or of the last start or
    // jump (the player's chase) until one is.
    int32_t m_positionMs = 0;
    bool m_restoringPractice = false;  // a piece's practice comes back: nothing to remember
    // The speed the learner chose, from the slider or the percent box.
    float m_speedRatio = 1.0f;
    float m_catchUpTolerance = 1.0f;
    bool m_deviceHeld = false;
    QString m_shownOutputNotice;
    QTimer* tmrAct = nullptr;
    QPointer<fChannels> m_channelsDialog;

    // The look-ahead: the learner's choice, the walk one step behind the player, and the piece
    // time last handed over with the clock time it is heard, from which the piece time heard now
    // follows at the playing speed. Out of step until the player starts or hands an event over.
    LookAhead m_lookAhead;
    NextNotes m_nextNotes;
    bool m_lookAheadInStep = false;
    int32_t m_lookAheadHeardAtMs = 0;
    std::vector<LookAheadMark> m_lookAheadMarks;
    QTimer* tmrLookAhead = nullptr;

    bool m_formLoaded = false;
    // The program fills or sets the instrument's lists and buttons: their handlers stay still.
    bool m_fillingControls = false;

    // The tuning last applied from the controls, and the one remembered in the settings.
    int32_t m_appliedTuningId = -1;
    int32_t m_appliedTuneOctShift = 0;
    int32_t m_storedTuningId = -1;
};

}  // namespace tarabix
