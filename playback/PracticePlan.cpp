#include "playback/PracticePlan.h"

#include <algorithm>
#include <cstdio>

namespace tarabix {

namespace {

std::optional<std::string> loopProblem(const LoopRange& loop, int32_t pieceLengthMs)
{
    if (loop.toMs <= loop.fromMs)
        return "The loop's end (B) must come after its start (A).";
    if (loop.fromMs < 0 || loop.toMs > pieceLengthMs)
        return "The loop must lie inside the piece, which runs from 0:00.0 to " + practiceTimeText(pieceLengthMs) + ".";
    if (loop.toMs - loop.fromMs < kMinLoopMs)
        return "The loop must be at least " + std::to_string(kMinLoopMs) + " milliseconds long.";
    return std::nullopt;
}

std::optional<std::string> rampProblem(const TempoRamp& ramp)
{
    const std::string bounds = std::to_string(kMinRampPercent) + " % and " + std::to_string(kMaxRampPercent) + " %";
    if (ramp.fromPercent < kMinRampPercent || ramp.fromPercent > kMaxRampPercent)
        return "The tempo ramp must start between " + bounds + " of the chosen speed.";
    if (ramp.ceilingPercent > kMaxRampPercent)
        return "The tempo ramp cannot go above " + std::to_string(kMaxRampPercent) + " % of the chosen speed.";
    if (ramp.fromPercent > ramp.ceilingPercent)
        return "The tempo ramp starts at " + std::to_string(ramp.fromPercent) + " %, above the most it may reach (" +
               std::to_string(ramp.ceilingPercent) + " %).";
    if (ramp.stepPercent <= 0)
        return "The tempo ramp must speed up by at least 1 % a pass.";
    return std::nullopt;
}

}  // namespace

std::string practiceTimeText(int32_t ms)
{
    const int32_t tenths = ms / 100;
    char text[32];
    std::snprintf(text, sizeof text, "%d:%02d.%d", tenths / 600, tenths / 10 % 60, tenths % 10);
    return text;
}

int32_t passPercent(const TempoRamp& ramp, int32_t pass)
{
    const int64_t percent = ramp.fromPercent + static_cast<int64_t>(pass) * ramp.stepPercent;
    return static_cast<int32_t>(std::min<int64_t>(ramp.ceilingPercent, percent));
}

std::optional<std::string> practicePlanProblem(const PracticePlan& plan, int32_t pieceLengthMs)
{
    if (plan.loop) {
        if (auto problem = loopProblem(*plan.loop, pieceLengthMs))
            return problem;
    }
    if (plan.passes < 0)
        return "The number of passes cannot be negative.";
    if (plan.ramp) {
        if (auto problem = rampProblem(*plan.ramp))
            return problem;
    }
    if (plan.countInBeats < 0 || plan.countInBeats > kMaxCountInBeats)
        return "The count-in must be 0 to " + std::to_string(kMaxCountInBeats) + " beats.";
    return std::nullopt;
}

}  // namespace tarabix
