#pragma once

#include "playback/PracticePlan.h"

#include <cstdint>

namespace tarabix {

// When each moment of a piece is due on the player's clock, pass after pass of a practice plan.
// Playing is anchored at one exact clock time, kept unrounded, and every due time is rounded from
// that anchor alone; a loop's next pass is anchored exactly where the end of the last one was
// due, so however many passes are played their rounding never adds up. Changes of speed,
// catching up after a late hand-over and skipping a silence move the anchor in whole
// milliseconds of real time, as the learner hears them.
//
// A speed of 0 raises MidiError kDivisionByZero, a due time outside 32 bits kOverflow.
class PracticeSchedule {
public:
    // Pass 0 of the plan.
    void start(const PracticePlan& plan);
    // Another plan while playing: the music goes on from the last moment played at the new plan's
    // speed, its ramp from its first pass.
    void change(const PracticePlan& plan);
    int32_t playedPieceMs() const { return m_playedPieceMs; }
    const PracticePlan& plan() const { return m_plan; }

    int32_t pass() const { return m_pass; }
    // Whether a loop goes on after the current pass: until stopped, or until its passes are done.
    bool anotherPass() const { return m_plan.passes == 0 || m_pass + 1 < m_plan.passes; }
    void nextPass() { ++m_pass; }

    float chosenSpeed() const { return m_chosenSpeed; }
    // From the last moment played on: the music goes on from there at the new speed.
    void setChosenSpeed(float ratio);
    // The speed played: the chosen one, during a ramp at the current pass's share of it.
    double speed() const;

    // Piece time pieceMs is due at exactly clockMs; the schedule's moments go on from there.
    void anchor(int32_t pieceMs, double clockMs);
    double exactDue(int32_t pieceMs) const;
    int32_t due(int32_t pieceMs) const;
    // Everything still to come is due ms later (earlier when negative).
    void moveBy(int32_t ms);
    // The moment at pieceMs was handed over at clockMs: a change of speed goes on from here.
    void played(int32_t pieceMs, int32_t clockMs);

private:
    PracticePlan m_plan;
    int32_t m_pass = 0;
    float m_chosenSpeed = 1.0f;
    int32_t m_anchorPieceMs = 0;
    double m_anchorClockMs = 0.0;
    int32_t m_playedPieceMs = 0;
    double m_playedClockMs = 0.0;
};

}  // namespace tarabix
