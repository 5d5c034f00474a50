#include "app/PracticeSetup.h"

namespace tarabix {

PracticePlan PracticeSetup::plan() const
{
    PracticePlan plan = planToCheck();
    if (!loopReady()) {
        plan.loop.reset();
        plan.ramp.reset();
    }
    return plan;
}

PracticePlan PracticeSetup::planToCheck() const
{
    PracticePlan plan;
    if (aMs && bMs)
        plan.loop = LoopRange{*aMs, *bMs};
    if (rampOn)
        plan.ramp = ramp;
    plan.countInBeats = countInBeats;
    return plan;
}

}  // namespace tarabix
