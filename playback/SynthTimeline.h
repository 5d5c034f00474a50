#pragma once

#include <fluidsynth.h>

#include <cstdint>

namespace tarabix {

class FluidSynthEngine;

// Plays a piece's messages at the sample of their due time rather than whenever the thread that
// sends them got there. The messages go into FluidSynth's sequencer, which runs on the synth's
// own sample clock, so the audio thread starts each one at its place in the sound however late
// the sender was (by up to the lead) and however the audio thread itself was scheduled.
//
// Due times are milliseconds on the sender's clock (the player's). The first stamped message
// ties that clock to the sample clock: it plays `lead` ms after the audio rendered so far, and
// every later one at the same distance from its own due time. A message later than its lead
// plays at once. A reset, a restart of the audio, or a gap of a few seconds between stamps ties
// the clocks afresh (the two crystals drift apart slowly, and a new start owes nothing to the
// last one).
class SynthTimeline {
public:
    SynthTimeline(const FluidSynthEngine& engine, double leadMs);
    ~SynthTimeline();
    SynthTimeline(const SynthTimeline&) = delete;
    SynthTimeline& operator=(const SynthTimeline&) = delete;

    bool valid() const { return m_seq != nullptr; }

    void sendAt(uint32_t message, int32_t dueMs);

    // A message that silences a channel (all notes off, all sound off, sustain off) sent without a
    // due time: it also goes in after everything already waiting, so a note queued just before it
    // cannot start after it and hang.
    void sendAfterPending(uint32_t message);

    // Forgets every message still waiting: after a reset nothing queued may sound.
    void dropPending();
    // The next stamp ties the clocks again (the sample clock stood still while the audio was off).
    void restartClock() { m_anchored = false; }

    double leadMs() const { return m_leadMs; }
    void setLeadMs(double ms) { m_leadMs = ms; }
    // The synth's sample clock in ms since this timeline began: it stands still while no audio
    // thread renders.
    unsigned int sampleClockMs() const { return m_seq ? fluid_sequencer_get_tick(m_seq) : 0; }
    // Stamped messages that arrived after their sample had been rendered.
    int64_t lateMessages() const { return m_late; }

private:
    bool fillEvent(fluid_event_t* event, uint32_t message) const;
    unsigned int tickFor(int32_t dueMs);

    fluid_sequencer_t* m_seq = nullptr;
    fluid_seq_id_t m_synthClient = -1;
    double m_leadMs;
    bool m_anchored = false;
    int32_t m_anchorDueMs = 0;
    unsigned int m_anchorTick = 0;
    int32_t m_lastDueMs = 0;
    unsigned int m_lastTick = 0;
    int64_t m_late = 0;
};

}  // namespace tarabix
