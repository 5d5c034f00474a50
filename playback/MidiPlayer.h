#pragma once

#include "midi/MergedTracks.h"
#include "playback/PlayerClock.h"

#include <cstdint>
#include <functional>
#include <string>

namespace tarabix {

class MidiFile;
struct MidiEvent;

// Plays a MidiFile in time: merges its tracks by time, waits for each event's moment on the
// owner's clock and hands channel messages (msg) and text-like meta events (meta) to the owner,
// which routes them to the device. play() is one long call on the user-interface thread; the
// owner's handlers run nested inside its waits and talk to the player only through the request
// operations and the speed, which play() reads after every wait.
//
// Times are 32-bit milliseconds; an overflow raises MidiError (kOverflow), a speed of 0 raises
// MidiError (kDivisionByZero). Errors raised by handlers leave play() as they are.
class MidiPlayer {
public:
    std::function<void(uint8_t status, uint8_t c1, uint8_t c2, int32_t absMSec)> msg;
    std::function<void(int16_t track, uint8_t metaType, const std::string& txt, int32_t absMSec)> meta;
    std::function<void()> donePB;
    std::function<void(int32_t silenceTimeMS)> silenceAlert;
    // Raised at every start and every reposition, before the first event from fromMs is handed
    // over: the events before fromMs are skipped, so the owner brings the channels to the state
    // the piece has at that moment (programs, controllers, pitch wheels) and forgets what it
    // thought was sounding.
    std::function<void(int32_t fromMs)> chase;

    explicit MidiPlayer(PlayerClock clock = {});

    void setClock(PlayerClock clock) { m_clock = std::move(clock); }

    // The piece; the caller keeps it alive while it is set. Null plays as a piece without tracks.
    const MidiFile* theMidi() const { return m_theMidi; }
    void setTheMidi(const MidiFile* midi);

    float playSpeedRatio() const { return m_playSpeedRatio; }
    // Applies from the last played event on: the music goes on from there at the new speed.
    void setPlaySpeedRatio(float ratio);

    int32_t startOffsetMSecMidi() const { return m_startOffsetMSecMidi; }
    void setStartOffsetMSecMidi(int32_t ms) { m_startOffsetMSecMidi = ms; }

    // Piece time of the first event left unplayed when a stop took effect: where a resume starts.
    int32_t stopOffsetMSec_midi() const { return m_stopOffsetMSec_midi; }

    float catchUpTolerance() const { return m_catchUpTolerance; }
    void setCatchUpTolerance(float tolerance) { m_catchUpTolerance = tolerance; }

    int32_t minSilenceAlertMS() const { return m_minSilenceAlertMS; }
    void setMinSilenceAlertMS(int32_t ms) { m_minSilenceAlertMS = ms; }

    void clear();
    void play();
    void stopPlaying() { m_stopRequested = true; }
    void skipSilence() { m_skipRequested = true; }
    void reposition(int32_t absMSec);
    void resetPlayState();

    // The clock time the event being delivered was scheduled for (timing logs compare it with the
    // time the device got the event).
    int32_t currentDueMs() const { return m_currentDueMs; }

private:
    enum class WaitEnd { Due, Stop, Reposition };

    int32_t dueTime(int32_t absMS, int32_t timeBase) const;
    double realMsSinceReference(int32_t pieceMs) const;
    WaitEnd waitFor(int32_t due, int32_t& timeBase);
    void deliver(int32_t track, const MidiEvent& event);

    PlayerClock m_clock;
    const MidiFile* m_theMidi = nullptr;
    int32_t m_startOffsetMSecMidi = 0;
    bool m_stopRequested = false;
    int32_t m_stopOffsetMSec_midi = 0;
    float m_playSpeedRatio = 1.0f;
    int32_t m_refPieceMs = 0;
    int32_t m_refRealMs = 0;
    int32_t m_curPieceMs = 0;
    int32_t m_curRealMs = 0;
    bool m_repositionRequested = false;
    int32_t m_repositionTarget = 0;
    bool m_skipRequested = false;
    float m_catchUpTolerance = 0.0f;
    int32_t m_minSilenceAlertMS = 0;
    MergedTracks m_merged;
    int32_t m_currentDueMs = 0;
};

}  // namespace tarabix
