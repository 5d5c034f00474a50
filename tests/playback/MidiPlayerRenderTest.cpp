#include "PieceBuilder.h"
#include "PitchEstimator.h"
#include "TestFiles.h"
#include "playback/PieceRender.h"
#include "playback/SoundFontLocator.h"

#include <gtest/gtest.h>

namespace tarabix {
namespace {

uint32_t littleEndian(const std::string& b, size_t at, int bytes)
{
    uint32_t v = 0;
    for (int i = bytes - 1; i >= 0; --i)
        v = v << 8 | static_cast<uint8_t>(b.at(at + static_cast<size_t>(i)));
    return v;
}

// A4 a quarter tone up from a pitch wheel set before it, then A4 plain, with a wheel moved while
// it is held that must not bend it.
MidiFile quarterTonePiece()
{
    return test::PieceBuilder()
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

    // The writer's header is the canonical 44 bytes; 16-bit stereo samples follow.
    const std::string wav = test::readBytes(path);
    std::filesystem::remove(path);
    ASSERT_GE(wav.size(), 44u);
    EXPECT_EQ(littleEndian(wav, 22, 2), 2u);
    ASSERT_EQ(littleEndian(wav, 24, 4), 44100u);
    EXPECT_EQ(littleEndian(wav, 34, 2), 16u);
    const std::vector<float> stereo = test::wavSamples16(wav);
    EXPECT_NEAR(static_cast<double>(stereo.size()) / 88.2, result.audioMs, 1.0);
    const double first = test::stereoFundamentalHz(stereo, 44100, 0.15, 0.7);
    const double second = test::stereoFundamentalHz(stereo, 44100, 0.95, 1.5);
    EXPECT_NEAR(test::centsBetween(first, 226.45), 0.0, 3.0) << first << " Hz";
    EXPECT_NEAR(test::centsBetween(second, 220.0), 0.0, 3.0) << second << " Hz";
}

std::vector<float> renderedStereo(const MidiFile& piece, const PieceRenderOptions& options)
{
    const std::string path = test::scratchPath("render-from.wav");
    const PieceRenderResult result = renderPieceToWav(piece, path, options);
    EXPECT_TRUE(result.ok) << result.error;
    EXPECT_EQ(result.audioMs, options.lengthMs + options.tailMs);
    const std::string wav = test::readBytes(path);
    std::filesystem::remove(path);
    return test::wavSamples16(wav);
}

// The piece sets its quarter tone once, before its first note; a render from inside it must
// still sound its notes a quarter tone up, as the whole piece does there.
TEST(MidiPlayerRender, ARenderFromInsideThePieceKeepsItsQuarterTone)
{
    if (findSoundFont().empty())
        GTEST_SKIP() << "no General MIDI SoundFont installed";
    const MidiFile piece = test::PieceBuilder()
                               .channel(0, 0, 0xC0, 24, 0)
                               .channel(0, 0, 0xE0, 0x00, 0x50)
                               .noteOn(0, 0, 69)
                               .channel(0, 900, 0x80, 69, 0)
                               .noteOn(0, 1000, 69)
                               .channel(0, 1900, 0x80, 69, 0)
                               .build();
    PieceRenderOptions whole;
    whole.tailMs = 0;
    whole.lengthMs = 1900;
    PieceRenderOptions fromInside = whole;
    fromInside.fromMs = 1000;
    fromInside.lengthMs = 900;
    const double wholeHz = test::stereoFundamentalHz(renderedStereo(piece, whole), 44100, 1.15, 1.7);
    const double insideHz = test::stereoFundamentalHz(renderedStereo(piece, fromInside), 44100, 0.15, 0.7);
    EXPECT_NEAR(test::centsBetween(insideHz, wholeHz), 0.0, 3.0) << insideHz << " Hz against " << wholeHz << " Hz";
    EXPECT_NEAR(test::centsBetween(insideHz, 440.0), 50.0, 3.0) << insideHz << " Hz";
}

TEST(MidiPlayerRender, AnUnwritableOutputIsReportedNotCrashedOn)
{
    const PieceRenderResult result = renderPieceToWav(quarterTonePiece(), "/nonexistent-folder/out.wav");
    EXPECT_FALSE(result.ok);
    EXPECT_FALSE(result.error.empty());
}

}  // namespace
}  // namespace tarabix
