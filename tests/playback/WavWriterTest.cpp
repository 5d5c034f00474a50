#include "TestFiles.h"
#include "playback/WavWriter.h"

#include <gtest/gtest.h>

namespace tarabix {
namespace {

using test::readBytes;
using test::scratchPath;

TEST(WavWriter, WritesA16BitPcmFileByteForByte)
{
    const std::string path = scratchPath("exact.wav");
    ASSERT_TRUE(writeWavFile(path, std::vector<float>{0.0f, 1.0f, -1.0f, 0.5f, 2.0f, -0.25f}, 44100, 2));
    const std::string expected = std::string("RIFF\x30\0\0\0WAVEfmt \x10\0\0\0\x01\0\x02\0", 24) +
                                 std::string("\x44\xAC\0\0\x10\xB1\x02\0\x04\0\x10\0data\x0C\0\0\0", 20) +
                                 // 0, 32767, -32767, 16384 (half to even), 32767 (clipped), -8192
                                 std::string("\0\0\xFF\x7F\x01\x80\0\x40\xFF\x7F\0\xE0", 12);
    EXPECT_EQ(readBytes(path), expected);
    std::filesystem::remove(path);
}

TEST(WavWriter, StreamsInPiecesAndFillsTheSizesAtClose)
{
    const std::string path = scratchPath("pieces.wav");
    WavWriter writer;
    ASSERT_TRUE(writer.open(path, 22050, 1));
    for (int i = 0; i < 3; ++i)
        ASSERT_TRUE(writer.write(std::vector<float>(1000, 0.1f)));
    ASSERT_TRUE(writer.close());
    const std::string bytes = readBytes(path);
    ASSERT_EQ(bytes.size(), 44u + 6000u);
    EXPECT_EQ(bytes.substr(40, 4), std::string("\x70\x17\0\0", 4));  // 6000 data bytes
    EXPECT_EQ(bytes.substr(4, 4), std::string("\x94\x17\0\0", 4));   // 6036
    std::filesystem::remove(path);
}

TEST(WavWriter, RefusesWhatItCannotWrite)
{
    WavWriter writer;
    EXPECT_FALSE(writer.open("/nonexistent-folder/out.wav", 44100, 2));
    EXPECT_NE(writer.error().find("/nonexistent-folder/out.wav"), std::string::npos);
    EXPECT_FALSE(writer.write(std::vector<float>{0.0f, 0.0f}));
    EXPECT_FALSE(writer.open(scratchPath("bad-format.wav"), 0, 2));

    const std::string path = scratchPath("partial.wav");
    ASSERT_TRUE(writer.open(path, 44100, 2));
    EXPECT_FALSE(writer.write(std::vector<float>{0.0f, 0.0f, 0.0f}));
    EXPECT_EQ(writer.error(), "a partial frame of samples");
    EXPECT_TRUE(writer.close());
    std::filesystem::remove(path);
}

}  // namespace
}  // namespace tarabix
