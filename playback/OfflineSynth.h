#pragma once

#include "playback/MidiOutPort.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace tarabix {

struct OfflineSynthOptions {
    std::string soundFontPath;  // empty: the program's choice (soundFontOverride()), else the system's
    double sampleRate = 44100.0;
};

// The built-in synthesizer without an audio device: messages go in, stereo samples come out as
// fast as the machine can compute them. The renderer of whole pieces drives it on a virtual
// clock: renderUntil(event time), send(event), ... then takeSamples() into a WavWriter as it goes.
class OfflineSynth {
public:
    static constexpr int kAudioChannels = 2;

    explicit OfflineSynth(OfflineSynthOptions options = {});
    ~OfflineSynth();
    OfflineSynth(const OfflineSynth&) = delete;
    OfflineSynth& operator=(const OfflineSynth&) = delete;

    // False when the synth or its SoundFont could not be set up; failureReason() says why.
    // A synth that is not ready renders silence.
    bool ready() const;
    std::string failureReason() const;
    // Set when the file asked for was passed over for the system's SoundFont.
    std::string notice() const;
    // The SoundFont playing (the fallback, when one stands in).
    std::string soundFontPath() const;
    double sampleRate() const;

    void send(uint32_t message);

    // Appends ms milliseconds of audio.
    void render(int32_t ms);
    // Appends audio until ms milliseconds have been rendered since the start (nothing if past).
    void renderUntil(int32_t ms);
    void renderFrames(int64_t frames);

    int64_t framesRendered() const;
    int32_t renderedMs() const;

    // Samples not yet taken, interleaved left/right.
    const std::vector<float>& samples() const;
    std::vector<float> takeSamples();

    // Writes the samples not yet taken to a 16-bit WAV file.
    bool writeWav(const std::string& path, std::string* error = nullptr) const;

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};

// Lets the output layer play into an OfflineSynth (a render installs it as the backend).
class OfflineSynthPort final : public MidiOutPort {
public:
    explicit OfflineSynthPort(std::shared_ptr<OfflineSynth> synth) : m_synth(std::move(synth)) {}

    int32_t open() override;
    int32_t close() override;
    void send(uint32_t message) override;
    std::string failureReason() const override;
    std::string notice() const override;

private:
    std::shared_ptr<OfflineSynth> m_synth;
    bool m_open = false;
};

}  // namespace tarabix
