#include "PieceBuilder.h"
#include "PitchEstimator.h"
#include "TestFiles.h"
#include "playback/PieceRender.h"
#include "playback/SoundFontLocator.h"

#include <gtest/gtest.h>

namespace tarabix {
namespace {

// A4 a quarter tone up from a pitch wheel set before it, then A4 plain, with a wheel moved while
// it is held that must not bend it.
MidiFile quarterTonePiece()
{
    return testing::PieceBuilder()
        .channel(0, 0, 0xE0, 0x00, 0x50)
        .noteOn(0, 0, 69)
        .channel(0, 1500, 0x80, 69, 0)
        .channel(0, 1600, 0xE0, 0x00, 0x40)
        .noteOn(0, 1600, 69)
        .channel(0, 2000, 0xE0, 0x00, 0x50)
        .channel(0, 3100, 0x80, 69, 0)
        .build();
}

// At double speed an octave down: A3 a quarter tone up, then A3.
TEST(MidiPlayerRender, QuarterTonesOfThePiecesPitchWheelsAreHeard)
{
    if (findSoundFont().empty())
        GTEST_SKIP() << "no General MIDI SoundFont installed";
    const std::string path = test::scratchPath("render.wav");
    PieceRenderOptions options;
    options.speed = 2.0f;
    options.midiOctShift = -1;
    options.tailMs = 500;
    const PieceRenderResult result = renderPieceToWav(quarterTonePiece(), path, options);
    ASSERT_TRUE(result.ok) << result.error;
    EXPECT_EQ(result.events, 7);
    EXPECT_EQ(result.audioMs, 3100 / 2 + 500);

    const std::vector<float> stereo = test::wavSamples16(test::readBytes(path));
    std::filesystem::remove(path);
    EXPECT_NEAR(static_cast<double>(stereo.size()) / 88.2, result.audioMs, 1.0);
    const double first = test::stereoFundamentalHz(stereo, 44100, 0.15, 0.7);
    const double second = test::stereoFundamentalHz(stereo, 44100, 0.95, 1.5);
    EXPECT_NEAR(test::centsBetween(first, 226.45), 0.0, 3.0) << first << " Hz";
    EXPECT_NEAR(test::centsBetween(second, 220.0), 0.0, 3.0) << second << " Hz";
}

// The piece sets its quarter tone once, before its first note; a render from inside it must
// still sound its notes a quarter tone up, as the whole piece does there.
TEST(MidiPlayerRender, ARenderFromInsideThePieceKeepsItsQuarterTone)
{
    if (findSoundFont().empty())
        GTEST_SKIP() << "no General MIDI SoundFont installed";
    const MidiFile piece = testing::PieceBuilder()
                               .channel(0, 0, 0xC0, 24, 0)
                               .channel(0, 0, 0xE0, 0x00, 0x50)
                               .noteOn(0, 0, 69)
                               .channel(0, 900, 0x80, 69, 0)
                               .noteOn(0, 1000, 69)
                               .channel(0, 1900, 0x80, 69, 0)
                               .build();
    PieceRenderOptions options;
    options.fromMs = 1000;
    options.lengthMs = 900;
    options.tailMs = 0;
    const std::string path = test::scratchPath("render-from.wav");
    const PieceRenderResult result = renderPieceToWav(piece, path, options);
    ASSERT_TRUE(result.ok) << result.error;
    const double hz = test::stereoFundamentalHz(test::wavSamples16(test::readBytes(path)), 44100, 0.15, 0.7);
    std::filesystem::remove(path);
    EXPECT_NEAR(test::centsBetween(hz, 440.0), 50.0, 3.0) << hz << " Hz";
}

TEST(MidiPlayerRender, AnUnwritableOutputIsReportedNotCrashedOn)
{
    const PieceRenderResult result = renderPieceToWav(quarterTonePiece(), "/nonexistent-folder/out.wav");
    EXPECT_FALSE(result.ok);
    EXPECT_FALSE(result.error.empty());
}

}  // namespace
}  // namespace tarabix
