#pragma once

#include <fluidsynth.h>

#include <cstdint>
#include <functional>
#include <optional>

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
//
// It also knows when a stamped message is heard. The audio thread renders in bursts, so how far
// the sample clock runs ahead of real time swings by a burst: right after a burst it is at its
// most, and a burst less stands a fixed distance, the device's delay, before what is heard. (It
// can fall lower for a while when the audio thread is late, which is why the most is watched,
// not the least.) Watching that distance now and then (observe) gives where in the swing the
// clocks were tied, and so how long after its due time every message of the tie sounds.
class SynthTimeline {
public:
    // realUs: microseconds on a steady clock (tests give a virtual one); empty: the system's.
    SynthTimeline(const FluidSynthEngine& engine, double leadMs, std::function<int64_t()> realUs = {});
    ~SynthTimeline();
    SynthTimeline(const SynthTimeline&) = delete;
    SynthTimeline& operator=(const SynthTimeline&) = delete;

    bool valid() const { return m_seq != nullptr; }

    // handedOverUs: when the sender handed the message over, on the real clock, if something
    // (waking the audio) came between that and this call; empty: now.
    void sendAt(uint32_t message, int32_t dueMs, std::optional<int64_t> handedOverUs = std::nullopt);

    // A message that silences a channel (all notes off, all sound off, sustain off) sent without a
    // due time: it also goes in after everything already waiting, so a note queued just before it
    // cannot start after it and hang.
    void sendAfterPending(uint32_t message);

    // Forgets every message still waiting: after a reset nothing queued may sound.
    void dropPending();
    // The next stamp ties the clocks again (the sample clock stood still while the audio was off),
    // and what was seen of the audio's pace is forgotten.
    void restartClock();

    // Notes how far the sample clock runs ahead of real time now; each stamped message does too.
    // The owner calls it every few milliseconds while the audio runs, at times that do not
    // follow the bursts, so that the least distance is seen.
    void observe();
    // How much further ahead of real time the sample clock stood, when the clocks were tied, than
    // right before a burst: a message due at d is heard at d + lead + this + the device's delay.
    // Empty while nothing is tied or too little of the audio's pace has been seen since it started.
    std::optional<double> tieAheadMs() const;

    double leadMs() const { return m_leadMs; }
    void setLeadMs(double ms) { m_leadMs = ms; }
    // How much audio the driver renders at a time (AudioDriverSettings::burstMs).
    void setBurstMs(double ms) { m_burstUs = static_cast<int64_t>(ms * 1000.0); }
    // The synth's sample clock in ms since this timeline began: it stands still while no audio
    // thread renders.
    unsigned int sampleClockMs() const { return m_seq ? fluid_sequencer_get_tick(m_seq) : 0; }
    // Stamped messages that arrived after their sample had been rendered.
    int64_t lateMessages() const { return m_late; }

private:
    // The most distance seen over a stretch of real time: two stretches are kept, so it follows
    // the slow drift of the sound card's crystal against the system clock.
    struct Stretch {
        int64_t startUs = 0;
        int64_t mostAheadUs = 0;
        int seen = 0;
    };

    bool fillEvent(fluid_event_t* event, uint32_t message) const;
    unsigned int tickFor(int32_t dueMs, int64_t handedOverUs);
    void observeAt(unsigned int tick, int64_t realUs);
    std::optional<int64_t> mostAheadUs() const;

    std::function<int64_t()> m_realUs;
    fluid_sequencer_t* m_seq = nullptr;
    fluid_seq_id_t m_synthClient = -1;
    double m_leadMs;
    bool m_anchored = false;
    int32_t m_anchorDueMs = 0;
    unsigned int m_anchorTick = 0;
    int32_t m_lastDueMs = 0;
    unsigned int m_lastTick = 0;
    int64_t m_late = 0;
    int64_t m_burstUs = 0;
    int64_t m_restartUs = 0;
    int64_t m_tieAheadUs = 0;
    Stretch m_stretch;
    Stretch m_lastStretch;
};

}  // namespace tarabix
