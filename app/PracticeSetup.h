#pragma once

#include "playback/PracticePlan.h"

#include <cstdint>
#include <optional>

namespace tarabix {

// What the practice row holds: the loop's ends as set so far, whether the loop is on, the tempo
// ramp and the count-in. The player gets the plan made of it.
struct PracticeSetup {
    std::optional<int32_t> aMs;
    std::optional<int32_t> bMs;
    bool loopOn = false;
    bool rampOn = false;
    TempoRamp ramp{60, 5, 100};
    int32_t countInBeats = 0;

    bool operator==(const PracticeSetup&) const = default;

    bool loopReady() const { return loopOn && aMs && bMs; }
    // What the player plays: the loop while it is on and both ends are set (until stopped), the
    // ramp while it is on (only with the loop: one pass through the piece has nothing to ramp).
    PracticePlan plan() const;
    // What must hold before the row takes a change: the ends whenever both are set, the ramp
    // whenever it is on, so the learner hears of a bad value when it is entered, not at Play.
    PracticePlan planToCheck() const;
};

}  // namespace tarabix
