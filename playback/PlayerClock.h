#pragma once

#include <cstdint>
#include <functional>

namespace tarabix {

// Time as the player sees it, given by its owner so the engine needs no toolkit: `now` reads
// milliseconds on a steady clock, and `wait(dueMs)` returns once that time is reached or as soon
// as the owner has handled at least one user-interface event, whichever comes first. The window
// waits in its event loop, tests and offline rendering on a virtual clock.
struct PlayerClock {
    std::function<int32_t()> now;
    std::function<void(int32_t dueMs)> wait;
};

}  // namespace tarabix
