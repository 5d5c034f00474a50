// The practice room: the A–B loop (buttons, keys and a Shift-drag on the position bar), the tempo
// ramp, the count-in and the click, and a piece's practice remembered for its next opening. The
// player plays the plan; the window checks each change the learner makes before it is taken.
#include "app/fMain.h"

#include "app/CountdownOverlay.h"
#include "app/PositionBar.h"
#include "app/PracticeMemory.h"
#include "app/PracticePanel.h"
#include "app/ScopedFlag.h"
#include "app/SpeedPercentBox.h"
#include "playback/mMidiMain.h"

#include <QAction>
#include <QFile>
#include <QSlider>

#include <cmath>

namespace tarabix {

void fMain::connectPractice()
{
    connect(m_practicePanel, &PracticePanel::setAAsked, this, &fMain::setLoopStartHere);
    connect(m_practicePanel, &PracticePanel::setBAsked, this, &fMain::setLoopEndHere);
    connect(m_practicePanel, &PracticePanel::setupProposed, this, &fMain::proposePractice);
    connect(m_practicePanel, &PracticePanel::clickChanged, this, [this] {
        m_player.setClickEveryBeat(m_practicePanel->clickEveryBeat());
        m_metronome.setVolume(m_practicePanel->clickVolume());
    });
    m_metronome.setVolume(m_practicePanel->clickVolume());
    connect(sldPosition, &PositionBar::rangeDragged, this, [this](int32_t fromMs, int32_t toMs) {
        PracticeSetup next = m_practice;
        next.aMs = fromMs;
        next.bMs = toMs;
        next.loopOn = true;
        proposePractice(next);
    });

    // The keys stay clear of the four rows of notes and of the arrows that move them.
    const auto addKey = [this](const QString& text, Qt::Key key, auto slot) {
        auto* action = new QAction(text, this);
        action->setShortcut(QKeySequence(key));
        action->setShortcutContext(Qt::WindowShortcut);
        connect(action, &QAction::triggered, this, slot);
        addAction(action);
    };
    addKey(tr("Loop from here"), Qt::Key_F5, [this] { setLoopStartHere(); });
    addKey(tr("Loop up to here"), Qt::Key_F6, [this] { setLoopEndHere(); });
    addKey(tr("Loop on or off"), Qt::Key_F7, [this] {
        PracticeSetup next = m_practice;
        next.loopOn = !next.loopOn;
        proposePractice(next);
    });

    m_player.passStarted = [this](int32_t pass, float speedRatio) {
        if (m_practice.loopReady())
            m_practicePanel->showPass(pass, speedRatio);
    };
    m_player.countInBeat = [this](int32_t beatsLeft, bool accent) {
        {
            const MidiOutDueTime due(m_player.currentDueMs());
            m_metronome.click(accent);
        }
        m_countdown->showCount(QString::number(beatsLeft));
        m_countInShown = true;
    };
    m_player.beatClick = [this](bool downbeat) {
        const MidiOutDueTime due(m_player.currentDueMs());
        m_metronome.click(downbeat);
    };
}

// Where "here" is for the loop's ends: the event being heard while playing, where Resume starts
// while paused, the position bar otherwise.
int32_t fMain::practicePositionMs() const
{
    if (m_playing)
        return m_positionMs;
    if (m_paused)
        return m_resumeFromMs;
    return sldPosition->value() * 1000;
}

void fMain::setLoopStartHere()
{
    if (m_currFile.isEmpty())
        return;
    PracticeSetup next = m_practice;
    next.aMs = practicePositionMs();
    // A start past the old end begins a new loop: the learner moves on to the next phrase and
    // sets its end when the music gets there.
    if (next.bMs && *next.bMs <= *next.aMs) {
        next.bMs.reset();
        next.loopOn = false;
    }
    proposePractice(next);
}

void fMain::setLoopEndHere()
{
    if (m_currFile.isEmpty())
        return;
    PracticeSetup next = m_practice;
    next.bMs = practicePositionMs();
    if (!next.aMs)
        next.aMs = 0;  // from the piece's beginning
    next.loopOn = true;
    proposePractice(next);
}

// A change is taken only when the player can play it: otherwise the learner is told why and the
// row shows what was there before.
void fMain::proposePractice(const PracticeSetup& next)
{
    if (const std::optional<std::string> problem = practicePlanProblem(next.planToCheck(), m_pieceLength)) {
        message(QMessageBox::Warning, QString::fromStdString(*problem));
        m_practicePanel->showSetup(m_practice);
        return;
    }
    const bool loopStarts = next.loopReady() && !m_practice.loopReady();
    m_practice = next;
    showPractice();
    m_player.setPractice(m_practice.plan());
    rememberThisPractice();
    // A loop switched on while the piece plays elsewhere goes to its start at once.
    if (loopStarts && m_playing && (m_positionMs < *m_practice.aMs || m_positionMs >= *m_practice.bMs))
        jumpTo(*m_practice.aMs);
}

void fMain::showPractice()
{
    m_practicePanel->showSetup(m_practice);
    std::optional<PositionBar::Range> range;
    if (m_practice.aMs && m_practice.bMs)
        range = PositionBar::Range{*m_practice.aMs, *m_practice.bMs};
    sldPosition->setLoopRange(range);
    if (!m_practice.loopReady())
        m_practicePanel->clearPass();
}

void fMain::rememberThisPractice()
{
    if (m_currFile.isEmpty() || m_restoringPractice)
        return;
    rememberPractice(*m_settings, QFile::encodeName(m_currFile).toStdString(),
                     RememberedPractice{m_practice, static_cast<int32_t>(std::lround(m_speedRatio * 100.0f))});
}

// The piece's practice as the learner left it, if it still fits the piece; else a fresh row.
void fMain::restorePractice()
{
    const ScopedFlag restoring(m_restoringPractice);
    m_practice = PracticeSetup{};
    std::optional<RememberedPractice> kept;
    if (!m_currFile.isEmpty())
        kept = recallPractice(*m_settings, QFile::encodeName(m_currFile).toStdString());
    if (kept && !practicePlanProblem(kept->setup.planToCheck(), m_pieceLength))
        m_practice = kept->setup;
    const int percent = kept ? kept->speedPercent : 100;
    if (udSpeedPercent->value() != percent)
        udSpeedPercent->setValue(percent);  // its handler moves the slider and the player
    showPractice();
    m_player.setPractice(m_practice.plan());
}

}  // namespace tarabix
