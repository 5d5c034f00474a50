#include "playback/VirtualClock.h"

#include "base/CheckedInt32.h"

#include <stdexcept>

namespace tarabix {

void VirtualClock::advanceTo(int32_t ms)
{
    if (ms <= m_now)
        return;
    const int32_t from = m_now;
    m_now = ms;
    if (onAdvance)
        onAdvance(from, ms);
}

void VirtualClock::advanceBy(int32_t ms)
{
    const auto to = checkedAdd(m_now, ms);
    if (!to)
        throw std::overflow_error("virtual clock past the 32-bit millisecond range");
    advanceTo(*to);
}

void VirtualClock::at(int32_t ms, std::function<void()> action)
{
    m_actions.emplace(ms, std::move(action));
}

void VirtualClock::wait(int32_t dueMs)
{
    const auto first = m_actions.begin();
    if (first == m_actions.end() || first->first > dueMs) {
        advanceTo(dueMs);
        return;
    }
    advanceTo(first->first);
    std::function<void()> action = std::move(first->second);
    m_actions.erase(first);
    action();
}

PlayerClock VirtualClock::playerClock()
{
    return {[this] { return now(); }, [this](int32_t dueMs) { wait(dueMs); }};
}

}  // namespace tarabix
