#include "TestFiles.h"
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

bool machineHasSoundCard()
{
    std::error_code ec;
    return std::filesystem::exists("/dev/snd", ec);
}

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

TEST(FluidSynthPort, WithoutAnAudioDeviceOpenFailsQuietlyAndSaysWhy)
{
    FluidSynthPortOptions options;
    options.audioDrivers = {"no-such-driver"};
    FluidSynthPort port(options);
    clearSynthDiagnostics();
    testing::internal::CaptureStderr();
    EXPECT_EQ(port.open(), kMidiOutNoDevice);
    // FluidSynth's complaint goes to our diagnostics, not to the terminal.
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    const std::vector<std::string> diagnostics = recentSynthDiagnostics();
    EXPECT_TRUE(std::ranges::any_of(diagnostics, [](const std::string& line) {
        return line.find("no-such-driver") != std::string::npos;
    }));
    EXPECT_EQ(port.failureReason(), "no audio output device");
    EXPECT_EQ(port.state(), FluidSynthPort::State::Closed);
    port.send(0x643C90);
    port.reset();
    EXPECT_EQ(port.close(), kMidiOutInvalidHandle);
    // A second try (the window's activity timer) fails the same way.
    EXPECT_EQ(port.open(), kMidiOutNoDevice);
}

// What the window meets at start-up on a machine without sound: the mapper's code and reason
// (through the platform's own drivers), and a program that runs on.
TEST(FluidSynthPort, TheMapperOnAMachineWithoutSoundFailsThroughTheOutputLayer)
{
    if (machineHasSoundCard())
        GTEST_SKIP() << "this machine has a sound card";
    resetMidiMainState();
    EXPECT_EQ(getMidiDeviceId(), kMidiMapperId);
    EXPECT_EQ(reopenMidiOut(), kMidiOutNoDevice);
    EXPECT_EQ(midiOutFailureReason(), "no audio output device");
    midiNoteOn(0, 60, 50, 100);
    midiOutReset();
    EXPECT_EQ(closeMidiOut(), kMidiOutInvalidHandle);
    EXPECT_EQ(listMidiOutDevices().at(0), (MidiOutDevice{-1, "MIDI Mapper"}));
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

    setSoundFontOverride(soundFont);
    FluidSynthPort chosen(fileDriver("", raw));
    ASSERT_EQ(chosen.open(), kMidiOutOk);
    EXPECT_EQ(chosen.notice(), "");
    EXPECT_TRUE(chosen.waitUntilReady(20000));
    chosen.close();
    setSoundFontOverride(fake);
    ASSERT_EQ(chosen.open(), kMidiOutOk);
    EXPECT_NE(chosen.notice().find(fake), std::string::npos);
    EXPECT_TRUE(chosen.waitUntilReady(20000));
    chosen.close();
    setSoundFontOverride("");
    std::filesystem::remove(fake);
    std::filesystem::remove(raw);
}

TEST(FluidSynthPort, PlaysWhatWasSentWhileTheSoundFontLoadedAndOpensAgainAfterAClose)
{
    const std::string soundFont = findSoundFont();
    if (soundFont.empty())
        GTEST_SKIP() << "no General MIDI SoundFont installed";
    const std::string raw = scratchPath("live.raw");
    {
        // Destroyed while the SoundFont still loads: the loading thread must not outlive it.
        FluidSynthPort early(fileDriver(soundFont, raw));
        ASSERT_EQ(early.open(), kMidiOutOk);
        early.send(0x643C90);
    }
    FluidSynthPort port(fileDriver(soundFont, raw));
    for (int round = 0; round < 2; ++round) {
        SCOPED_TRACE(round);
        ASSERT_EQ(port.open(), kMidiOutOk);
        EXPECT_EQ(port.failureReason(), "");
        port.send(0xC0);
        port.send(0x643C90);
        EXPECT_TRUE(port.waitUntilReady(20000));
        EXPECT_EQ(port.state(), FluidSynthPort::State::Ready);
        port.send(0x3C80);
        port.reset();
        EXPECT_EQ(port.close(), kMidiOutOk);
        EXPECT_EQ(port.close(), kMidiOutInvalidHandle);
    }
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
    int64_t nowMs = 1000;
    FluidSynthPortOptions options = fileDriver(soundFont, raw);
    options.idlePauseMs = 3000;
    options.clockMs = [&nowMs] { return nowMs; };
    options.idleWatcher = false;
    FluidSynthPort port(options);
    ASSERT_EQ(port.open(), kMidiOutOk);
    ASSERT_TRUE(port.waitUntilReady(20000));

    struct Step {
        int64_t advanceMs;
        uint32_t send;  // 0: nothing
        bool running;   // after the step and an idle check
    };
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

}  // namespace
}  // namespace tarabix
