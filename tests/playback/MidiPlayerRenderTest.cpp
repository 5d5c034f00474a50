#include "PieceBuilder.h"
#include "PitchEstimator.h"
#include "TestFiles.h"
#include "playback/OfflineSynth.h"
#include "playback/PieceRender.h"
#include "playback/PieceRouter.h"
#include "playback/SoundFontLocator.h"
#include "playback/WavWriter.h"
#include "playback/mMidiMain.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace tarabix {
namespace {

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
    const MidiFile piece = test::PieceBuilder()
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

// The loudest moment of a sample piece: a bar's downbeat, the oud line (nylon guitar) at its
// accent with the doum on the drum channel, a few times over so that the reverb builds up. At the
// window's starting volume it must sound near full scale without reaching it: loud enough beside
// other programs' sound, with room left for the learner's volume control.
TEST(OfflineSynth, ADownbeatPeaksAFewDecibelsUnderFullScaleAtTheStartingVolume)
{
    if (findSoundFont().empty())
        GTEST_SKIP() << "no General MIDI SoundFont installed";
    resetMidiMainState();
    auto synth = std::make_shared<OfflineSynth>();
    setMidiOutBackend({[] { return std::vector<std::string>{}; },
                       [synth](int32_t) { return std::make_unique<OfflineSynthPort>(synth); }});
    ASSERT_EQ(reopenMidiOut(), kMidiOutOk);
    PieceRouter router;
    ASSERT_EQ(router.volume(), PieceRouter::kDefaultVolume);  // what the window and the command line start at
    router.route(0xC0, 24, 0);
    for (int beat = 0; beat < 4; ++beat) {
        for (int note : {55, 62}) {
            router.route(0x90, static_cast<uint8_t>(note), 100);
            router.route(0x99, 64, 96);
            router.route(0x99, 35, 70);
            synth->render(400);
            router.route(0x80, static_cast<uint8_t>(note), 64);
            router.route(0x89, 64, 64);
            router.route(0x89, 35, 64);
        }
    }
    synth->render(1500);
    resetMidiMainState();
    float peak = 0.0f;
    for (float sample : synth->samples())
        peak = std::max(peak, std::abs(sample));
    const double db = 20.0 * std::log10(static_cast<double>(peak));
    EXPECT_GE(db, -6.0);
    EXPECT_LE(db, -1.0);
}

TEST(OfflineSynth, AMissingSoundFontGivesWayToTheSystemsWithANotice)
{
    const std::string system = findSoundFont();
    if (system.empty())
        GTEST_SKIP() << "no General MIDI SoundFont installed";
    OfflineSynthOptions options;
    options.soundFontPath = "/nonexistent/tarabix.sf2";
    auto synth = std::make_shared<OfflineSynth>(options);
    EXPECT_TRUE(synth->ready()) << synth->failureReason();
    EXPECT_EQ(synth->soundFontPath(), system);
    EXPECT_NE(synth->notice().find("/nonexistent/tarabix.sf2"), std::string::npos);
    OfflineSynthPort port(synth);
    EXPECT_EQ(port.open(), kMidiOutOk);
    EXPECT_EQ(port.notice(), synth->notice());
}

TEST(WavWriter, WritesA16BitPcmFileByteForByte)
{
    const std::string path = test::scratchPath("exact.wav");
    ASSERT_TRUE(writeWavFile(path, std::vector<float>{0.0f, 1.0f, -1.0f, 0.5f, 2.0f, -0.25f}, 44100, 2));
    const std::string expected = std::string("RIFF\x30\0\0\0WAVEfmt \x10\0\0\0\x01\0\x02\0", 24) +
                                 std::string("\x44\xAC\0\0\x10\xB1\x02\0\x04\0\x10\0data\x0C\0\0\0", 20) +
                                 // 0, 32767, -32767, 16384 (half to even), 32767 (clipped), -8192
                                 std::string("\0\0\xFF\x7F\x01\x80\0\x40\xFF\x7F\0\xE0", 12);
    EXPECT_EQ(test::readBytes(path), expected);
    std::filesystem::remove(path);
}

TEST(WavWriter, StreamsInPiecesAndFillsTheSizesAtClose)
{
    const std::string path = test::scratchPath("pieces.wav");
    WavWriter writer;
    ASSERT_TRUE(writer.open(path, 22050, 1));
    for (int i = 0; i < 3; ++i)
        ASSERT_TRUE(writer.write(std::vector<float>(1000, 0.1f)));
    ASSERT_TRUE(writer.close());
    const std::string bytes = test::readBytes(path);
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
    EXPECT_FALSE(writer.open(test::scratchPath("bad-format.wav"), 0, 2));

    const std::string path = test::scratchPath("partial.wav");
    ASSERT_TRUE(writer.open(path, 44100, 2));
    EXPECT_FALSE(writer.write(std::vector<float>{0.0f, 0.0f, 0.0f}));
    EXPECT_EQ(writer.error(), "a partial frame of samples");
    EXPECT_TRUE(writer.close());
    std::filesystem::remove(path);
}

}  // namespace
}  // namespace tarabix
