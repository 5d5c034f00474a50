#pragma once

#include <utility>

namespace tarabix {

// Sets a flag for the life of a scope and gives it back its earlier value however the scope is
// left. The window marks with it the stretches whose own signals must not run their handlers
// (its lists refilled, its buttons set by the program, the player's long call on the stack); a
// nested scope leaves the flag set until the outermost one ends.
class ScopedFlag {
public:
    [[nodiscard]] explicit ScopedFlag(bool& flag) : m_flag(flag), m_was(std::exchange(flag, true)) {}
    ~ScopedFlag() { m_flag = m_was; }
    ScopedFlag(const ScopedFlag&) = delete;
    ScopedFlag& operator=(const ScopedFlag&) = delete;

private:
    bool& m_flag;
    bool m_was;
};

}  // namespace tarabix
