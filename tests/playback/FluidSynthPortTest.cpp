#include "playback/FluidSynthPort.h"
#include "playback/SoundFontLocator.h"
#include "playback/SynthDiagnostics.h"
#include "playback/mMidiMain.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <unistd.h>

namespace tarabix {
namespace {

bool machineHasSoundCard()
{
    std::error_code ec;
    return std::filesystem::exists("/dev/snd", ec);
}

std::filesystem::path scratchFile(const std::string& name)
{
    return std::filesystem::temp_directory_path() / ("tarabix-" + std::to_string(getpid()) + "-" + name);
}

TEST(FluidSynthPort, WithoutAnAudioDeviceOpenFailsAndSaysWhy)
{
    FluidSynthPortOptions unusable;
    unusable.audioDrivers = {"no-such-driver"};
    FluidSynthPortOptions platform;
    struct Case {
        const char* name;
        FluidSynthPortOptions options;
        bool applies;
    };
    const Case cases[] = {
        {"a driver FluidSynth does not have", unusable, true},
        {"the platform's drivers on a machine without a sound card", platform, !machineHasSoundCard()},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        if (!c.applies)
            continue;
        FluidSynthPort port(c.options);
        EXPECT_EQ(port.open(), kMidiOutNoDevice);
        EXPECT_EQ(port.failureReason(), "no audio output device");
        EXPECT_EQ(port.state(), FluidSynthPort::State::Closed);
        port.send(0x643C90);
        port.reset();
        EXPECT_EQ(port.close(), kMidiOutInvalidHandle);
        // A second try (the window's activity timer) fails the same way.
        EXPECT_EQ(port.open(), kMidiOutNoDevice);
    }
}

// What the window meets at start-up on a machine without sound: the mapper's code and reason,
// and a program that runs on.
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
    const std::vector<MidiOutDevice> devices = listMidiOutDevices();
    ASSERT_FALSE(devices.empty());
    EXPECT_EQ(devices.front(), (MidiOutDevice{-1, "MIDI Mapper"}));
    resetMidiMainState();
}

TEST(FluidSynthPort, LogGoesToDiagnosticsNotStderr)
{
    clearSynthDiagnostics();
    FluidSynthPortOptions options;
    options.audioDrivers = {"no-such-driver"};
    FluidSynthPort port(options);
    testing::internal::CaptureStderr();
    port.open();
    const std::string stderrText = testing::internal::GetCapturedStderr();
    EXPECT_EQ(stderrText, "");
    bool mentioned = false;
    for (const std::string& line : recentSynthDiagnostics())
        mentioned = mentioned || line.find("no-such-driver") != std::string::npos;
    EXPECT_TRUE(mentioned);
}

TEST(FluidSynthPort, ASoundFontThatWillNotLoadLeavesItSilentWithTheReason)
{
    const std::filesystem::path raw = scratchFile("bad-sf.raw");
    const std::filesystem::path fake = scratchFile("not-a-soundfont.sf2");
    std::ofstream(fake) << "RIFF but not really";
    FluidSynthPortOptions options;
    options.soundFontPath = fake.string();
    options.audioDrivers = {"file"};
    options.driverSettings = {{"audio.file.name", raw.string()}, {"audio.file.type", "raw"}};
    FluidSynthPort port(options);
    ASSERT_EQ(port.open(), kMidiOutOk);
    EXPECT_FALSE(port.waitUntilReady(10000));
    EXPECT_EQ(port.state(), FluidSynthPort::State::Failed);
    EXPECT_NE(port.failureReason().find("could not be loaded"), std::string::npos);
    port.send(0x643C90);
    port.close();
    EXPECT_EQ(port.open(), kMidiOutNoDevice);
    std::filesystem::remove(fake);
    std::filesystem::remove(raw);
}

TEST(SoundFontLocator, TheUsersSoundFontComesFirstWhenItCanBeRead)
{
    const std::filesystem::path mine = scratchFile("mine.sf2");
    std::ofstream(mine) << "x";
    setSoundFontOverride(mine.string());
    EXPECT_EQ(findSoundFont(), mine.string());
    std::filesystem::remove(mine);
    EXPECT_NE(findSoundFont(), mine.string());
    EXPECT_EQ(soundFontCandidates().front(), mine.string());
    setSoundFontOverride("");
    EXPECT_NE(soundFontCandidates().front(), mine.string());
}

// FluidSynth's file driver plays in real time like a sound card does, so the threaded SoundFont
// load and the queue in front of it run here even without audio hardware.
TEST(FluidSynthPort, PlaysThroughADriverWhileTheSoundFontLoadsBehind)
{
    const std::string soundFont = findSoundFont();
    if (soundFont.empty())
        GTEST_SKIP() << "no General MIDI SoundFont installed";
    const std::filesystem::path raw = scratchFile("live.raw");
    FluidSynthPortOptions options;
    options.soundFontPath = soundFont;
    options.audioDrivers = {"no-such-driver", "file"};
    options.driverSettings = {{"audio.file.name", raw.string()}, {"audio.file.type", "raw"}};
    FluidSynthPort port(options);
    for (int round = 0; round < 2; ++round) {
        SCOPED_TRACE(round);
        ASSERT_EQ(port.open(), kMidiOutOk);
        EXPECT_EQ(port.failureReason(), "");
        // Sent at once, possibly before the SoundFont is in: kept and played when it is.
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

TEST(FluidSynthPort, DestroyedWhileTheSoundFontStillLoads)
{
    const std::string soundFont = findSoundFont();
    if (soundFont.empty())
        GTEST_SKIP() << "no General MIDI SoundFont installed";
    const std::filesystem::path raw = scratchFile("early.raw");
    FluidSynthPortOptions options;
    options.soundFontPath = soundFont;
    options.audioDrivers = {"file"};
    options.driverSettings = {{"audio.file.name", raw.string()}, {"audio.file.type", "raw"}};
    {
        FluidSynthPort port(options);
        ASSERT_EQ(port.open(), kMidiOutOk);
        port.send(0x643C90);
    }
    std::filesystem::remove(raw);
}

}  // namespace
}  // namespace tarabix
