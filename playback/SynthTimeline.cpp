#include "playback/SynthTimeline.h"

#include "midi/MidiBytes.h"
#include "playback/FluidSynthEngine.h"
#include "playback/MidiOutPort.h"

#include <cmath>

namespace tarabix {

namespace {

// Longer than any rest between a piece's events that should keep its rhythm across it.
constexpr int32_t kRetieAfterGapMs = 2000;

struct EventHolder {
    fluid_event_t* event = new_fluid_event();
    ~EventHolder() { delete_fluid_event(event); }
};

}  // namespace

SynthTimeline::SynthTimeline(const FluidSynthEngine& engine, double leadMs) : m_leadMs(leadMs)
{
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

unsigned int SynthTimeline::tickFor(int32_t dueMs)
{
    const unsigned int now = fluid_sequencer_get_tick(m_seq);
    if (!m_anchored || dueMs < m_lastDueMs || dueMs - m_lastDueMs > kRetieAfterGapMs) {
        m_anchored = true;
        m_anchorDueMs = dueMs;
        m_anchorTick = now + static_cast<unsigned int>(std::lround(m_leadMs));
    }
    m_lastDueMs = dueMs;
    const int64_t tick = static_cast<int64_t>(m_anchorTick) + (static_cast<int64_t>(dueMs) - m_anchorDueMs);
    if (tick < static_cast<int64_t>(now)) {
        ++m_late;
        return now;
    }
    return static_cast<unsigned int>(tick);
}

void SynthTimeline::sendAt(uint32_t message, int32_t dueMs)
{
    if (!m_seq)
        return;
    EventHolder holder;
    if (!holder.event || !fillEvent(holder.event, message))
        return;
    m_lastTick = tickFor(dueMs);
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

void SynthTimeline::dropPending()
{
    if (m_seq)
        fluid_sequencer_remove_events(m_seq, -1, m_synthClient, -1);
    m_anchored = false;
}

}  // namespace tarabix
