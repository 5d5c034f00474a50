#include "playback/AudioDriverSettings.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>

namespace tarabix {

namespace {

// FluidSynth renders in blocks of this many frames; a period that is not a multiple of it splits
// blocks across writes for nothing.
constexpr int kSynthBlock = 64;

int framesOf(double ms, double sampleRate)
{
    return static_cast<int>(std::lround(ms * sampleRate / 1000.0));
}

double msOf(int frames, double sampleRate)
{
    return frames * 1000.0 / sampleRate;
}

}  // namespace

std::vector<std::string> defaultAudioDrivers()
{
#if defined(__APPLE__)
    return {"coreaudio"};
#elif defined(_WIN32)
    return {"wasapi", "dsound"};
#else
    // JACK only when its server runs: its client library can abort the process when none does.
    // A running server keeps its shared-memory registry in /dev/shm under a "jack" name.
    std::error_code ec;
    for (const auto& entry : std::filesystem::directory_iterator("/dev/shm", ec))
        if (entry.path().filename().string().starts_with("jack"))
            return {"jack", "pulseaudio", "alsa"};
    return {"pulseaudio", "alsa"};
#endif
}

AudioDriverSettings chooseAudioDriverSettings(const std::string& driver, int latencyMs, double sampleRate)
{
    const int latency = std::clamp(latencyMs, kMinSynthLatencyMs, kMaxSynthLatencyMs);
    const int latencyFrames = framesOf(latency, sampleRate);
    AudioDriverSettings s;
    if (driver == "pulseaudio") {
        // The whole buffer is one period; the server picks its own fragments inside it.
        s.periodSize = std::max(kSynthBlock, latencyFrames);
        s.periods = 2;
        s.intSettings = {{"audio.pulseaudio.adjust-latency", 1}};
        s.bufferMs = msOf(s.periodSize, sampleRate);
        s.burstMs = s.bufferMs;
        // With latency adjusted, the server holds about the asked buffer behind each write.
        s.deviceDelayMs = s.bufferMs;
    } else if (driver == "jack") {
        // Connected to the speakers at once, as the other drivers are.
        s.intSettings = {{"audio.jack.autoconnect", 1}};
        s.burstMs = msOf(4 * kSynthBlock, sampleRate);
        // The server plays a period while the next is rendered: one period, of the size assumed
        // for the burst, since the server alone knows it.
        s.deviceDelayMs = s.burstMs;
    } else if (driver == "file") {
        s.periodSize = kSynthBlock;
        s.periods = 2;
        s.bufferMs = msOf(s.periodSize, sampleRate);
        // The file driver's timer wakes every millisecond and writes one period when it is due.
        s.burstMs = std::max(1.0, msOf(s.periodSize, sampleRate));
        s.deviceDelayMs = 0.0;  // a sample written is a sample heard
    } else {
        s.periodSize = latencyFrames >= 8 * kSynthBlock ? 2 * kSynthBlock : kSynthBlock;
        s.periods = std::max(2, static_cast<int>(std::lround(static_cast<double>(latencyFrames) / s.periodSize)));
        s.bufferMs = msOf(s.periodSize * s.periods, sampleRate);
        s.burstMs = msOf(s.periodSize, sampleRate);
        // The driver writes a period whenever one is free in the device's buffer, so the buffer
        // stays full behind what was rendered.
        s.deviceDelayMs = s.bufferMs;
    }
    return s;
}

std::string describeAudioOutput(const std::string& driver, const AudioDriverSettings& chosen, double sampleRate)
{
    char text[160];
    if (chosen.bufferMs <= 0.0)
        std::snprintf(text, sizeof text, "%s, latency set by the server", driver.c_str());
    else
        std::snprintf(text, sizeof text, "%s, %.1f ms (%d frames at %.0f Hz)", driver.c_str(), chosen.bufferMs,
                      static_cast<int>(std::lround(chosen.bufferMs * sampleRate / 1000.0)), sampleRate);
    return text;
}

}  // namespace tarabix
