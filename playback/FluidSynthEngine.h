#pragma once

#include <fluidsynth.h>

#include <cstdint>
#include <string>

#include "playback/SoundFontLocator.h"

namespace tarabix {

// The synthesizer's master gain, for the window and the offline renderer alike. FluidSynth's own
// 0.2 leaves a piece some 20 dB under full scale. This one puts the sample pieces at the default
// volume between -6 and -4.5 dBFS and keeps them under full scale at the highest volume (-0.3
// dBFS at the loudest): see bench/sample_peaks.sh.
inline constexpr double kSynthGain = 1.43;

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

    // Loads the SoundFont and selects its presets on all channels, replacing the one loaded
    // before; false with reason() set when the file is missing, fails the quick check or is
    // refused by FluidSynth. Slow on a cold disk cache: callers that must stay responsive run it
    // on a worker thread.
    bool loadSoundFont(const std::string& path);

    // Loads choice.path; when that fails and the file was the learner's own (choice.notice empty
    // so far), the system's General MIDI SoundFont in its place, with choice updated to say so.
    bool loadChosenSoundFont(SoundFontChoice& choice);

    // Plays one packed short message. FluidSynth's API is thread-safe, so this may be called
    // from any thread.
    void dispatch(uint32_t message) const;

    std::string reason() const { return m_reason; }

private:
    fluid_settings_t* m_settings = nullptr;
    fluid_synth_t* m_synth = nullptr;
    int m_soundFontId = -1;
    std::string m_reason;
    std::string m_problem;  // what is wrong with the last file tried, without its name
};

}  // namespace tarabix
