#pragma once

#include "playback/PlayerClock.h"

#include <cstdint>
#include <functional>
#include <map>

namespace tarabix {

// A clock that only moves when told to: waiting costs nothing, so tests check a schedule to the
// millisecond and an offline render runs as fast as the synthesizer can compute. User actions
// (a stop button, a slider) are scheduled at a time and run inside the wait that reaches it,
// just as the window's handlers run inside the player's wait.
class VirtualClock {
public:
    explicit VirtualClock(int32_t startMs = 0) : m_now(startMs) {}

    int32_t now() const { return m_now; }

    // Moves time forward to ms (never back); onAdvance hears of every move.
    void advanceTo(int32_t ms);
    void advanceBy(int32_t ms);

    // Runs action once the clock reaches ms, inside a wait; actions at the same time run in the
    // order they were scheduled.
    void at(int32_t ms, std::function<void()> action);

    // The player's wait: when a user action falls due first, moves to its time, runs it and
    // returns (one event handled); otherwise moves to dueMs.
    void wait(int32_t dueMs);

    PlayerClock playerClock();

    // Called with the old and new time whenever the clock moves forward (a renderer writes the
    // audio of that span).
    std::function<void(int32_t fromMs, int32_t toMs)> onAdvance;

private:
    int32_t m_now;
    std::multimap<int32_t, std::function<void()>> m_actions;
};

}  // namespace tarabix
