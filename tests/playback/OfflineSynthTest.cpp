#include "PitchEstimator.h"
#include "playback/OfflineSynth.h"
#include "playback/SoundFontLocator.h"
#include "playback/mMidiMain.h"

#include <gtest/gtest.h>

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
