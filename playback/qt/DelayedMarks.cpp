#include "playback/qt/DelayedMarks.h"

#include <algorithm>

namespace tarabix {

namespace {

// A dense passage on all channels: 16 chords of 6 notes, their ons and offs, inside the longest
// delay an output has (the built-in synthesizer at its highest latency, about 0.3 s).
constexpr size_t kInitialMarks = 256;

}  // namespace

DelayedMarks::DelayedMarks(Clock nowMs, Show show)
    : m_now(std::move(nowMs)), m_show(std::move(show)), m_ring(kInitialMarks)
{
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { showDue(); });
}

void DelayedMarks::add(const PieceMark& mark)
{
    if (m_count == m_ring.size()) {
        std::vector<Entry> larger(m_ring.size() * 2);
        for (size_t i = 0; i < m_count; ++i)
            larger[i] = at(i);
        m_ring.swap(larger);
        m_head = 0;
    }
    at(m_count) = {0, mark};
    ++m_count;
    ++m_held;
}

void DelayedMarks::release(int32_t dueMs)
{
    if (m_held == 0)
        return;
    const size_t first = m_count - m_held;
    if (first > 0)
        dueMs = std::max(dueMs, at(first - 1).dueMs);
    for (size_t i = first; i < m_count; ++i)
        at(i).dueMs = dueMs;
    m_held = 0;
    showDue();
}

bool DelayedMarks::drop()
{
    const bool any = m_count > 0;
    m_head = 0;
    m_count = 0;
    m_held = 0;
    m_timer.stop();
    return any;
}

void DelayedMarks::showDue()
{
    const int32_t now = m_now();
    // Released marks come before the held ones. Each is taken out before it is shown, so a
    // showing that drops the rest, or shows them itself, leaves the ring in order.
    while (m_count > m_held && at(0).dueMs <= now) {
        const PieceMark mark = at(0).mark;
        m_head = (m_head + 1) & (m_ring.size() - 1);
        --m_count;
        m_show(mark);
    }
    arm(now);
}

void DelayedMarks::arm(int32_t nowMs)
{
    if (m_count > m_held)
        m_timer.start(std::max(0, at(0).dueMs - nowMs));
    else
        m_timer.stop();
}

std::optional<int32_t> DelayedMarks::nextDueMs() const
{
    if (m_count == m_held)
        return std::nullopt;
    return at(0).dueMs;
}

}  // namespace tarabix
