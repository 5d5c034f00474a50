#pragma once

#include "midi/BeatGrid.h"
#include "midi/MergedTracks.h"
#include "playback/PlayerClock.h"
#include "playback/PracticePlan.h"
#include "playback/PracticeSchedule.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tarabix {

class MidiFile;
struct MidiEvent;

// Plays a MidiFile in time: merges its tracks by time, waits for each event's moment on the
// owner's clock and hands channel messages (msg) and text-like meta events (meta) to the owner,
// which routes them to the device. play() is one long call on the user-interface thread; the
// owner's handlers run nested inside its waits and talk to the player only through the request
// operations and the speed, which play() reads after every wait.
//
// A practice plan (setPractice) loops a passage A..B: when the next event is at or after B, or
// the piece ends before B, the pass ends when B is due, and the next one starts at A keeping time
// (A due when B was, after the count-in if there is one). The notes of one pass never carry into
// the next: every jump raises chase(A). During a tempo ramp each pass plays at its share of the
// chosen speed.
//
// Times are 32-bit milliseconds; an overflow raises MidiError (kOverflow), a speed of 0 raises
// MidiError (kDivisionByZero), a plan practicePlanProblem refuses for the piece kInvalidArgument.
// Errors raised by handlers leave play() as they are.
class MidiPlayer {
public:
    std::function<void(uint8_t status, uint8_t c1, uint8_t c2, int32_t absMSec)> msg;
    std::function<void(int16_t track, uint8_t metaType, const std::string& txt, int32_t absMSec)> meta;
    // The end of play(): the piece's end, a stop, or the end of a loop's last pass (when B is
    // due; the notes sounding then are the owner's to silence).
    std::function<void()> donePB;
    std::function<void(int32_t silenceTimeMS)> silenceAlert;
    // Raised at every start, every reposition and every jump of a loop, before the first event
    // from fromMs is handed over: the events before fromMs are skipped, so the owner cuts the
    // notes still sounding and brings the channels to the state the piece has at that moment
    // (programs, controllers, pitch wheels). currentDueMs() is the moment the start is due: at a
    // jump back to A, the moment B was due, so the owner stamps what it sends with it.
    std::function<void(int32_t fromMs)> chase;
    // Before the count-in and the first event of every pass (pass 0 too, with or without a loop),
    // after the chase: the pass from 0 and the speed it plays at (chosen speed x ramp share).
    std::function<void(int32_t pass, float speedRatio)> passStarted;
    // The clicks of a count-in, beatsLeft from N down to 1, each at its due time (currentDueMs());
    // accented on the first click and on every click a whole bar before the start.
    std::function<void(int32_t beatsLeft, bool accent)> countInBeat;
    // Every beat of the piece (midi/BeatGrid) while setClickEveryBeat is on, in time order with
    // the events (before an event at the same time), currentDueMs() at the beat's due time.
    std::function<void(bool downbeat)> beatClick;

    explicit MidiPlayer(PlayerClock clock = {});

    void setClock(PlayerClock clock) { m_clock = std::move(clock); }

    // The piece; the caller keeps it alive while it is set. Null plays as a piece without tracks.
    const MidiFile* theMidi() const { return m_theMidi; }
    void setTheMidi(const MidiFile* midi);

    // The learner's chosen speed. Applies from the last played event on: the music goes on from
    // there at the new speed (during a ramp, at the pass's share of it).
    float playSpeedRatio() const { return m_schedule.chosenSpeed(); }
    void setPlaySpeedRatio(float ratio) { m_schedule.setChosenSpeed(ratio); }

    // Kept by resetPlayState, dropped by clear(). With a loop, play() starts at the start offset
    // when it lies in A..B, otherwise at A. The count-in comes before that start and before every
    // later pass, not after a reposition. A plan set while playing takes over at once from the
    // last moment played: its loop's end (when the music is still before it), its ramp from its
    // first pass; a loop switched on past its B plays on to the end unless the owner repositions.
    const PracticePlan& practice() const { return m_plan; }
    void setPractice(const PracticePlan& plan);
    bool clickEveryBeat() const { return m_clickEveryBeat; }
    void setClickEveryBeat(bool on) { m_clickEveryBeat = on; }

    int32_t startOffsetMSecMidi() const { return m_startOffsetMSecMidi; }
    void setStartOffsetMSecMidi(int32_t ms) { m_startOffsetMSecMidi = ms; }

    // Piece time of the first event (or beat click, or loop end B) left unplayed when a stop took
    // effect: where a resume starts. A stop during a count-in leaves the start of its pass.
    int32_t stopOffsetMSec_midi() const { return m_stopOffsetMSec_midi; }

    float catchUpTolerance() const { return m_catchUpTolerance; }
    void setCatchUpTolerance(float tolerance) { m_catchUpTolerance = tolerance; }

    int32_t minSilenceAlertMS() const { return m_minSilenceAlertMS; }
    void setMinSilenceAlertMS(int32_t ms) { m_minSilenceAlertMS = ms; }

    void clear();
    void play();
    void stopPlaying() { m_stopRequested = true; }
    // Drops the rest of the current wait, a silence of the piece or a count-in's click: everything
    // after it comes that much earlier.
    void skipSilence() { m_skipRequested = true; }
    // Plays on from absMSec at once (no count-in), in the same pass. Inside a loop, a point before
    // B (before A too) plays up to B and jumps back to A; from B on the loop is left and the piece
    // plays to its end.
    void reposition(int32_t absMSec);
    void resetPlayState();

    // The clock time the event being delivered was scheduled for (timing logs compare it with the
    // time the device got the event); also of a click, and of a start or a jump while chase runs.
    int32_t currentDueMs() const { return m_currentDueMs; }
    // When a moment of the piece is due on the clock as things stand (speed, pass, count-in): e.g.
    // A while chase runs for it, which a count-in puts some beats after currentDueMs().
    int32_t dueOf(int32_t pieceMs) const { return m_schedule.due(pieceMs); }
    // The pass being played, from 0, and the speed it plays at.
    int32_t currentPass() const { return m_schedule.pass(); }
    float currentSpeedRatio() const { return static_cast<float>(m_schedule.speed()); }

private:
    enum class WaitEnd { Due, Stop, Reposition, PlanChanged };
    // What play() waits for next.
    struct Moment {
        enum Kind { CountIn, Beat, Event, LoopEnd, PieceEnd } kind;
        int32_t pieceMs = 0;
        int32_t track = -1;
    };
    // From a start, a reposition or a loop's jump on.
    struct Stretch {
        int32_t startMs = 0;
        std::optional<int32_t> loopEndMs;
        int32_t countIn = 0;
        int32_t countInLeft = 0;
        BeatAt beat;
        std::vector<BeatTime> beats;
        size_t nextBeat = 0;
    };

    void beginStretch(int32_t fromMs, int32_t countIn, double clockMs, bool newPass);
    Moment nextMoment();
    void keepUp(int32_t due, bool pieceEvent);
    WaitEnd waitFor(int32_t due);
    void adoptPlan();
    void act(const Moment& moment);
    void deliver(int32_t track, const MidiEvent& event);

    PlayerClock m_clock;
    const MidiFile* m_theMidi = nullptr;
    PracticePlan m_plan;
    bool m_playing = false;      // play() is on the stack
    bool m_planChanged = false;  // setPractice came while it was
    bool m_clickEveryBeat = false;
    PracticeSchedule m_schedule;
    BeatGrid m_beatGrid;
    Stretch m_stretch;
    int32_t m_startOffsetMSecMidi = 0;
    bool m_stopRequested = false;
    int32_t m_stopOffsetMSec_midi = 0;
    bool m_repositionRequested = false;
    int32_t m_repositionTarget = 0;
    bool m_skipRequested = false;
    float m_catchUpTolerance = 0.0f;
    int32_t m_minSilenceAlertMS = 0;
    MergedTracks m_merged;
    int32_t m_currentDueMs = 0;
};

}  // namespace tarabix
