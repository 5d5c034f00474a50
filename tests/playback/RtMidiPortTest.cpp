#include "playback/RtMidiPort.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace tarabix {
namespace {

TEST(RtMidiPort, WithoutASequencerThereAreNoPortsAndNoCrash)
{
    std::error_code ec;
    const bool hasSequencer = std::filesystem::exists("/dev/snd/seq", ec);
    testing::internal::CaptureStderr();
    const std::vector<std::string> names = listSystemMidiPorts();
    const std::string stderrText = testing::internal::GetCapturedStderr();
    EXPECT_EQ(stderrText, "");
    if (!hasSequencer) {
        EXPECT_TRUE(names.empty());
    }
}

TEST(RtMidiPort, APortPastTheEndCannotBeOpened)
{
    const size_t count = listSystemMidiPorts().size();
    RtMidiPort port(static_cast<unsigned>(count));
    testing::internal::CaptureStderr();
    const int32_t result = port.open();
    testing::internal::GetCapturedStderr();
    EXPECT_NE(result, kMidiOutOk);
    EXPECT_FALSE(port.failureReason().empty());
    port.send(0x643C90);
    EXPECT_EQ(port.close(), kMidiOutInvalidHandle);
}

}  // namespace
}  // namespace tarabix
