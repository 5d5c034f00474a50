// The built-in synthesizer: its port, the timeline of stamped messages, the audio driver settings.
#include "TestFiles.h"
#include "playback/AudioDriverSettings.h"
#include "playback/FluidSynthEngine.h"
#include "playback/FluidSynthPort.h"
#include "playback/SoundFontLocator.h"
#include "playback/SynthDiagnostics.h"
#include "playback/SynthTimeline.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <fstream>
#include <thread>

namespace tarabix {
namespace {

using test::scratchPath;

class FluidSynthPortTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        if (soundFont.empty())
            GTEST_SKIP() << "no General MIDI SoundFont installed";
    }
    // FluidSynth's file driver plays in real time like a sound card, without audio hardware.
    FluidSynthPortOptions fileDriver(const std::string& font)
    {
        FluidSynthPortOptions options;
        options.soundFontPath = font;
        options.audioDrivers = {"no-such-driver", "file"};
        options.driverSettings = {{"audio.file.name", raw}, {"audio.file.type", "raw"}};
        return options;
    }
    void TearDown() override { std::filesystem::remove(raw); }

    const std::string soundFont = findSoundFont();
    const std::string raw = scratchPath("synth.raw");
};
class SynthTimelineTest : public FluidSynthPortTest {};

// Without an audio device open fails at every try, in our diagnostics and not on the terminal.
TEST(FluidSynthPort, WithoutAnAudioDeviceOpenFailsQuietlyAndSaysWhy)
{
    FluidSynthPortOptions options;
    options.audioDrivers = {"no-such-driver"};
    FluidSynthPort port(options);
    clearSynthDiagnostics();
    testing::internal::CaptureStderr();
    EXPECT_EQ(port.open(), kMidiOutNoDevice);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_TRUE(std::ranges::any_of(recentSynthDiagnostics(),
                                    [](const std::string& line) { return line.find("no-such-driver") != std::string::npos; }));
    EXPECT_EQ(port.failureReason(), "no audio output device");
    port.send(0x643C90);
    EXPECT_EQ(port.close(), kMidiOutInvalidHandle);
    EXPECT_EQ(port.open(), kMidiOutNoDevice);
}

// A broken file of the learner's gives way to the system's before open() returns, with a notice.
TEST_F(FluidSynthPortTest, ABrokenSoundFontIsPassedOverBeforeTheOutputOpens)
{
    const std::string fake = scratchPath("not-a-soundfont.sf2");
    std::ofstream(fake) << "RIFF but not really";
    FluidSynthPort port(fileDriver(fake));
    testing::internal::CaptureStderr();
    ASSERT_EQ(port.open(), kMidiOutOk);
    EXPECT_EQ(port.soundFontPath(), soundFont);
    EXPECT_NE(port.notice().find(fake + " cannot be used: it is not a SoundFont"), std::string::npos) << port.notice();
    EXPECT_TRUE(port.waitUntilReady(20000));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    std::filesystem::remove(fake);
}

// The quiet time runs on a virtual clock, the watcher thread off: nothing hangs on the machine's speed.
TEST_F(FluidSynthPortTest, SilenceLetsTheAudioGoAndTheNextNoteBringsItBack)
{
    int64_t nowMs = 1000;
    FluidSynthPortOptions options = fileDriver(soundFont);
    options.idlePauseMs = 3000;
    options.clockMs = [&nowMs] { return nowMs; };
    options.idleWatcher = false;
    FluidSynthPort port(options);
    ASSERT_EQ(port.open(), kMidiOutOk);
    ASSERT_TRUE(port.waitUntilReady(20000));
    struct Step { int64_t advanceMs; uint32_t send; bool running; };  // send 0: nothing; running: after an idle check
    const Step steps[] = {
        {2999, 0, true},         // not yet quiet long enough since the open
        {1, 0, false},           // now it is: let go
        {10000, 0x10C0, false},  // a program change needs no sound: it stays let go
        {10, 0x643C90, true},    // a note-on brings it back before it plays
        {5000, 0, true},         // the note is held: it sounds on, however long
        {0, 0x3C80, true},       // released, but still ringing
        {2000, 0x10B0, true},    // a controller is no note
    };
    for (size_t i = 0; i < std::size(steps); ++i) {
        nowMs += steps[i].advanceMs;
        if (steps[i].send != 0)
            port.send(steps[i].send);
        port.checkIdle();
        EXPECT_EQ(port.audioRunning(), steps[i].running) << "step " << i;
    }
}

// A stamped note is heard the sequencer's lead (a 20 ms write burst and 10 ms for a late sender),
// plus where in a burst the clocks were tied, plus the buffer behind the writes (none for a file).
TEST_F(FluidSynthPortTest, TheHeardDelayCountsTheLeadTheBurstAndTheBuffer)
{
    FluidSynthPortOptions options = fileDriver(soundFont);
    options.fileWriteFrames = 882;
    FluidSynthPort port(options);
    EXPECT_EQ(port.heardDelayMs(), 0);  // closed
    ASSERT_EQ(port.open(), kMidiOutOk);
    ASSERT_TRUE(port.waitUntilReady(20000));
    EXPECT_EQ(port.outputDescription(), "file, 20.0 ms (882 frames at 44100 Hz)");
    EXPECT_EQ(port.heardDelayMs(), 20 + 10 + 10);  // nothing tied yet: half a burst is assumed
    // Once the audio's pace is known the tie is measured: none to a whole burst (or a little more).
    std::this_thread::sleep_for(std::chrono::milliseconds(400));
    port.sendAt(0x643C90, 0);
    port.sendAt(0x3C80, 100);
    const int32_t tied = port.heardDelayMs();
    EXPECT_GE(tied, 20 + 10 - 1);
    EXPECT_LE(tied, 20 + 10 + 20 + 5);
    port.close();
    EXPECT_EQ(port.heardDelayMs(), 0);
}

constexpr double kRate = 44100.0;
constexpr int kPeriod = 441;             // the virtual audio thread writes 10 ms at a time
constexpr int kAheadMs = 10;             // and keeps this much rendered ahead of the wall clock
constexpr double kLeadMs = 10.0 + 10.0;  // its burst plus room for a late sender
constexpr int kIntervalMs = 100;
constexpr uint32_t kClickOn = 0x784C99;  // wood block, channel 10, velocity 120
constexpr uint32_t kClickOff = 0x4C89;

// A synth without an audio driver, rendered on a virtual clock: a sound card's audio thread, made
// deterministic.
struct VirtualAudio {
    explicit VirtualAudio(const std::string& soundFont) : engine(kRate), timeline(engine, kLeadMs)
    {
        EXPECT_TRUE(engine.loadSoundFont(soundFont) && timeline.valid());
    }

    // Renders in whole periods until the wall clock's ms plus the lookahead is covered.
    void advanceTo(int wallMs)
    {
        std::vector<float> left(kPeriod), right(kPeriod);
        while (samples.size() < static_cast<size_t>((wallMs + kAheadMs) * kRate / 1000.0)) {
            fluid_synth_write_float(engine.synth(), kPeriod, left.data(), 0, 1, right.data(), 0, 1);
            for (int i = 0; i < kPeriod; ++i)
                samples.push_back(left[i] + right[i]);
        }
    }

    // Samples above a third of the loudest, half an interval apart; none beside the idle hiss.
    std::vector<size_t> onsets(size_t from = 0) const
    {
        float peak = 0;
        for (size_t i = from; i < samples.size(); ++i)
            peak = std::max(peak, std::fabs(samples[i]));
        std::vector<size_t> found;
        for (size_t i = from; i < samples.size() && peak >= 0.01f; ++i) {
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
};

// A sender late by 0 to 9 ms: every stamped click still starts at its due sample (to a 64-frame block).
TEST_F(SynthTimelineTest, ALateSenderStillGivesExactSampleTimes)
{
    VirtualAudio audio(soundFont);
    constexpr int kClicks = 30;
    for (int i = 0; i < kClicks; ++i) {
        const int due = 200 + i * kIntervalMs;
        audio.advanceTo(due + (i * 7) % 10);
        audio.timeline.sendAt(kClickOn, due);
        audio.timeline.sendAt(kClickOff, due + kIntervalMs / 2);
    }
    audio.advanceTo(200 + kClicks * kIntervalMs + 200);
    const std::vector<size_t> onsets = audio.onsets();
    ASSERT_EQ(onsets.size(), static_cast<size_t>(kClicks));
    std::vector<double> phase;
    for (int i = 0; i < kClicks; ++i)
        phase.push_back(static_cast<double>(onsets[i]) - i * kIntervalMs * kRate / 1000.0);
    const auto [lo, hi] = std::ranges::minmax(phase);
    EXPECT_LE(hi - lo, 64.0);
    EXPECT_EQ(audio.timeline.lateMessages(), 0);
    // The first click sounds the lead after the audio rendered when it was handed over.
    EXPECT_NEAR(static_cast<double>(onsets[0]), (200 + kAheadMs + kLeadMs) * kRate / 1000.0, kPeriod + 64.0);
}

TEST_F(SynthTimelineTest, WhatWaitsIsDroppedByAResetOrCutByAMuteAndALateMessagePlaysAtOnce)
{
    VirtualAudio audio(soundFont);
    audio.advanceTo(100);
    audio.timeline.sendAt(kClickOn, 100);
    audio.timeline.dropPending();
    audio.advanceTo(400);
    EXPECT_TRUE(audio.onsets().empty());

    // A channel muted while its note waits: the cut goes in after the note, which stops.
    audio.timeline.sendAt(0x643C90, 380);  // a held piano note on channel 1
    audio.timeline.sendAfterPending(0x78B0);
    audio.advanceTo(1000);
    EXPECT_LT(*std::max_element(audio.samples.end() - 4410, audio.samples.end(),
                                [](float a, float b) { return std::fabs(a) < std::fabs(b); }),
              0.001f);
    audio.advanceTo(1100);
    const size_t quietFrom = audio.samples.size();

    // Due at 1120 and handed over 100 ms late: played in the first block after, plus its attack.
    audio.timeline.sendAt(kClickOff, 1100);
    audio.advanceTo(1220);
    const size_t handedOver = audio.samples.size();
    audio.timeline.sendAt(kClickOn, 1120);
    EXPECT_EQ(audio.timeline.lateMessages(), 1);
    audio.advanceTo(1500);
    const std::vector<size_t> onsets = audio.onsets(quietFrom);
    ASSERT_EQ(onsets.size(), 1u);
    EXPECT_GE(onsets[0], handedOver);
    EXPECT_LE(onsets[0], handedOver + static_cast<size_t>(10 * kRate / 1000));
}

TEST(AudioDriverSettings, EachDriverGetsTheBufferThatGivesTheLatency)
{
    // deviceDelayMs: what is heard lags the audio just written, the full buffer (none for a file).
    struct Case { const char* driver; int latencyMs; double rate; int periodSize, periods; double bufferMs, deviceDelayMs;
                  const char* flags; };
    const Case cases[] = {
        // The server takes one period as the whole buffer: the period is the latency.
        {"pulseaudio", 12, 48000, 576, 2, 12.0, 12.0, "audio.pulseaudio.adjust-latency=1"},
        {"pulseaudio", 1, 44100, 132, 2, 132 / 44.1, 132 / 44.1, "audio.pulseaudio.adjust-latency=1"},  // 3 ms at least
        {"pulseaudio", 900, 44100, 4410, 2, 100.0, 100.0, "audio.pulseaudio.adjust-latency=1"},     // 100 ms at most
        // Small periods, as many as fill the latency.
        {"alsa", 10, 44100, 64, 7, 448 / 44.1, 448 / 44.1, ""},
        {"alsa", 12, 44100, 128, 4, 512 / 44.1, 512 / 44.1, ""},
        {"file", 10, 44100, 64, 2, 64 / 44.1, 0.0, ""},
        // The server's own period, played while the next is rendered; speakers connected at once.
        {"jack", 10, 48000, 64, 2, 0.0, 256 / 48.0, "audio.jack.autoconnect=1"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.driver) + " " + std::to_string(c.latencyMs));
        const AudioDriverSettings s = chooseAudioDriverSettings(c.driver, c.latencyMs, c.rate);
        EXPECT_EQ(std::pair(s.periodSize, s.periods), std::pair(c.periodSize, c.periods));
        EXPECT_NEAR(s.bufferMs, c.bufferMs, 1e-9);
        EXPECT_NEAR(s.deviceDelayMs, c.deviceDelayMs, 1e-9);
        std::string flags;
        for (const auto& [key, value] : s.intSettings)
            flags += key + "=" + std::to_string(value);
        EXPECT_EQ(flags, c.flags);
        // A time-stamped event needs a lead of at least one write of the synthesizer (JACK's unknown).
        EXPECT_GE(s.burstMs + 1e-9, c.bufferMs > 0 ? s.periodSize * 1000.0 / c.rate : 0.0);
    }
}

}  // namespace
}  // namespace tarabix
