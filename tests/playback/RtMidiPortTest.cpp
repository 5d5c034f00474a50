#include "playback/RtMidiPort.h"
#include "playback/SystemMidiOut.h"

#include <rtmidi/RtMidi.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <thread>

namespace tarabix {
namespace {

bool machineHasSequencer()
{
    std::error_code ec;
    return std::filesystem::exists("/dev/snd/seq", ec);
}

// Without the kernel's sequencer: no ports, a reason in words, a port that cannot be opened, and
// nothing on the terminal; the built-in synthesizer is still offered by the output layer.
TEST(RtMidiPort, WithoutASequencerThereAreNoPortsAndTheReasonIsGiven)
{
    if (machineHasSequencer())
        GTEST_SKIP() << "this machine has a MIDI sequencer";
    testing::internal::CaptureStderr();
    EXPECT_TRUE(listSystemMidiPorts().empty());
    EXPECT_NE(systemMidiPortsProblem().find("no MIDI sequencer"), std::string::npos);
    EXPECT_EQ(systemMidiOutBackend().devicesProblem(), systemMidiPortsProblem());

    RtMidiPort port(0);
    EXPECT_NE(port.open(), kMidiOutOk);
    EXPECT_FALSE(port.failureReason().empty());
    port.send(0x643C90);
    EXPECT_EQ(port.close(), kMidiOutInvalidHandle);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_NE(systemMidiOutBackend().makePort(-1), nullptr);
}

// A virtual sequencer client stands in for a synthesizer plugged in: it is listed by its name,
// and what the port sends reaches it byte for byte, the short program change included.
TEST(RtMidiPort, APortOfTheSequencerReceivesWhatIsSent)
{
    if (!machineHasSequencer())
        GTEST_SKIP() << "no /dev/snd/seq: the kernel has no MIDI sequencer here";
    EXPECT_EQ(systemMidiPortsProblem(), "");
    RtMidiIn receiver(RtMidi::LINUX_ALSA, "Tarabix test receiver");
    receiver.openVirtualPort("lesson input");
    const std::vector<std::string> names = listSystemMidiPorts();
    const auto found = std::ranges::find_if(names, [](const std::string& n) { return n.find("lesson input") != std::string::npos; });
    ASSERT_NE(found, names.end());

    RtMidiPort port(static_cast<unsigned>(found - names.begin()));
    ASSERT_EQ(port.open(), kMidiOutOk) << port.failureReason();
    port.send(0x05C1);
    port.send(0x643C90);
    std::vector<std::vector<unsigned char>> received;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    while (received.size() < 2 && std::chrono::steady_clock::now() < deadline) {
        std::vector<unsigned char> message;
        receiver.getMessage(&message);
        if (message.empty())
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        else
            received.push_back(message);
    }
    EXPECT_EQ(received, (std::vector<std::vector<unsigned char>>{{0xC1, 0x05}, {0x90, 0x3C, 0x64}}));
    EXPECT_EQ(port.close(), kMidiOutOk);
}

}  // namespace
}  // namespace tarabix
