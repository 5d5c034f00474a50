#include "playback/RtMidiPort.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace tarabix {
namespace {

TEST(RtMidiPort, WithoutASequencerThereAreNoPortsAndAPortPastTheEndCannotBeOpened)
{
    std::error_code ec;
    const bool hasSequencer = std::filesystem::exists("/dev/snd/seq", ec);
    testing::internal::CaptureStderr();
    const std::vector<std::string> names = listSystemMidiPorts();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    if (!hasSequencer) {
        EXPECT_TRUE(names.empty());
    }

    RtMidiPort port(static_cast<unsigned>(names.size()));
    testing::internal::CaptureStderr();
    EXPECT_NE(port.open(), kMidiOutOk);
    testing::internal::GetCapturedStderr();
    EXPECT_FALSE(port.failureReason().empty());
    port.send(0x643C90);
    EXPECT_EQ(port.close(), kMidiOutInvalidHandle);
}

}  // namespace
}  // namespace tarabix
