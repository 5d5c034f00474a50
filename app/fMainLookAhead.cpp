// The look-ahead: a piece's coming notes, shown faintly at their places on the fingerboard before
// they sound, numbered by moment (1 = the next) and growing stronger as they come near, so the
// learner sees where the hand goes next. The player keeps the walk in step (lookAheadFrom at every
// start and jump, lookAheadDelivered for every event handed over); a timer draws the marks at the
// piece time being heard, so they follow the sound rather than the sending, and fade in between
// events. Pause, stop, the piece's end and a closed piece take them off at the timer's next tick;
// an octave change, a hidden channel or a muted one shows at that tick too.
#include "app/fMain.h"

#include "base/Rounding.h"
#include "playback/mMidiMain.h"
#include "settings/UserSettings.h"

#include <QTimer>

#include <limits>

namespace tarabix {

namespace {

// Often enough for the fade to look smooth, seldom enough to cost nothing: a tick walks a few
// events and draws only the marks whose number or strength changed.
constexpr int kLookAheadTickMs = 30;
// How long before it is heard a mark of "the next notes" starts growing stronger.
constexpr int32_t kNextNotesFadeMs = 2000;

}  // namespace

void fMain::connectLookAhead()
{
    m_lookAhead = m_settings->lookAhead();
    tmrLookAhead = new QTimer(this);
    tmrLookAhead->setInterval(kLookAheadTickMs);
    connect(tmrLookAhead, &QTimer::timeout, this, &fMain::showLookAhead);
}

void fMain::setLookAhead(const LookAhead& chosen)
{
    const LookAhead checked = chosen.checked();
    if (checked == m_lookAhead)
        return;
    m_settings->setLookAhead(checked);
    m_lookAhead = checked;
    // Switched on while playing: the walk catches up with the next event handed over.
    m_lookAheadInStep = false;
    showLookAhead();
}

void fMain::lookAheadFrom(int32_t fromMs)
{
    if (!m_lookAhead.on())
        return;
    if (m_nextNotes.piece() != m_player.theMidi())
        m_nextNotes = NextNotes(m_player.theMidi());
    m_nextNotes.startAt(fromMs);
    // Due now, at B's moment for a loop's jump, or after the count-in when there is one.
    m_lookAheadHeardAtMs = m_player.dueOf(fromMs) + midiOutHeardDelayMs();
    m_lookAheadInStep = true;
    tmrLookAhead->start();
    showLookAhead();
}

void fMain::lookAheadDelivered(uint8_t status, uint8_t c1, uint8_t c2, int32_t absMs, int32_t dueMs)
{
    if (!m_lookAhead.on())
        return;
    if (m_nextNotes.piece() != m_player.theMidi())
        m_nextNotes = NextNotes(m_player.theMidi());
    m_nextNotes.delivered(status, c1, c2, absMs, m_router);
    m_lookAheadHeardAtMs = dueMs + midiOutHeardDelayMs();
    m_lookAheadInStep = true;
    if (!tmrLookAhead->isActive())
        tmrLookAhead->start();
}

void fMain::showLookAhead()
{
    if (!m_display)
        return;
    if (!m_playing || !m_lookAhead.on() || !m_lookAheadInStep) {
        tmrLookAhead->stop();
        m_lookAheadInStep = false;
        m_nextNotes = NextNotes();  // the piece may be closed before the player starts again
        m_display->showLookAhead({});
        return;
    }
    // The speed played: during a tempo ramp, the pass's share of the chosen one.
    const double speed = m_player.currentSpeedRatio() > 0.0f ? m_player.currentSpeedRatio() : 1.0;
    const int32_t heardMs =
        m_positionMs + roundHalfEvenInt(static_cast<double>(m_clock.millis() - m_lookAheadHeardAtMs) * speed);
    NextNotesQuery query{m_lookAhead.nextMoments(), std::nullopt};
    int32_t fadeMs = kNextNotesFadeMs;
    if (m_lookAhead.withinTime()) {
        // The learner's time is heard time: at half speed it covers half as much of the piece.
        query = {kLookAheadMostMoments, heardMs + roundHalfEvenInt(m_lookAhead.withinMs * speed)};
        fadeMs = m_lookAhead.withinMs;
    }
    m_lookAheadMarks.clear();
    // A loop goes back to A at B: what lies after B is not coming.
    const int32_t loopEndMs = m_practice.loopReady() && heardMs < *m_practice.bMs
                                  ? *m_practice.bMs
                                  : std::numeric_limits<int32_t>::max();
    for (const UpcomingNote& next : m_nextNotes.upcoming(heardMs, m_router, query)) {
        if (next.dueMs >= loopEndMs)
            break;
        const int32_t msUntilHeard = roundHalfEvenInt((next.dueMs - heardMs) / speed);
        m_lookAheadMarks.push_back({next.note, next.cents, next.moment, lookAheadLevel(msUntilHeard, fadeMs)});
    }
    m_display->showLookAhead(m_lookAheadMarks);
}

}  // namespace tarabix
