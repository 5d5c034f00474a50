#pragma once

#include "base/MonotonicClock.h"
#include "playback/PlayerClock.h"

#include <memory>

namespace tarabix {

// The player's wait inside the Qt event loop: the window (or tarabix-cli play) keeps handling its
// events while the next note is due, and the wait returns at the due time or as soon as at least
// one event was handled. It sleeps in the event loop instead of spinning, so playing costs almost
// no processor time. Needs a QCoreApplication.
class QtPlayerWait {
public:
    enum class Strategy {
        // Linux: a timerfd armed with the absolute due time on the monotonic clock, watched by a
        // QSocketNotifier; wakes the loop within tens of microseconds.
        TimerFd,
        // Anywhere: a Qt::PreciseTimer, rounded up to whole milliseconds (Qt timers count ms).
        PreciseTimer,
        // One pass over pending events per call and no sleep: the engine spins on the clock. Kept
        // only to measure what the sleeping strategies save.
        BusyPoll,
    };

    // TimerFd where the platform has it, otherwise PreciseTimer.
    static Strategy bestStrategy();

    explicit QtPlayerWait(Strategy strategy = bestStrategy());
    ~QtPlayerWait();
    QtPlayerWait(const QtPlayerWait&) = delete;
    QtPlayerWait& operator=(const QtPlayerWait&) = delete;

    // The strategy in use: TimerFd falls back to PreciseTimer when no timerfd can be made.
    Strategy strategy() const;

    void waitUntil(MonotonicClock::TimePoint deadline);

    // now() in ms and wait(due) on `clock`; both objects must outlive the player's use of it.
    static PlayerClock playerClock(const MonotonicClock& clock, QtPlayerWait& wait);

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};

}  // namespace tarabix
