#include "PitchEstimator.h"
#include "playback/OfflineSynth.h"
#include "playback/SoundFontLocator.h"
#include "playback/mMidiMain.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace tarabix {
namespace {

double centsBetween(double hz, double referenceHz)
{
    return 1200.0 * std::log2(hz / referenceHz);
}

TEST(PitchEstimator, FindsTheFundamentalUnderALouderOctave)
{
    const double rate = 44100.0;
    for (double hz : {110.0, 269.29, 320.24, 523.25}) {
        SCOPED_TRACE(hz);
        std::vector<double> tone(22050);
        for (size_t i = 0; i < tone.size(); ++i) {
            const double t = static_cast<double>(i) / rate;
            tone[i] = 0.3 * std::sin(2 * std::numbers::pi * hz * t) + 0.5 * std::sin(2 * std::numbers::pi * 2 * hz * t + 1.0) +
                      0.2 * std::sin(2 * std::numbers::pi * 3.01 * hz * t + 2.0);
        }
        EXPECT_NEAR(centsBetween(test::fundamentalHz(tone, rate, 80, 1000), hz), 0.0, 0.1);
    }
    EXPECT_EQ(test::fundamentalHz(std::vector<double>(4000, 0.0), rate, 80, 1000), 0.0);
}

class OfflineOutputTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        if (findSoundFont().empty())
            GTEST_SKIP() << "no General MIDI SoundFont installed";
        resetMidiMainState();
    }
    void TearDown() override { resetMidiMainState(); }

    // Routes the output layer into a fresh offline synth, as a render does.
    std::shared_ptr<OfflineSynth> routeOutputOffline()
    {
        auto synth = std::make_shared<OfflineSynth>();
        setMidiOutBackend({[] { return std::vector<std::string>{}; },
                           [synth](int32_t) { return std::make_unique<OfflineSynthPort>(synth); }});
        return synth;
    }
};

// The whole way a quarter tone travels: the channel's pitch wheel word from the output layer,
// FluidSynth with the General MIDI SoundFont, and the program every re-open sets (0).
TEST_F(OfflineOutputTest, QuarterTonesSoundAtTheirPitch)
{
    struct Case {
        int note;
        int32_t cents;
        double expectedHz;
    };
    const Case cases[] = {{60, 50, 269.29}, {64, -50, 320.24}, {64, 0, 329.63}};
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "note " << c.note << " " << c.cents << " cents");
        std::shared_ptr<OfflineSynth> synth = routeOutputOffline();
        ASSERT_TRUE(synth->ready()) << synth->failureReason();
        ASSERT_EQ(reopenMidiOut(), kMidiOutOk);
        // The channel was just at another shift, so the note-on has to move the wheel.
        setChannelBendCents(0, c.cents == 0 ? 100 : 0);
        midiNoteOn(0, c.note, c.cents, 100);
        synth->render(1300);

        // From 0.3 s on: past the attack, where the tone is steady.
        const std::vector<float>& stereo = synth->samples();
        const size_t from = static_cast<size_t>(0.3 * synth->sampleRate());
        std::vector<double> mono;
        for (size_t frame = from; 2 * frame + 1 < stereo.size(); ++frame)
            mono.push_back(static_cast<double>(stereo[2 * frame]) + stereo[2 * frame + 1]);
        const double hz = test::fundamentalHz(mono, synth->sampleRate(), 80, 1000);
        EXPECT_NEAR(centsBetween(hz, c.expectedHz), 0.0, 3.0) << hz << " Hz";
    }
}

TEST_F(OfflineOutputTest, RendersTheAskedLengthAndHandsTheSamplesOver)
{
    OfflineSynth synth;
    ASSERT_TRUE(synth.ready());
    synth.render(100);
    EXPECT_EQ(synth.framesRendered(), 4410);
    EXPECT_EQ(synth.samples().size(), 2u * 4410);
    synth.renderUntil(50);
    EXPECT_EQ(synth.framesRendered(), 4410);
    synth.renderUntil(250);
    EXPECT_EQ(synth.framesRendered(), 11025);
    EXPECT_EQ(synth.renderedMs(), 250);
    EXPECT_EQ(synth.takeSamples().size(), 2u * 11025);
    EXPECT_TRUE(synth.samples().empty());

    // Nothing was played, so it is silence (FluidSynth leaves traces far below one 16-bit step);
    // a note is not.
    synth.renderFrames(1000);
    float loudest = 0.0f;
    for (float s : synth.takeSamples())
        loudest = std::max(loudest, std::abs(s));
    EXPECT_LT(loudest, 1e-5f);
    synth.send(0x7F4590);
    synth.render(200);
    for (float s : synth.samples())
        loudest = std::max(loudest, std::abs(s));
    EXPECT_GT(loudest, 0.01f);
}

TEST(OfflineSynth, WithoutItsSoundFontItRendersSilenceAndSaysWhy)
{
    OfflineSynthOptions options;
    options.soundFontPath = "/nonexistent/tarabix.sf2";
    auto synth = std::make_shared<OfflineSynth>(options);
    EXPECT_FALSE(synth->ready());
    EXPECT_NE(synth->failureReason().find("/nonexistent/tarabix.sf2"), std::string::npos);
    synth->send(0x7F4590);
    synth->render(10);
    EXPECT_EQ(synth->samples(), std::vector<float>(2 * 441, 0.0f));

    OfflineSynthPort port(synth);
    EXPECT_EQ(port.open(), kMidiOutNoDevice);
    EXPECT_FALSE(port.failureReason().empty());
}

}  // namespace
}  // namespace tarabix
