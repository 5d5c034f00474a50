#pragma once

#include <chrono>
#include <cstdint>

namespace tarabix {

// A steady clock counted from its own origin, read in milliseconds (the player's 32-bit times)
// or in microseconds (how late an event really went out). Both readings share the origin, so a
// due time in ms and a send time in us can be compared directly.
class MonotonicClock {
public:
    using TimePoint = std::chrono::steady_clock::time_point;

    MonotonicClock() : m_origin(std::chrono::steady_clock::now()) {}

    int64_t micros() const
    {
        return std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - m_origin)
            .count();
    }

    // Whole milliseconds passed, rounded down: a time of ms N starts at N * 1000 us.
    int32_t millis() const { return static_cast<int32_t>(micros() / 1000); }

    TimePoint timePointOfMillis(int32_t ms) const { return m_origin + std::chrono::milliseconds(ms); }

private:
    TimePoint m_origin;
};

}  // namespace tarabix
