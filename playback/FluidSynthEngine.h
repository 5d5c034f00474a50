#pragma once

#include <fluidsynth.h>

#include <cstdint>
#include <string>

namespace tarabix {

// The part of the built-in synthesizer shared by the real-time output and the offline renderer:
// FluidSynth's settings and synth, the SoundFont, and the short-message dispatch. Internal to
// playback/; the public classes keep FluidSynth's headers out of their users.
class FluidSynthEngine {
public:
    explicit FluidSynthEngine(double sampleRate);
    ~FluidSynthEngine();
    FluidSynthEngine(const FluidSynthEngine&) = delete;
    FluidSynthEngine& operator=(const FluidSynthEngine&) = delete;

    // False when FluidSynth could not create its synth (out of memory); reason() says so.
    bool valid() const { return m_synth != nullptr; }
    fluid_settings_t* settings() const { return m_settings; }
    fluid_synth_t* synth() const { return m_synth; }

    // Loads the SoundFont and selects its presets on all channels; false with reason() set when
    // the file is missing or not a SoundFont. Slow on a cold disk cache: callers that must stay
    // responsive run it on a worker thread.
    bool loadSoundFont(const std::string& path);

    // Plays one packed short message. FluidSynth's API is thread-safe, so this may be called
    // from any thread.
    void dispatch(uint32_t message) const;

    std::string reason() const { return m_reason; }

private:
    fluid_settings_t* m_settings = nullptr;
    fluid_synth_t* m_synth = nullptr;
    std::string m_reason;
};

}  // namespace tarabix
