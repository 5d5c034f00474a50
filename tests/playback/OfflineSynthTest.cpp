#include "playback/OfflineSynth.h"
#include "playback/PieceRouter.h"
#include "playback/SoundFontLocator.h"
#include "playback/mMidiMain.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace tarabix {
namespace {

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

}  // namespace
}  // namespace tarabix
