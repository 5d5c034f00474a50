#include "playback/SystemMidiOut.h"

#include "playback/FluidSynthPort.h"
#include "playback/RtMidiPort.h"

#include <algorithm>

namespace tarabix {

namespace {

struct BuiltInSynthChoice {
    int latencyMs = kDefaultSynthLatencyMs;
    std::string audioFile;
};

BuiltInSynthChoice& builtInChoice()
{
    static BuiltInSynthChoice choice;
    return choice;
}

FluidSynthPortOptions builtInSynthOptions()
{
    const BuiltInSynthChoice& choice = builtInChoice();
    FluidSynthPortOptions options;
    options.latencyMs = builtInSynthLatencyMs;
    if (!choice.audioFile.empty()) {
        options.audioDrivers = {"file"};
        options.driverSettings = {{"audio.file.name", choice.audioFile}, {"audio.file.type", "wav"},
                                  {"audio.file.format", "s16"}};
        // A file takes whatever it is given: pausing would only leave a gap out of the piece.
        options.idleWatcher = false;
    }
    return options;
}

}  // namespace

MidiOutBackend systemMidiOutBackend()
{
    return {listSystemMidiPorts, [](int32_t id) -> std::unique_ptr<MidiOutPort> {
                if (id == kMidiMapperId)
                    return std::make_unique<FluidSynthPort>(builtInSynthOptions());
                if (id < 0)
                    return nullptr;
                return std::make_unique<RtMidiPort>(static_cast<unsigned>(id));
            },
            systemMidiPortsProblem};
}

void setBuiltInSynthLatencyMs(int ms)
{
    builtInChoice().latencyMs = std::clamp(ms, kMinSynthLatencyMs, kMaxSynthLatencyMs);
}

int builtInSynthLatencyMs()
{
    return builtInChoice().latencyMs;
}

void setBuiltInSynthAudioFile(const std::string& wavPath)
{
    builtInChoice().audioFile = wavPath;
}

}  // namespace tarabix
