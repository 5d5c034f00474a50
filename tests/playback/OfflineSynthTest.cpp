#include "PitchEstimator.h"
#include "playback/OfflineSynth.h"
#include "playback/PieceRouter.h"
#include "playback/SoundFontLocator.h"
#include "playback/mMidiMain.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace tarabix {
namespace {

class OfflineOutputTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        if (findSoundFont().empty())
            GTEST_SKIP() << "no General MIDI SoundFont installed";
        resetMidiMainState();
    }
    void TearDown() override { resetMidiMainState(); }
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
    for (const Case& c : {Case{60, 50, 269.29}, Case{64, -50, 320.24}}) {
        SCOPED_TRACE(testing::Message() << "note " << c.note << " " << c.cents << " cents");
        auto synth = std::make_shared<OfflineSynth>();
        setMidiOutBackend({[] { return std::vector<std::string>{}; },
                           [synth](int32_t) { return std::make_unique<OfflineSynthPort>(synth); }});
        ASSERT_TRUE(synth->ready()) << synth->failureReason();
        ASSERT_EQ(reopenMidiOut(), kMidiOutOk);
        midiNoteOn(0, c.note, c.cents, 100);
        synth->render(1300);
        const double hz = test::stereoFundamentalHz(synth->samples(), synth->sampleRate(), 0.3, 1.3);
        EXPECT_NEAR(test::centsBetween(hz, c.expectedHz), 0.0, 3.0) << hz << " Hz";
    }
}

// The loudest moment of a sample piece: a bar's downbeat, the oud line (nylon guitar) at its
// accent with the doum on the drum channel, a few times over so that the reverb builds up. At the
// window's starting volume it must sound near full scale without reaching it: loud enough beside
// other programs' sound, with room left for the learner's volume control.
TEST_F(OfflineOutputTest, ADownbeatPeaksAFewDecibelsUnderFullScaleAtTheStartingVolume)
{
    {
        auto synth = std::make_shared<OfflineSynth>();
        setMidiOutBackend({[] { return std::vector<std::string>{}; },
                           [synth](int32_t) { return std::make_unique<OfflineSynthPort>(synth); }});
        ASSERT_EQ(reopenMidiOut(), kMidiOutOk);
        PieceRouter router;
        router.resetChannelState();
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
        float peak = 0.0f;
        for (float sample : synth->samples())
            peak = std::max(peak, std::abs(sample));
        const double db = 20.0 * std::log10(static_cast<double>(peak));
        EXPECT_GE(db, -6.0);
        EXPECT_LE(db, -1.0);
    }
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

}  // namespace
}  // namespace tarabix
