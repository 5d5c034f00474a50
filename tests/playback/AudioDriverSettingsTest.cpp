#include "playback/AudioDriverSettings.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace tarabix {
namespace {

bool hasInt(const AudioDriverSettings& s, const std::string& key, int value)
{
    return std::ranges::find(s.intSettings, std::pair<std::string, int>{key, value}) != s.intSettings.end();
}

TEST(AudioDriverSettings, EachDriverGetsTheBufferThatGivesTheLatency)
{
    struct Case {
        const char* driver;
        int latencyMs;
        double rate;
        int periodSize;
        int periods;
        double bufferMs;
        double deviceDelayMs;  // what is heard lags the audio just written: the full buffer
    };
    const Case cases[] = {
        // The server takes one period as the whole buffer: the period is the latency.
        {"pulseaudio", 10, 44100, 441, 2, 10.0, 10.0},
        {"pulseaudio", 12, 48000, 576, 2, 12.0, 12.0},
        {"pulseaudio", 1, 44100, 132, 2, 132 / 44.1, 132 / 44.1},  // below the range: 3 ms
        {"pulseaudio", 900, 44100, 4410, 2, 100.0, 100.0},            // above it: 100 ms
        // Small periods, as many as fill the latency.
        {"alsa", 10, 44100, 64, 7, 448 / 44.1, 448 / 44.1},
        {"alsa", 12, 44100, 128, 4, 512 / 44.1, 512 / 44.1},
        {"alsa", 3, 48000, 64, 2, 128 / 48.0, 128 / 48.0},
        {"oss", 20, 48000, 128, 8, 1024 / 48.0, 1024 / 48.0},
        {"file", 10, 44100, 64, 2, 64 / 44.1, 0.0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.driver) + " " + std::to_string(c.latencyMs));
        const AudioDriverSettings s = chooseAudioDriverSettings(c.driver, c.latencyMs, c.rate);
        EXPECT_EQ(s.periodSize, c.periodSize);
        EXPECT_EQ(s.periods, c.periods);
        EXPECT_NEAR(s.bufferMs, c.bufferMs, 1e-9);
        EXPECT_NEAR(s.deviceDelayMs, c.deviceDelayMs, 1e-9);
        EXPECT_EQ(hasInt(s, "audio.pulseaudio.adjust-latency", 1), std::string(c.driver) == "pulseaudio");
        // A time-stamped event needs a lead of at least one write of the synthesizer.
        EXPECT_GE(s.burstMs + 1e-9, s.periodSize * 1000.0 / c.rate);
    }
}

TEST(AudioDriverSettings, JackKeepsTheServersPeriodAndConnectsToTheSpeakers)
{
    const AudioDriverSettings s = chooseAudioDriverSettings("jack", 10, 48000);
    EXPECT_EQ(s.bufferMs, 0.0);
    EXPECT_EQ(s.deviceDelayMs, s.burstMs);  // the period it plays while we render the next
    EXPECT_TRUE(hasInt(s, "audio.jack.autoconnect", 1));
    EXPECT_EQ(describeAudioOutput("jack", s, 48000), "jack, latency set by the server");
    EXPECT_EQ(describeAudioOutput("pulseaudio", chooseAudioDriverSettings("pulseaudio", 10, 44100), 44100),
              "pulseaudio, 10.0 ms (441 frames at 44100 Hz)");
}

}  // namespace
}  // namespace tarabix
