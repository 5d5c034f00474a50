#pragma once

#include <string>
#include <utility>
#include <vector>

namespace tarabix {

// The lowest output latency that plays without dropouts on both desktop sound servers we meet:
// PulseAudio needs 20 ms through FluidSynth's driver (10 and 12 ms still drop out now and then),
// PipeWire grants about half of it as its own latency. And the range the learner may choose.
inline constexpr int kDefaultSynthLatencyMs = 20;
inline constexpr int kMinSynthLatencyMs = 3;
inline constexpr int kMaxSynthLatencyMs = 100;

// The audio drivers tried in turn, the platform's usual one first.
std::vector<std::string> defaultAudioDrivers();

// How the built-in synthesizer's audio driver is set up for one driver and latency.
struct AudioDriverSettings {
    int periodSize = 64;  // frames the synthesizer renders per write
    int periods = 2;      // periods in the device buffer (where the driver uses it)
    std::vector<std::pair<std::string, int>> intSettings;
    // Audio the device holds ahead of what is heard, in ms, as asked of the driver; 0 when the
    // driver's server decides alone (JACK).
    double bufferMs = 0.0;
    // How far one write of the synthesizer runs ahead in a burst: the time-stamped events need
    // at least this much lead to land on their sample.
    double burstMs = 0.0;
    // How long the audio the synthesizer has just rendered waits before it is heard when its
    // write is least ahead (right before a burst): the device's or server's buffer, which the
    // driver keeps full. Between bursts the rendered audio runs up to burstMs further ahead.
    double deviceDelayMs = 0.0;
};

// The choice per driver. The latency is clamped to the allowed range first.
// - pulseaudio: FluidSynth asks the server for one period as the whole stream buffer, so the
//   period itself carries the latency, with the server adjusting its own buffering to it.
// - alsa, oss, sdl2 and the platforms' drivers: periods of 64 or 128 frames, as many as fill the
//   latency (at least two, so one can be written while the other plays).
// - jack: the server's own period; nothing to ask for.
// - file: 64-frame writes paced in real time, as a sound card would take them; nothing waits
//   behind a write, so what is written counts as heard.
AudioDriverSettings chooseAudioDriverSettings(const std::string& driver, int latencyMs, double sampleRate);

// "pulseaudio, 10.0 ms (441 frames)": what the device dialog shows of the open output.
std::string describeAudioOutput(const std::string& driver, const AudioDriverSettings& chosen, double sampleRate);

}  // namespace tarabix
