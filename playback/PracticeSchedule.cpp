#include "playback/PracticeSchedule.h"

#include "base/Rounding.h"
#include "midi/MidiError.h"

namespace tarabix {

namespace {

constexpr const char* kSource = "MidiPlayer";

}  // namespace

void PracticeSchedule::start(const PracticePlan& plan)
{
    m_plan = plan;
    m_pass = 0;
}

void PracticeSchedule::change(const PracticePlan& plan)
{
    anchor(m_playedPieceMs, m_playedClockMs);
    start(plan);
}

void PracticeSchedule::setChosenSpeed(float ratio)
{
    anchor(m_playedPieceMs, m_playedClockMs);
    m_chosenSpeed = ratio;
}

double PracticeSchedule::speed() const
{
    const double chosen = m_chosenSpeed;
    return m_plan.ramp ? chosen * passPercent(*m_plan.ramp, m_pass) / 100.0 : chosen;
}

void PracticeSchedule::anchor(int32_t pieceMs, double clockMs)
{
    m_anchorPieceMs = m_playedPieceMs = pieceMs;
    m_anchorClockMs = m_playedClockMs = clockMs;
}

double PracticeSchedule::exactDue(int32_t pieceMs) const
{
    const double ratio = speed();
    if (ratio == 0.0)
        throw MidiError(midierr::kDivisionByZero, kSource);
    return m_anchorClockMs + (static_cast<double>(pieceMs) - m_anchorPieceMs) / ratio;
}

int32_t PracticeSchedule::due(int32_t pieceMs) const
{
    if (const auto rounded = roundHalfEvenToInt32(exactDue(pieceMs)))
        return *rounded;
    throw MidiError(midierr::kOverflow, kSource);
}

void PracticeSchedule::moveBy(int32_t ms)
{
    m_anchorClockMs += ms;
    m_playedClockMs += ms;
}

void PracticeSchedule::played(int32_t pieceMs, int32_t clockMs)
{
    m_playedPieceMs = pieceMs;
    m_playedClockMs = clockMs;
}

}  // namespace tarabix
