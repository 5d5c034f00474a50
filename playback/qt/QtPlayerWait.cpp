#include "playback/qt/QtPlayerWait.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QSocketNotifier>
#include <QTimer>

#include <chrono>

#ifdef __linux__
#include <sys/timerfd.h>
#include <time.h>
#include <unistd.h>
#endif

namespace tarabix {

namespace {

using std::chrono::steady_clock;

#ifdef __linux__
// A timerfd that becomes readable at an absolute time of the monotonic clock.
class DueTimerFd {
public:
    DueTimerFd() : m_fd(timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK | TFD_CLOEXEC)) {}
    ~DueTimerFd()
    {
        if (m_fd >= 0)
            ::close(m_fd);
    }
    DueTimerFd(const DueTimerFd&) = delete;
    DueTimerFd& operator=(const DueTimerFd&) = delete;

    int fd() const { return m_fd; }

    // The steady clock and CLOCK_MONOTONIC are not promised to share an origin, so the deadline
    // is carried over as the time left from now.
    bool armAt(steady_clock::time_point deadline)
    {
        drain();  // an expiry left from a wait that an event ended early
        timespec now{};
        clock_gettime(CLOCK_MONOTONIC, &now);
        const auto left =
            std::chrono::duration_cast<std::chrono::nanoseconds>(deadline - steady_clock::now()).count();
        int64_t ns = static_cast<int64_t>(now.tv_nsec) + (left > 0 ? left : 1);
        itimerspec due{};
        due.it_value.tv_sec = now.tv_sec + static_cast<time_t>(ns / 1000000000);
        due.it_value.tv_nsec = static_cast<long>(ns % 1000000000);
        return timerfd_settime(m_fd, TFD_TIMER_ABSTIME, &due, nullptr) == 0;
    }

    // Reading takes the expiry off the descriptor; a readable fd would wake the loop again and again.
    void drain()
    {
        uint64_t expirations = 0;
        [[maybe_unused]] const ssize_t n = ::read(m_fd, &expirations, sizeof expirations);
    }

private:
    int m_fd;
};
#endif

}  // namespace

struct QtPlayerWait::Impl {
    Strategy strategy = Strategy::PreciseTimer;
    QTimer timer;
#ifdef __linux__
    std::unique_ptr<DueTimerFd> timerFd;
    std::unique_ptr<QSocketNotifier> notifier;
#endif
};

QtPlayerWait::Strategy QtPlayerWait::bestStrategy()
{
#ifdef __linux__
    return Strategy::TimerFd;
#else
    return Strategy::PreciseTimer;
#endif
}

QtPlayerWait::QtPlayerWait(Strategy strategy) : m_impl(std::make_unique<Impl>())
{
    m_impl->strategy = strategy;
    m_impl->timer.setSingleShot(true);
    m_impl->timer.setTimerType(Qt::PreciseTimer);
    if (strategy != Strategy::TimerFd)
        return;
    m_impl->strategy = Strategy::PreciseTimer;
#ifdef __linux__
    auto timerFd = std::make_unique<DueTimerFd>();
    if (timerFd->fd() < 0)
        return;
    m_impl->notifier = std::make_unique<QSocketNotifier>(timerFd->fd(), QSocketNotifier::Read);
    DueTimerFd* fd = timerFd.get();
    QObject::connect(m_impl->notifier.get(), &QSocketNotifier::activated, [fd] { fd->drain(); });
    m_impl->timerFd = std::move(timerFd);
    m_impl->strategy = Strategy::TimerFd;
#endif
}

QtPlayerWait::~QtPlayerWait() = default;

QtPlayerWait::Strategy QtPlayerWait::strategy() const
{
    return m_impl->strategy;
}

void QtPlayerWait::waitUntil(MonotonicClock::TimePoint deadline)
{
    const auto left = deadline - steady_clock::now();
    if (m_impl->strategy == Strategy::BusyPoll || left <= steady_clock::duration::zero()) {
        QCoreApplication::processEvents(QEventLoop::AllEvents);
        return;
    }
#ifdef __linux__
    if (m_impl->strategy == Strategy::TimerFd && m_impl->timerFd->armAt(deadline)) {
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
        return;
    }
#endif
    // Rounded up: waking a little late costs less than waking early and waiting again.
    const auto ms = std::chrono::ceil<std::chrono::milliseconds>(left);
    m_impl->timer.start(ms);
    QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
}

PlayerClock QtPlayerWait::playerClock(const MonotonicClock& clock, QtPlayerWait& wait)
{
    return {[&clock] { return clock.millis(); },
            [&clock, &wait](int32_t dueMs) { wait.waitUntil(clock.timePointOfMillis(dueMs)); }};
}

}  // namespace tarabix
