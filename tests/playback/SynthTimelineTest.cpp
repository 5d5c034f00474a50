#include "playback/FluidSynthEngine.h"
#include "playback/SoundFontLocator.h"
#include "playback/SynthTimeline.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <vector>

namespace tarabix {
namespace {

constexpr double kRate = 44100.0;
constexpr int kPeriod = 441;             // the virtual audio thread writes 10 ms at a time
constexpr int kAheadMs = 10;             // and keeps this much rendered ahead of the wall clock
constexpr double kLeadMs = 10.0 + 10.0;  // its burst plus room for a late sender
constexpr int kClicks = 30;
constexpr int kIntervalMs = 100;
constexpr uint32_t kClickOn = 0x784C99;  // wood block, channel 10, velocity 120
constexpr uint32_t kClickOff = 0x4C89;

// A synth without an audio driver, rendered by the test on a virtual clock: the audio thread of
// a sound card, made deterministic.
class VirtualAudio {
public:
    explicit VirtualAudio(const std::string& soundFont, std::function<int64_t()> realUs = {})
        : engine(kRate), timeline(engine, kLeadMs, std::move(realUs))
    {
        ready = engine.loadSoundFont(soundFont) && timeline.valid();
    }

    // Renders in whole periods until the wall clock's ms plus the lookahead is covered.
    void advanceTo(int wallMs)
    {
        while (samples.size() < static_cast<size_t>((wallMs + kAheadMs) * kRate / 1000.0)) {
            std::vector<float> left(kPeriod);
            std::vector<float> right(kPeriod);
            fluid_synth_write_float(engine.synth(), kPeriod, left.data(), 0, 1, right.data(), 0, 1);
            for (int i = 0; i < kPeriod; ++i)
                samples.push_back(left[i] + right[i]);
        }
    }

    // First sample above a third of the loudest, at least half an interval after the last; none
    // when nothing was louder than the synth's idle hiss.
    std::vector<size_t> onsets(size_t from = 0) const
    {
        float peak = 0;
        for (size_t i = from; i < samples.size(); ++i)
            peak = std::max(peak, std::fabs(samples[i]));
        if (peak < 0.01f)
            return {};
        std::vector<size_t> found;
        for (size_t i = from; i < samples.size(); ++i) {
            if (std::fabs(samples[i]) >= peak / 3) {
                found.push_back(i);
                i += static_cast<size_t>(kRate * kIntervalMs / 2000);
            }
        }
        return found;
    }

    FluidSynthEngine engine;
    SynthTimeline timeline;
    std::vector<float> samples;
    bool ready = false;
};

// How late the sending thread hands each click over: scattered, up to 9 ms.
int lateness(int i)
{
    return (i * 7) % 10;
}

// The thread that sends is late by different amounts; stamped, every click still starts at its
// due sample (to the synth's 64-frame block), while sent "now" the lateness is heard.
TEST(SynthTimeline, ALateSenderStillGivesExactSampleTimes)
{
    const std::string soundFont = findSoundFont();
    if (soundFont.empty())
        GTEST_SKIP() << "no General MIDI SoundFont installed";
    for (const bool stamped : {true, false}) {
        SCOPED_TRACE(stamped ? "stamped" : "sent now");
        VirtualAudio audio(soundFont);
        ASSERT_TRUE(audio.ready);
        for (int i = 0; i < kClicks; ++i) {
            const int due = 200 + i * kIntervalMs;
            audio.advanceTo(due + lateness(i));
            if (stamped) {
                audio.timeline.sendAt(kClickOn, due);
                audio.timeline.sendAt(kClickOff, due + kIntervalMs / 2);
            } else {
                audio.engine.dispatch(kClickOn);
            }
        }
        audio.advanceTo(200 + kClicks * kIntervalMs + 200);
        const std::vector<size_t> onsets = audio.onsets();
        ASSERT_EQ(onsets.size(), static_cast<size_t>(kClicks));
        std::vector<double> phase;
        for (int i = 0; i < kClicks; ++i)
            phase.push_back(static_cast<double>(onsets[i]) - i * kIntervalMs * kRate / 1000.0);
        const auto [lo, hi] = std::ranges::minmax(phase);
        if (stamped) {
            EXPECT_LE(hi - lo, 64.0);
            EXPECT_EQ(audio.timeline.lateMessages(), 0);
            // The first click sounds the lead after the audio rendered when it was handed over.
            const double firstDue = (200 + lateness(0) + kAheadMs + kLeadMs) * kRate / 1000.0;
            EXPECT_NEAR(static_cast<double>(onsets[0]), firstDue, kPeriod + 64.0);
        } else {
            EXPECT_GT(hi - lo, 5 * kRate / 1000.0);
        }
    }
}

// Where in the audio thread's burst the clocks are tied moves the whole tie by up to a burst; the
// timeline watches the audio's pace and tells how far, so that the lead, this and the device's
// delay give the moment each message is heard. The virtual device plays sample s at wall time
// s / rate, kAheadMs behind the least the audio thread keeps rendered when it is on time.
TEST(SynthTimeline, KnowsWhenAStampedMessageIsHeardWhereverTheTieFalls)
{
    const std::string soundFont = findSoundFont();
    if (soundFont.empty())
        GTEST_SKIP() << "no General MIDI SoundFont installed";
    std::vector<double> misses;
    for (int phase = 0; phase < 10; phase += 3) {  // ms into the 10-ms write period
        for (const int wakeMs : {0, 4}) {           // the audio woke between hand-over and send
            SCOPED_TRACE(testing::Message() << "phase " << phase << " wake " << wakeMs);
            int wallMs = 0;
            VirtualAudio audio(soundFont, [&wallMs] { return static_cast<int64_t>(wallMs) * 1000; });
            ASSERT_TRUE(audio.ready);
            audio.timeline.setBurstMs(kPeriod * 1000.0 / kRate);
            // The audio thread is 4 ms late now and then, and then catches up at once.
            const auto runTo = [&](int ms) {
                for (; wallMs < ms; ++wallMs) {
                    if (wallMs % 97 >= 4)
                        audio.advanceTo(wallMs);
                    if (wallMs % 7 == 0)  // as the port's watcher does
                        audio.timeline.observe();
                }
                audio.advanceTo(wallMs);
            };
            runTo(150);
            audio.timeline.sendAt(kClickOff, 150);
            EXPECT_FALSE(audio.timeline.tieAheadMs()) << "the pace is not known yet";
            audio.timeline.dropPending();  // a stop: the next stamp ties afresh

            const int due = 500 + phase;
            runTo(due + wakeMs);
            audio.timeline.sendAt(kClickOn, due, int64_t{due} * 1000);
            audio.timeline.sendAt(kClickOff, due + kIntervalMs / 2);
            const std::optional<double> ahead = audio.timeline.tieAheadMs();
            ASSERT_TRUE(ahead);
            EXPECT_GE(*ahead, wakeMs - 1.0);
            EXPECT_LE(*ahead, wakeMs + 10.0 + 1.0);
            runTo(due + 300);
            const std::vector<size_t> onsets = audio.onsets(static_cast<size_t>(300 * kRate / 1000));
            ASSERT_EQ(onsets.size(), 1u);
            const double heardMs = static_cast<double>(onsets[0]) * 1000.0 / kRate;
            misses.push_back(heardMs - (due + kLeadMs + *ahead + kAheadMs));

            audio.timeline.restartClock();
            EXPECT_FALSE(audio.timeline.tieAheadMs()) << "a restarted audio is watched afresh";
        }
    }
    // The same to the synth's 64-frame block, wherever the tie fell; the click's rise to a third
    // of its peak comes on top (2.5 ms), the same each time.
    const auto [lo, hi] = std::ranges::minmax(misses);
    EXPECT_LE(hi - lo, 1.5);
    EXPECT_GE(lo, 0.0);
    EXPECT_LE(hi, 4.0);
}

TEST(SynthTimeline, WhatWaitsIsDroppedByAResetOrCutByAMuteAndALateMessagePlaysAtOnce)
{
    const std::string soundFont = findSoundFont();
    if (soundFont.empty())
        GTEST_SKIP() << "no General MIDI SoundFont installed";
    VirtualAudio audio(soundFont);
    ASSERT_TRUE(audio.ready);
    audio.advanceTo(100);
    audio.timeline.sendAt(kClickOn, 100);
    audio.timeline.dropPending();
    audio.advanceTo(400);
    EXPECT_TRUE(audio.onsets().empty());

    // A channel muted while its note waits: the cut goes in after the note, which never sounds
    // on past it. (The note's start may still be heard: check that it stops.)
    audio.timeline.sendAt(0x643C90, 380);  // a held piano note on channel 1
    audio.timeline.sendAfterPending(0x78B0);
    audio.advanceTo(1000);
    float tail = 0;
    for (size_t i = audio.samples.size() - 4410; i < audio.samples.size(); ++i)
        tail = std::max(tail, std::fabs(audio.samples[i]));
    EXPECT_LT(tail, 0.001f);
    audio.advanceTo(1100);
    const size_t quietFrom = audio.samples.size();

    // The message due at 1120 arrives 100 ms late and is played at once.
    audio.timeline.sendAt(kClickOff, 1100);
    audio.advanceTo(1220);
    const size_t handedOver = audio.samples.size();
    audio.timeline.sendAt(kClickOn, 1120);
    EXPECT_EQ(audio.timeline.lateMessages(), 1);
    audio.advanceTo(1500);
    const std::vector<size_t> onsets = audio.onsets(quietFrom);
    ASSERT_EQ(onsets.size(), 1u);
    // At once: in the first block after the hand-over, plus the click's own attack.
    EXPECT_GE(onsets[0], handedOver);
    EXPECT_LE(onsets[0], handedOver + static_cast<size_t>(10 * kRate / 1000));
}

}  // namespace
}  // namespace tarabix
