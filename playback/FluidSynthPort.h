#pragma once

#include "playback/MidiOutPort.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace tarabix {

// The audio drivers tried in turn, the platform's usual one first.
std::vector<std::string> defaultAudioDrivers();

struct FluidSynthPortOptions {
    std::string soundFontPath;  // empty: the program's choice (soundFontOverride()), else the system's
    std::vector<std::string> audioDrivers = defaultAudioDrivers();
    double sampleRate = 44100.0;
    // 6 periods of 64 frames: under 9 ms of buffered audio at 44.1 kHz, so a note played on the
    // fingerboard sounds at once.
    int periodSize = 64;
    int periods = 6;
    // Further FluidSynth string settings for the driver (e.g. "audio.file.name").
    std::vector<std::pair<std::string, std::string>> driverSettings;
};

// The built-in synthesizer behind "MIDI Mapper": FluidSynth with a General MIDI SoundFont,
// playing through the audio device.
//
// open() creates the synth and the audio driver at once, so a missing audio device is known
// before it returns (kMidiOutNoDevice, "no audio output device"); it chooses the SoundFont and
// checks its outline there too, and then loads it on a worker thread so the window can appear
// meanwhile. A different file asked for (the learner chose another) is chosen and loaded at the
// next open. Messages sent while it loads are kept (up
// to a bound) and played, in order, as soon as it is ready. close() lets go of the audio device
// but keeps the synth and its SoundFont, so the next open is quick.
class FluidSynthPort final : public MidiOutPort {
public:
    enum class State { Closed, Loading, Ready, Failed };

    explicit FluidSynthPort(FluidSynthPortOptions options = {});
    ~FluidSynthPort() override;

    int32_t open() override;
    int32_t close() override;
    void send(uint32_t message) override;
    std::string failureReason() const override;
    std::string notice() const override;
    bool isReady() const override { return state() == State::Ready; }

    // The SoundFont chosen at the last open (the fallback when the learner's file was passed
    // over); empty when there is none.
    std::string soundFontPath() const;

    State state() const;
    // Blocks until the SoundFont is loaded or failed, at most timeoutMs; true when ready.
    bool waitUntilReady(int timeoutMs) const;

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};

}  // namespace tarabix
