#include "playback/SynthTimeline.h"

#include "midi/MidiBytes.h"
#include "playback/FluidSynthEngine.h"
#include "playback/MidiOutPort.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <limits>

namespace tarabix {

namespace {

// Longer than any rest between a piece's events that should keep its rhythm across it.
constexpr int32_t kRetieAfterGapMs = 2000;

// A started audio driver first fills the device's buffer at once; its pace is watched only after
// that, longer than the largest buffer the learner may choose.
constexpr int64_t kSettleUs = 200'000;
// One stretch of the most distance; short beside the crystals' drift (0.1 ms in 2 s at 50 ppm).
constexpr int64_t kStretchUs = 2'000'000;
// Looks at times that do not follow the bursts find the most within a fraction of a burst after
// this many.
constexpr int kEnoughSeen = 16;
// A look whose two clock readings lie further apart than this was interrupted between them.
constexpr int64_t kSteadyLookUs = 200;

int64_t steadyUs()
{
    return std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

struct EventHolder {
    fluid_event_t* event = new_fluid_event();
    ~EventHolder() { delete_fluid_event(event); }
};

}  // namespace

SynthTimeline::SynthTimeline(const FluidSynthEngine& engine, double leadMs, std::function<int64_t()> realUs)
    : m_realUs(realUs ? std::move(realUs) : std::function<int64_t()>(steadyUs)), m_leadMs(leadMs)
{
    m_restartUs = m_realUs();
    if (!engine.valid())
        return;
    // 0: the sequencer's time is the synth's sample count, not the system clock.
    m_seq = new_fluid_sequencer2(0);
    if (!m_seq)
        return;
    m_synthClient = fluid_sequencer_register_fluidsynth(m_seq, engine.synth());
    if (m_synthClient == FLUID_FAILED) {
        delete_fluid_sequencer(m_seq);
        m_seq = nullptr;
    }
}

SynthTimeline::~SynthTimeline()
{
    if (m_seq)
        delete_fluid_sequencer(m_seq);
}

bool SynthTimeline::fillEvent(fluid_event_t* event, uint32_t message) const
{
    const int status = static_cast<int>(shortMessageStatus(message));
    const int ch = status & 0x0F;
    const int d1 = static_cast<int>(shortMessageData1(message));
    const int d2 = static_cast<int>(shortMessageData2(message));
    fluid_event_set_source(event, -1);
    fluid_event_set_dest(event, m_synthClient);
    switch (status & 0xF0) {
    case midistatus::kNoteOff: fluid_event_noteoff(event, ch, static_cast<short>(d1)); return true;
    case midistatus::kNoteOn:
        if (d2 == 0)
            fluid_event_noteoff(event, ch, static_cast<short>(d1));
        else
            fluid_event_noteon(event, ch, static_cast<short>(d1), static_cast<short>(d2));
        return true;
    case midistatus::kKeyPressure: fluid_event_key_pressure(event, ch, static_cast<short>(d1), d2); return true;
    case midistatus::kController: fluid_event_control_change(event, ch, static_cast<short>(d1), d2); return true;
    case midistatus::kProgramChange: fluid_event_program_change(event, ch, d1); return true;
    case midistatus::kChannelPressure: fluid_event_channel_pressure(event, ch, d1); return true;
    case midistatus::kPitchWheel: fluid_event_pitch_bend(event, ch, wheelOf(d1, d2)); return true;
    default: return false;  // system messages mean nothing to a synthesizer here
    }
}

unsigned int SynthTimeline::tickFor(int32_t dueMs, int64_t handedOverUs)
{
    const unsigned int now = fluid_sequencer_get_tick(m_seq);
    const int64_t realNow = m_realUs();
    observeAt(now, realNow);
    if (!m_anchored || dueMs < m_lastDueMs || dueMs - m_lastDueMs > kRetieAfterGapMs) {
        m_anchored = true;
        m_anchorDueMs = dueMs;
        m_anchorTick = now + static_cast<unsigned int>(std::lround(m_leadMs));
        // Measured from the hand-over: whatever delayed this call delays the whole tie.
        m_tieAheadUs = static_cast<int64_t>(now) * 1000 - std::min(handedOverUs, realNow);
    }
    m_lastDueMs = dueMs;
    const int64_t tick = static_cast<int64_t>(m_anchorTick) + (static_cast<int64_t>(dueMs) - m_anchorDueMs);
    if (tick < static_cast<int64_t>(now)) {
        ++m_late;
        return now;
    }
    return static_cast<unsigned int>(tick);
}

void SynthTimeline::sendAt(uint32_t message, int32_t dueMs, std::optional<int64_t> handedOverUs)
{
    if (!m_seq)
        return;
    EventHolder holder;
    if (!holder.event || !fillEvent(holder.event, message))
        return;
    m_lastTick = tickFor(dueMs, handedOverUs.value_or(std::numeric_limits<int64_t>::max()));
    fluid_sequencer_send_at(m_seq, holder.event, m_lastTick, 1);
}

void SynthTimeline::sendAfterPending(uint32_t message)
{
    if (!m_seq || m_lastTick < fluid_sequencer_get_tick(m_seq))
        return;
    EventHolder holder;
    if (!holder.event || !fillEvent(holder.event, message))
        return;
    // One tick later: at the same tick a note-on would still come after it.
    fluid_sequencer_send_at(m_seq, holder.event, m_lastTick + 1, 1);
}

void SynthTimeline::restartClock()
{
    m_anchored = false;
    m_restartUs = m_realUs();
    m_stretch = {};
    m_lastStretch = {};
}

void SynthTimeline::observe()
{
    if (!m_seq)
        return;
    const int64_t before = m_realUs();
    const unsigned int tick = fluid_sequencer_get_tick(m_seq);
    const int64_t after = m_realUs();
    if (after - before <= kSteadyLookUs)
        observeAt(tick, after);
}

void SynthTimeline::observeAt(unsigned int tick, int64_t realUs)
{
    if (realUs - m_restartUs < kSettleUs)
        return;
    const int64_t ahead = static_cast<int64_t>(tick) * 1000 - realUs;
    if (m_stretch.seen == 0 || realUs - m_stretch.startUs >= kStretchUs) {
        // The stretch before the last one is too old to count; the last one counts only while
        // it ended recently.
        m_lastStretch = m_stretch.seen > 0 && realUs - m_stretch.startUs < 2 * kStretchUs ? m_stretch : Stretch{};
        m_stretch = {realUs, ahead, 1};
        return;
    }
    m_stretch.mostAheadUs = std::max(m_stretch.mostAheadUs, ahead);
    ++m_stretch.seen;
}

std::optional<int64_t> SynthTimeline::mostAheadUs() const
{
    if (m_stretch.seen + m_lastStretch.seen < kEnoughSeen)
        return std::nullopt;
    if (m_lastStretch.seen == 0)
        return m_stretch.mostAheadUs;
    return std::max(m_stretch.mostAheadUs, m_lastStretch.mostAheadUs);
}

std::optional<double> SynthTimeline::tieAheadMs() const
{
    if (!m_anchored)
        return std::nullopt;
    const std::optional<int64_t> most = mostAheadUs();
    if (!most)
        return std::nullopt;
    // Right before a burst the sample clock stands a burst below its most.
    return static_cast<double>(m_tieAheadUs - (*most - m_burstUs)) / 1000.0;
}

void SynthTimeline::dropPending()
{
    if (m_seq)
        fluid_sequencer_remove_events(m_seq, -1, m_synthClient, -1);
    m_anchored = false;
}

}  // namespace tarabix
