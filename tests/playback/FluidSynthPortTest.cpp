#include "TestFiles.h"
#include "playback/AudioDriverSettings.h"
#include "playback/FluidSynthPort.h"
#include "playback/SoundFontLocator.h"
#include "playback/SynthDiagnostics.h"
#include "playback/mMidiMain.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <thread>

namespace tarabix {
namespace {

using test::scratchPath;

// FluidSynth's file driver plays in real time like a sound card does, so the threaded SoundFont
// load and the queue in front of it run here even without audio hardware.
FluidSynthPortOptions fileDriver(const std::string& soundFont, const std::string& rawPath)
{
    FluidSynthPortOptions options;
    options.soundFontPath = soundFont;
    options.audioDrivers = {"no-such-driver", "file"};
    options.driverSettings = {{"audio.file.name", rawPath}, {"audio.file.type", "raw"}};
    return options;
}

// Without an audio device open fails quietly: FluidSynth's complaint goes to our diagnostics, not
// to the terminal, and the window can say why. A second try (the activity timer) fails the same
// way, and so does the mapper at start-up on a machine without sound; the program runs on.
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

    if (std::error_code ec; std::filesystem::exists("/dev/snd", ec))
        return;  // this machine has a sound card
    resetMidiMainState();
    EXPECT_EQ(reopenMidiOut(), kMidiOutNoDevice);
    EXPECT_EQ(midiOutFailureReason(), "no audio output device");
    midiNoteOn(0, 60, 50, 100);
    resetMidiMainState();
}

// A broken file of the learner's is known while open() runs: the system's SoundFont is chosen in
// its place before the output says it is open, and the notice says so. The learner's next choice
// is taken at the next open.
TEST(FluidSynthPort, ABrokenSoundFontIsPassedOverBeforeTheOutputOpens)
{
    const std::string soundFont = findSoundFont();
    if (soundFont.empty())
        GTEST_SKIP() << "no General MIDI SoundFont installed";
    const std::string raw = scratchPath("bad-sf.raw");
    const std::string fake = scratchPath("not-a-soundfont.sf2");
    std::ofstream(fake) << "RIFF but not really";
    FluidSynthPort port(fileDriver(fake, raw));
    testing::internal::CaptureStderr();
    ASSERT_EQ(port.open(), kMidiOutOk);
    EXPECT_EQ(port.soundFontPath(), soundFont);
    EXPECT_NE(port.notice().find(fake), std::string::npos);
    EXPECT_NE(port.notice().find("not a SoundFont"), std::string::npos);
    EXPECT_TRUE(port.waitUntilReady(20000));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    port.close();

    // The learner's choice is looked at again at every open of the same output.
    FluidSynthPort chosen(fileDriver("", raw));
    for (const std::string& choice : {soundFont, fake}) {
        setSoundFontOverride(choice);
        ASSERT_EQ(chosen.open(), kMidiOutOk);
        EXPECT_EQ(chosen.notice().find(fake) != std::string::npos, choice == fake);
        EXPECT_TRUE(chosen.waitUntilReady(20000));
        EXPECT_EQ(chosen.close(), kMidiOutOk);
    }
    EXPECT_EQ(chosen.close(), kMidiOutInvalidHandle);
    setSoundFontOverride("");
    std::filesystem::remove(fake);
    std::filesystem::remove(raw);
}

// The quiet time is counted on a virtual clock; the watcher thread is off and the test looks for
// the pause itself, so nothing here depends on how fast the machine is.
TEST(FluidSynthPort, SilenceLetsTheAudioGoAndTheNextNoteBringsItBack)
{
    const std::string soundFont = findSoundFont();
    if (soundFont.empty())
        GTEST_SKIP() << "no General MIDI SoundFont installed";
    const std::string raw = scratchPath("idle.raw");
    {
        // Destroyed while the SoundFont still loads: the loading thread must not outlive it.
        FluidSynthPort early(fileDriver(soundFont, raw));
        ASSERT_EQ(early.open(), kMidiOutOk);
        early.send(0x643C90);
    }
    int64_t nowMs = 1000;
    FluidSynthPortOptions options = fileDriver(soundFont, raw);
    options.idlePauseMs = 3000;
    options.clockMs = [&nowMs] { return nowMs; };
    options.idleWatcher = false;
    FluidSynthPort port(options);
    ASSERT_EQ(port.open(), kMidiOutOk);
    ASSERT_TRUE(port.waitUntilReady(20000));

    struct Step { int64_t advanceMs; uint32_t send; bool running; };  // send 0: nothing; running: after an idle check
    const Step steps[] = {
        {2999, 0, true},          // not yet quiet long enough since the open
        {1, 0, false},            // now it is: let go
        {10000, 0x10C0, false},   // a program change needs no sound: it stays let go
        {10, 0x643C90, true},     // a note-on brings it back before it plays
        {5000, 0, true},          // the note is held: it sounds on, however long
        {0, 0x3C80, true},        // released; the quiet time starts again
        {2000, 0x10B0, true},     // a controller is no note: the quiet time runs on
        {0, 0x78B0, true},        // all sound off, so nothing rings
    };
    for (size_t i = 0; i < std::size(steps); ++i) {
        SCOPED_TRACE(i);
        nowMs += steps[i].advanceMs;
        if (steps[i].send != 0)
            port.send(steps[i].send);
        port.checkIdle();
        EXPECT_EQ(port.audioRunning(), steps[i].running);
    }
    EXPECT_EQ(port.outputDescription(), "file, 1.5 ms (64 frames at 44100 Hz)");
    // Once the cut voices are gone (a block or two of audio), the quiet time ends as counted from
    // the released note.
    nowMs += 1000;
    for (int tries = 0; tries < 2000 && port.audioRunning(); ++tries) {
        port.checkIdle();
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    EXPECT_FALSE(port.audioRunning());
    EXPECT_NE(port.outputDescription().find("resting while silent"), std::string::npos);
    port.close();
    std::filesystem::remove(raw);
}

// How long after its due time a stamped note is heard: the sequencer's lead (the driver's write
// burst and 10 ms for a late sender), where in a burst the clocks were tied, and the buffer behind
// the writes (none for a file). Here the file driver writes 20 ms at once, as PulseAudio's does
// at the default latency.
TEST(FluidSynthPort, TheHeardDelayCountsTheLeadTheBurstAndTheBuffer)
{
    const std::string soundFont = findSoundFont();
    if (soundFont.empty())
        GTEST_SKIP() << "no General MIDI SoundFont installed";
    const std::string raw = scratchPath("heard.raw");
    FluidSynthPortOptions options = fileDriver(soundFont, raw);
    options.fileWriteFrames = 882;
    FluidSynthPort port(options);
    EXPECT_EQ(port.heardDelayMs(), 0);  // closed
    ASSERT_EQ(port.open(), kMidiOutOk);
    ASSERT_TRUE(port.waitUntilReady(20000));
    EXPECT_EQ(port.outputDescription(), "file, 20.0 ms (882 frames at 44100 Hz)");
    EXPECT_EQ(port.heardDelayMs(), 20 + 10 + 10);  // nothing tied yet: half a burst is assumed

    // Once the audio's pace has been watched, the tie's place in its burst is measured: between
    // none and a whole burst (a little more on a loaded machine).
    std::this_thread::sleep_for(std::chrono::milliseconds(400));
    port.sendAt(0x643C90, 0);
    port.sendAt(0x3C80, 100);
    const int32_t tied = port.heardDelayMs();
    EXPECT_GE(tied, 20 + 10 - 1);
    EXPECT_LE(tied, 20 + 10 + 20 + 5);

    port.close();
    EXPECT_EQ(port.heardDelayMs(), 0);
    std::filesystem::remove(raw);
}

bool hasInt(const AudioDriverSettings& s, const std::string& key, int value)
{
    return std::ranges::find(s.intSettings, std::pair<std::string, int>{key, value}) != s.intSettings.end();
}

TEST(AudioDriverSettings, EachDriverGetsTheBufferThatGivesTheLatency)
{
    // deviceDelayMs: what is heard lags the audio just written, the full buffer (none for a file).
    struct Case { const char* driver; int latencyMs; double rate; int periodSize, periods; double bufferMs, deviceDelayMs; };
    const Case cases[] = {
        // The server takes one period as the whole buffer: the period is the latency.
        {"pulseaudio", 10, 44100, 441, 2, 10.0, 10.0},
        {"pulseaudio", 12, 48000, 576, 2, 12.0, 12.0},
        {"pulseaudio", 1, 44100, 132, 2, 132 / 44.1, 132 / 44.1},     // below the range: 3 ms
        {"pulseaudio", 900, 44100, 4410, 2, 100.0, 100.0},       // above it: 100 ms
        // Small periods, as many as fill the latency.
        {"alsa", 10, 44100, 64, 7, 448 / 44.1, 448 / 44.1},
        {"alsa", 12, 44100, 128, 4, 512 / 44.1, 512 / 44.1},
        {"alsa", 3, 48000, 64, 2, 128 / 48.0, 128 / 48.0},
        {"file", 10, 44100, 64, 2, 64 / 44.1, 0.0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.driver) + " " + std::to_string(c.latencyMs));
        const AudioDriverSettings s = chooseAudioDriverSettings(c.driver, c.latencyMs, c.rate);
        EXPECT_EQ(s.periodSize, c.periodSize);
        EXPECT_EQ(s.periods, c.periods);
        EXPECT_NEAR(s.bufferMs, c.bufferMs, 1e-9);
        EXPECT_NEAR(s.deviceDelayMs, c.deviceDelayMs, 1e-9);
        EXPECT_EQ(hasInt(s, "audio.pulseaudio.adjust-latency", 1), std::string(c.driver) == "pulseaudio");
        // A time-stamped event needs a lead of at least one write of the synthesizer.
        EXPECT_GE(s.burstMs + 1e-9, s.periodSize * 1000.0 / c.rate);
    }
}

TEST(AudioDriverSettings, JackKeepsTheServersPeriodAndConnectsToTheSpeakers)
{
    const AudioDriverSettings s = chooseAudioDriverSettings("jack", 10, 48000);
    EXPECT_EQ(s.bufferMs, 0.0);
    EXPECT_EQ(s.deviceDelayMs, s.burstMs);  // the period it plays while we render the next
    EXPECT_TRUE(hasInt(s, "audio.jack.autoconnect", 1));
    EXPECT_EQ(describeAudioOutput("jack", s, 48000), "jack, latency set by the server");
    EXPECT_EQ(describeAudioOutput("pulseaudio", chooseAudioDriverSettings("pulseaudio", 10, 44100), 44100),
              "pulseaudio, 10.0 ms (441 frames at 44100 Hz)");
}

}  // namespace
}  // namespace tarabix
