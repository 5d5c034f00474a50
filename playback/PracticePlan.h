#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace tarabix {

// A passage to practise, in piece milliseconds: A (fromMs) up to B (toMs), B not included.
struct LoopRange {
    int32_t fromMs = 0;
    int32_t toMs = 0;
    bool operator==(const LoopRange&) const = default;
};

// Pass k plays at min(ceilingPercent, fromPercent + k * stepPercent) % of the learner's speed.
struct TempoRamp {
    int32_t fromPercent = 100;
    int32_t stepPercent = 0;
    int32_t ceilingPercent = 100;
    bool operator==(const TempoRamp&) const = default;
};

// How the learner practises a piece: once through, or a passage again and again, slow at first
// and faster pass after pass, each pass counted in.
struct PracticePlan {
    std::optional<LoopRange> loop;  // none: the piece plays once from its start position
    int32_t passes = 0;             // with a loop: how many passes, 0 = until stopped
    std::optional<TempoRamp> ramp;  // none: every pass at the chosen speed
    int32_t countInBeats = 0;       // clicks before playing and before each pass of a loop
    bool operator==(const PracticePlan&) const = default;
};

// The limits a plan is held to (practicePlanProblem words them for the learner).
inline constexpr int32_t kMinLoopMs = 100;
inline constexpr int32_t kMinRampPercent = 25;
inline constexpr int32_t kMaxRampPercent = 200;
inline constexpr int32_t kMaxCountInBeats = 16;

// A piece time as the practice room writes it, minutes, seconds and tenths begun: 125400 -> "2:05.4".
std::string practiceTimeText(int32_t ms);

// The percentage of the chosen speed pass `pass` (from 0) plays at.
int32_t passPercent(const TempoRamp& ramp, int32_t pass);

// Why the plan cannot be played on a piece of this length, as a sentence for the learner; nullopt
// when it can. The window and tarabix-cli both ask here, so the rules live in one place.
std::optional<std::string> practicePlanProblem(const PracticePlan& plan, int32_t pieceLengthMs);

}  // namespace tarabix
