// The transport: play, pause, stop, position, speed, volume and the piece's octave, and the
// player's events turned into sound and marks. MidiPlayer::play is one long call; every handler
// here may run nested inside it and talks to the player only through its requests.
#include "app/fMain.h"

#include "app/AppIdentity.h"
#include "app/CountdownOverlay.h"
#include "app/HandPlayer.h"
#include "app/PositionBar.h"
#include "app/PracticePanel.h"
#include "app/ScopedFlag.h"
#include "app/SpeedPercentBox.h"
#include "app/WindowTexts.h"
#include "midi/MidiError.h"
#include "oud/model/Tunings.h"
#include "playback/mMidiMain.h"
#include "playback/qt/QtPlayerWait.h"

#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QSlider>
#include <QSpinBox>
#include <QTimer>

#include <cmath>

namespace tarabix {

void fMain::connectTransport()
{
    m_wait = std::make_unique<QtPlayerWait>();
    m_player.setClock(QtPlayerWait::playerClock(m_clock, *m_wait));
    m_player.msg = [this](uint8_t status, uint8_t c1, uint8_t c2, int32_t absMSec) {
        m_mf_p_msg(status, c1, c2, absMSec);
    };
    m_player.meta = [this](int16_t track, uint8_t type, const std::string& txt, int32_t absMSec) {
        m_mf_p_meta(track, type, txt, absMSec);
    };
    m_player.donePB = [this] { m_mf_p_donePB(); };
    m_player.chase = [this](int32_t fromMs) {
        // Stamped with the moment the start is due: at a loop's jump, when B is heard, the notes
        // of the pass are cut and the channels set as at A, and the fingerboard rests then too.
        const int32_t dueMs = m_player.currentDueMs();
        m_positionMs = fromMs;
        {
            const MidiOutDueTime due(dueMs);
            m_router.startFrom(m_player.theMidi(), fromMs);
        }
        m_pieceMarks.add(PieceMark::clear());
        m_pieceMarks.release(dueMs + midiOutHeardDelayMs());
        lookAheadFrom(fromMs);
    };
    m_player.setTheMidi(m_mf.get());

    // The fingerboard follows the piece's notes on shown channels as the learner hears them: each
    // event's marks wait for the output's delay (m_mf_p_msg). Notes played by hand sound at once
    // and are marked at once.
    m_router.markNote = [this](int ch, int note, int32_t cents) { m_pieceMarks.add(PieceMark::noteOn(ch, note, cents)); };
    m_router.unmarkNote = [this](int ch, int note, int32_t cents) {
        m_pieceMarks.add(PieceMark::noteOff(ch, note, cents));
    };

    connect(cmdPlay, &QPushButton::toggled, this, &fMain::cmdPlay_Toggled);
    connect(cmdPause, &QPushButton::toggled, this, &fMain::cmdPause_Toggled);
    connect(cmdStop, &QPushButton::clicked, this, &fMain::cmdStop_Click);
    connect(sldPosition, &QSlider::sliderPressed, this, [this] { m_positionUpdatesSuspended = true; });
    connect(sldPosition, &QSlider::sliderReleased, this, [this] {
        m_positionUpdatesSuspended = false;
        sldPosition_Change(sldPosition->value());
    });
    connect(sldPosition, &QSlider::actionTriggered, this, [this](int action) {
        // Clicks on the groove and keyboard steps change the value without a drag.
        if (action != QAbstractSlider::SliderMove)
            QTimer::singleShot(0, this, [this] { sldPosition_Change(sldPosition->value()); });
    });
    connect(sldPosition, &QSlider::sliderMoved, this, [this](int seconds) { lblPieceTime->setText(pieceTimeText(seconds * 1000)); });
    connect(sldSpeedR, &QSlider::valueChanged, this, [this](int value) { sldSpeedR_Change(value, !sldSpeedR->isSliderDown()); });
    connect(sldSpeedR, &QSlider::sliderReleased, this, [this] { sldSpeedR_Change(sldSpeedR->value(), true); });
    connect(udSpeedPercent, &QSpinBox::valueChanged, this, &fMain::udSpeedPercent_Change);
    connect(sldVolume, &QSlider::valueChanged, this, [this](int value) { m_router.setVolume(value); });
    connect(udMidiOctShift, &QSpinBox::valueChanged, this, [this] { udMidiOctShift_Change(); });

    connect(mnu_Play_Pause, &QAction::triggered, this, [this] {
        if (m_playing)
            cmdPause->setChecked(true);
        else if (m_paused)
            cmdPause->setChecked(false);
        else
            cmdPlay->setChecked(true);
    });

    tmrAct = new QTimer(this);
    tmrAct->setInterval(1000);
    connect(tmrAct, &QTimer::timeout, this, &fMain::tmrAct_Timer);
}

void fMain::setButtonDown(QPushButton* button, bool down)
{
    const ScopedFlag setting(m_settingButtons);
    button->setChecked(down);
}

void fMain::cmdPlay_Toggled(bool down)
{
    if (m_settingButtons)
        return;
    if (!down) {
        cmdStop_Click();
        return;
    }
    if (m_currFile.isEmpty()) {
        setButtonDown(cmdPlay, false);
        message(QMessageBox::Warning,
                QStringLiteral("There is no open file to play.\r\nOpen a file first, then press the play button"));
        return;
    }
    if (m_inPlay || m_countingDown)
        return;
    if (m_startDelayMs > 0 && !countDownStartDelay())
        return;
    // With the loop on, playing starts at A unless the position is inside the loop already.
    int32_t fromMs = sldPosition->value() * 1000;
    if (m_practice.loopReady() && (fromMs < *m_practice.aMs || fromMs >= *m_practice.bMs))
        fromMs = *m_practice.aMs;
    startPlaying(fromMs);
}

// The start delay counts down on the fingerboard, a number a second, while the window stays
// alive: Stop, Pause or another piece ends it, and then nothing plays.
bool fMain::countDownStartDelay()
{
    const PlayerClock clock = QtPlayerWait::playerClock(m_clock, *m_wait);
    const ScopedFlag counting(m_countingDown);
    m_startCancelled = false;
    const int32_t end = clock.now() + m_startDelayMs;
    for (int32_t now = clock.now(); now < end && !m_startCancelled; now = clock.now()) {
        const int32_t left = end - now;
        m_countdown->showCount(QString::number((left + 999) / 1000));
        clock.wait(now + (left - 1) % 1000 + 1);  // wakes at the next whole second, or sooner for the learner
    }
    m_countdown->hide();
    return !m_startCancelled;
}

void fMain::cmdPause_Toggled(bool down)
{
    if (m_settingButtons)
        return;
    if (down) {
        if (m_playing)
            pausePlaying();
        else
            setButtonDown(cmdPause, false);
        return;
    }
    if (!m_currFile.isEmpty() && !m_inPlay) {
        setButtonDown(cmdPlay, true);
        startPlaying(m_resumeFromMs);
    }
}

void fMain::cmdStop_Click()
{
    stopPlaying();
}

void fMain::startPlaying(int32_t fromMs)
{
    if (m_currFile.isEmpty() || !m_mf) {
        setButtonDown(cmdPlay, false);
        return;
    }
    // Held for the whole call: a piece opened meanwhile replaces m_mf, not what is playing.
    const std::shared_ptr<MidiFile> piece = m_mf;
    m_player.setTheMidi(piece.get());
    m_playing = true;
    m_paused = false;
    m_player.resetPlayState();
    m_player.setPlaySpeedRatio(m_speedRatio);
    m_player.setCatchUpTolerance(m_catchUpTolerance);
    m_player.setStartOffsetMSecMidi(fromMs);
    m_player.setPractice(m_practice.plan());
    try {
        const ScopedFlag inPlay(m_inPlay);
        m_player.play();
    } catch (const MidiError& e) {
        // A piece whose times overflow at this speed (a damaged file's huge delta times): the
        // learner keeps the window and the piece, and is told why it stopped.
        stopPlaying();
        message(QMessageBox::Warning, QStringLiteral("The piece cannot be timed at this speed: %1 (error %2).")
                                          .arg(QString::fromStdString(e.description()))
                                          .arg(e.number()));
    }
    if (m_mf != piece)
        m_player.setTheMidi(m_mf.get());
}

void fMain::pausePlaying()
{
    m_countdown->hide();
    m_paused = true;
    m_playing = false;
    setButtonDown(cmdPlay, false);
    midiOutReset();
    m_pieceMarks.drop();  // the player's end clears the fingerboard
    m_player.stopPlaying();
}

void fMain::stopPlaying()
{
    m_startCancelled = true;
    m_countdown->hide();
    m_practicePanel->clearPass();
    setButtonDown(cmdPlay, false);
    setButtonDown(cmdPause, false);
    lblPieceTime->setText(pieceTimeText(0));
    {
        const QSignalBlocker block(sldPosition);
        sldPosition->setValue(0);
    }
    if (m_playing)
        m_player.stopPlaying();
    m_paused = false;
    m_playing = false;
    midiOutReset();
    // Marks still waiting belong to notes no one will hear, and the note-offs among them would
    // never clear what is shown: the fingerboard rests again (the player's end does it while it
    // runs; after the piece's end the last marks may still wait).
    if (m_pieceMarks.drop() && !m_inPlay)
        redrawFingerboard();
}

void fMain::sldPosition_Change(int seconds)
{
    if (m_positionUpdatesSuspended)
        return;
    jumpTo(seconds * 1000);
}

void fMain::jumpTo(int32_t ms)
{
    {
        const QSignalBlocker block(sldPosition);
        sldPosition->setValue(positionRangeSeconds(ms));
    }
    midiOutReset();
    if (m_playing) {
        m_player.reposition(ms);
        // The notes cut here get no note-off from the player, which goes on elsewhere: their
        // marks go, with every mark still waiting.
        m_pieceMarks.drop();
        redrawFingerboard();
    } else if (m_paused)
        m_resumeFromMs = ms;
}

// The slider's steps and the percent box show one speed: each moves the other, and the player
// takes the speed once the slider is let go.
void fMain::sldSpeedR_Change(int value, bool settled)
{
    const float ratio = speedRatioForSlider(value);
    {
        const QSignalBlocker block(udSpeedPercent);
        udSpeedPercent->setValue(static_cast<int>(std::lround(ratio * 100.0f)));
    }
    if (settled)
        applySpeed(ratio);
}

void fMain::udSpeedPercent_Change(int percent)
{
    const float ratio = static_cast<float>(percent) / 100.0f;
    {
        const QSignalBlocker block(sldSpeedR);
        sldSpeedR->setValue(sliderValueForSpeedRatio(ratio));
    }
    applySpeed(ratio);
}

void fMain::applySpeed(float ratio)
{
    m_speedRatio = ratio;
    m_player.setPlaySpeedRatio(ratio);
    rememberThisPractice();  // the speed a piece is practised at comes back with it
}

void fMain::udMidiOctShift_Change()
{
    midiOutReset();
    m_pieceMarks.drop();  // their note-offs will come shifted, elsewhere
    m_router.setMidiOctShift(udMidiOctShift->value());
    redrawFingerboard();
    lblMidiOctShift->setText(QString::fromStdString(octaveCaption(udMidiOctShift->value())));
}

void fMain::m_mf_p_msg(uint8_t status, uint8_t c1, uint8_t c2, int32_t absMSec)
{
    m_positionMs = absMSec;
    if (m_countInShown) {
        m_countInShown = false;
        m_countdown->hide();
    }
    if (!m_positionUpdatesSuspended) {
        const QSignalBlocker block(sldPosition);
        sldPosition->setValue(positionRangeSeconds(absMSec));
        lblPieceTime->setText(pieceTimeText(absMSec));
    }
    const int32_t dueMs = m_player.currentDueMs();
    const size_t marksBefore = m_pieceMarks.waiting();
    {
        // The synthesizer sounds the event at its due time, however late this thread got here.
        const MidiOutDueTime due(dueMs);
        m_router.route(status, c1, c2);
    }
    // Its marks show when it is heard. Asked after the sending, which may have started the
    // output's audio again and tied its clocks anew.
    const bool marked = m_pieceMarks.waiting() > marksBefore;
    m_pieceMarks.release(dueMs + midiOutHeardDelayMs());
    lookAheadDelivered(status, c1, c2, absMSec, dueMs);
    if (marked) {
        // The fingerboard paints, and earlier marks come due, even while the player catches up
        // without waiting.
        QCoreApplication::processEvents();
        QCoreApplication::processEvents();
    }
}

void fMain::m_mf_p_meta(int16_t, uint8_t metaType, const std::string& txt, int32_t)
{
    if (metaType != 1)
        return;
    // A maqam changes how the notes around it are named: it shows in turn with their marks.
    if (const std::optional<MaqamMarker> marker = m_maqams.parseMaqamMarker(txt)) {
        m_pieceMarks.add(PieceMark::maqamMarker(marker->index, marker->tonic));
        m_pieceMarks.release(m_player.currentDueMs() + midiOutHeardDelayMs());
    }
}

void fMain::m_mf_p_donePB()
{
    m_countdown->hide();
    if (!m_paused)
        m_practicePanel->clearPass();
    const bool ended = m_playing;  // neither stopped nor paused: the piece ran to its end
    setButtonDown(cmdPlay, false);
    if (m_paused) {
        m_resumeFromMs = m_player.stopOffsetMSec_midi();
    } else {
        lblPieceTime->setText(pieceTimeText(0));
        const QSignalBlocker block(sldPosition);
        sldPosition->setValue(0);
    }
    m_playing = false;
    if (ended) {
        // The last notes are still to be heard: the fingerboard rests after their marks.
        m_pieceMarks.add(PieceMark::clear());
        m_pieceMarks.release(m_clock.millis());
    } else {
        m_pieceMarks.drop();
        redrawFingerboard();
    }
}

void fMain::showPieceMark(const PieceMark& mark)
{
    switch (mark.kind) {
    case PieceMark::Kind::NoteOn:
        // A channel hidden or muted since its note came is not shown any more.
        if (m_display && m_router.channelShown(mark.channel) && m_router.channelEnabled(mark.channel)) {
            const int32_t side = m_display->noteOnDisplay(mark.note, mark.cents, true);
            if (side != 0)
                showRangeSide(side);
        }
        return;
    case PieceMark::Kind::NoteOff:
        if (m_display && m_display->noteOffDisplay(mark.note, mark.cents, true))
            showRangeSide(0);
        return;
    case PieceMark::Kind::Maqam:
        applyMaqamMarker(MaqamMarker{mark.maqam, mark.tonic});
        return;
    case PieceMark::Kind::Clear:
        redrawFingerboard();
        return;
    }
}

// A system MIDI port may be wanted by another program while ours is in the background: it is let
// go then, and taken back (programs and channel shifts restored) when the learner returns. Only
// while nothing plays and no note is held, though: a learner reading the score or watching a lesson
// beside the window must go on hearing the piece. The built-in synthesizer is ours alone and is
// never let go. Our own dialogs and the sheet viewer keep the device.
void fMain::tmrAct_Timer()
{
    QWidget* active = QApplication::activeWindow();
    const bool ours = active == this || (active && active->parentWidget() && active->parentWidget()->window() == this);
    if (ours && !m_deviceHeld) {
        reopenMidiOut();
        m_deviceHeld = true;
    } else if (!ours && m_deviceHeld && getMidiDeviceId() != kMidiMapperId && !m_inPlay
               && !(m_hand && m_hand->holdsNote())) {
        closeMidiOut();
        m_deviceHeld = false;
    }
    showOutputNoticeOnce();
}

// E.g. that the built-in synthesizer plays the system's SoundFont because the learner's is
// broken: said once, not at every re-open of the output. A box that does not hold up a piece
// playing behind it.
void fMain::showOutputNoticeOnce()
{
    const QString notice = QString::fromStdString(midiOutNotice());
    if (notice.isEmpty() || notice == m_shownOutputNotice)
        return;
    m_shownOutputNotice = notice;
    if (m_env.showMessage) {
        m_env.showMessage(QMessageBox::Information, notice);
        return;
    }
    auto* box = new QMessageBox(QMessageBox::Information, appIdentity().title, notice, QMessageBox::Ok, this);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setWindowModality(Qt::NonModal);
    box->show();
}

}  // namespace tarabix
