#include "PieceBuilder.h"
#include "PitchEstimator.h"
#include "playback/PieceRender.h"
#include "playback/SoundFontLocator.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <unistd.h>

namespace tarabix {
namespace {

struct Wav {
    int sampleRate = 0;
    int channels = 0;
    int bits = 0;
    std::vector<double> mono;  // left + right
};

uint32_t le(const std::string& b, size_t at, int bytes)
{
    uint32_t v = 0;
    for (int i = bytes - 1; i >= 0; --i)
        v = v << 8 | static_cast<uint8_t>(b.at(at + static_cast<size_t>(i)));
    return v;
}

Wav readWav(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    const std::string b((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    Wav wav;
    if (b.size() < 12 || b.compare(0, 4, "RIFF") != 0 || b.compare(8, 4, "WAVE") != 0)
        return wav;
    for (size_t at = 12; at + 8 <= b.size();) {
        const std::string id = b.substr(at, 4);
        const size_t size = le(b, at + 4, 4);
        if (id == "fmt ") {
            wav.channels = static_cast<int>(le(b, at + 10, 2));
            wav.sampleRate = static_cast<int>(le(b, at + 12, 4));
            wav.bits = static_cast<int>(le(b, at + 22, 2));
        } else if (id == "data" && wav.channels == 2 && wav.bits == 16) {
            for (size_t s = at + 8; s + 4 <= at + 8 + size && s + 4 <= b.size(); s += 4)
                wav.mono.push_back(static_cast<int16_t>(le(b, s, 2)) + static_cast<int16_t>(le(b, s + 2, 2)));
        }
        at += 8 + size + (size & 1);
    }
    return wav;
}

double pitchBetween(const Wav& wav, double fromS, double toS)
{
    const auto from = static_cast<size_t>(fromS * wav.sampleRate);
    const auto to = std::min(wav.mono.size(), static_cast<size_t>(toS * wav.sampleRate));
    if (from >= to)
        return 0.0;
    return test::fundamentalHz(std::span(wav.mono).subspan(from, to - from), wav.sampleRate, 80, 1000);
}

double centsBetween(double hz, double referenceHz)
{
    return 1200.0 * std::log2(hz / referenceHz);
}

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

TEST(MidiPlayerRender, QuarterTonesOfThePiecesPitchWheelsAreHeard)
{
    if (findSoundFont().empty())
        GTEST_SKIP() << "no General MIDI SoundFont installed";
    struct Case {
        float speed;
        int32_t octaveShift;
        double firstHz;
        double secondHz;
    } cases[] = {
        {1.0f, 0, 452.89, 440.0},
        {2.0f, -1, 226.45, 220.0},
    };
    const MidiFile piece = quarterTonePiece();
    const std::string path =
        (std::filesystem::temp_directory_path() / ("tarabix-render-" + std::to_string(getpid()) + ".wav")).string();
    for (const Case& c : cases) {
        SCOPED_TRACE(::testing::Message() << "speed " << c.speed << ", octave " << c.octaveShift);
        PieceRenderOptions options;
        options.speed = c.speed;
        options.midiOctShift = c.octaveShift;
        options.tailMs = 500;
        const PieceRenderResult result = renderPieceToWav(piece, path, options);
        ASSERT_TRUE(result.ok) << result.error;
        EXPECT_EQ(result.events, 7);
        EXPECT_EQ(result.audioMs, static_cast<int32_t>(3100 / c.speed) + 500);

        const Wav wav = readWav(path);
        ASSERT_EQ(wav.sampleRate, 44100);
        EXPECT_NEAR(static_cast<double>(wav.mono.size()) / 44.1, result.audioMs, 1.0);
        const double s = c.speed;
        const double first = pitchBetween(wav, 0.3 / s, 1.4 / s);
        const double second = pitchBetween(wav, 1.9 / s, 3.0 / s);
        EXPECT_NEAR(centsBetween(first, c.firstHz), 0.0, 3.0) << first << " Hz";
        EXPECT_NEAR(centsBetween(second, c.secondHz), 0.0, 3.0) << second << " Hz";
    }
    std::filesystem::remove(path);
}

TEST(MidiPlayerRender, AnUnwritableOutputIsReportedNotCrashedOn)
{
    const MidiFile piece = quarterTonePiece();
    const PieceRenderResult result = renderPieceToWav(piece, "/nonexistent-folder/out.wav");
    EXPECT_FALSE(result.ok);
    EXPECT_FALSE(result.error.empty());
}

}  // namespace
}  // namespace tarabix
