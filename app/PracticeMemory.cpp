#include "app/PracticeMemory.h"

#include "settings/UserSettings.h"

#include <map>

namespace tarabix {

namespace {

// The numbers' names in the piece's group of the settings store.
constexpr const char* kA = "LoopFromMS";
constexpr const char* kB = "LoopToMS";
constexpr const char* kLoopOn = "LoopOn";
constexpr const char* kRampOn = "RampOn";
constexpr const char* kRampFrom = "RampFromPercent";
constexpr const char* kRampStep = "RampStepPercent";
constexpr const char* kRampCeiling = "RampCeilingPercent";
constexpr const char* kCountIn = "CountInBeats";
constexpr const char* kSpeed = "SpeedPercent";

}  // namespace

std::optional<RememberedPractice> recallPractice(const UserSettings& settings, const std::string& piecePath)
{
    const std::map<std::string, int32_t> n = settings.pieceNumbers(piecePath);
    if (n.empty())
        return std::nullopt;
    const auto number = [&n](const char* key, int32_t otherwise) {
        const auto it = n.find(key);
        return it == n.end() ? otherwise : it->second;
    };
    RememberedPractice p;
    if (n.contains(kA))
        p.setup.aMs = n.at(kA);
    if (n.contains(kB))
        p.setup.bMs = n.at(kB);
    p.setup.loopOn = number(kLoopOn, 0) != 0;
    p.setup.rampOn = number(kRampOn, 0) != 0;
    p.setup.ramp.fromPercent = number(kRampFrom, p.setup.ramp.fromPercent);
    p.setup.ramp.stepPercent = number(kRampStep, p.setup.ramp.stepPercent);
    p.setup.ramp.ceilingPercent = number(kRampCeiling, p.setup.ramp.ceilingPercent);
    p.setup.countInBeats = number(kCountIn, 0);
    p.speedPercent = number(kSpeed, 100);
    return p;
}

void rememberPractice(UserSettings& settings, const std::string& piecePath, const RememberedPractice& practice)
{
    const PracticeSetup& s = practice.setup;
    PracticeSetup withoutLoopSwitch = s;  // the switch alone, no ends set, is nothing to keep
    withoutLoopSwitch.loopOn = false;
    if (withoutLoopSwitch == PracticeSetup{} && practice.speedPercent == 100) {
        settings.setPieceNumbers(piecePath, {});
        return;
    }
    std::map<std::string, int32_t> n{
        {kLoopOn, s.loopOn ? 1 : 0},
        {kRampOn, s.rampOn ? 1 : 0},
        {kRampFrom, s.ramp.fromPercent},
        {kRampStep, s.ramp.stepPercent},
        {kRampCeiling, s.ramp.ceilingPercent},
        {kCountIn, s.countInBeats},
        {kSpeed, practice.speedPercent},
    };
    if (s.aMs)
        n[kA] = *s.aMs;
    if (s.bMs)
        n[kB] = *s.bMs;
    settings.setPieceNumbers(piecePath, n);
}

}  // namespace tarabix
