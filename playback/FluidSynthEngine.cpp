#include "playback/FluidSynthEngine.h"

#include "midi/MidiBytes.h"
#include "playback/MidiOutPort.h"
#include "playback/SoundFontCheck.h"
#include "playback/SynthDiagnostics.h"

namespace tarabix {

FluidSynthEngine::FluidSynthEngine(double sampleRate)
{
    installSynthDiagnostics();
    m_settings = new_fluid_settings();
    if (!m_settings) {
        m_reason = "the built-in synthesizer could not be created";
        return;
    }
    fluid_settings_setnum(m_settings, "synth.sample-rate", sampleRate);
    // Only the samples of the presets in use are read, so a 140 MB SoundFont is ready in tens of
    // milliseconds instead of being read whole.
    fluid_settings_setint(m_settings, "synth.dynamic-sample-loading", 1);
    fluid_settings_setnum(m_settings, "synth.gain", kSynthGain);
    m_synth = new_fluid_synth(m_settings);
    if (!m_synth)
        m_reason = "the built-in synthesizer could not be created";
}

FluidSynthEngine::~FluidSynthEngine()
{
    if (m_synth)
        delete_fluid_synth(m_synth);
    if (m_settings)
        delete_fluid_settings(m_settings);
}

bool FluidSynthEngine::loadSoundFont(const std::string& path)
{
    if (!m_synth)
        return false;
    m_problem.clear();
    if (path.empty()) {
        m_reason = "no General MIDI SoundFont found";
        return false;
    }
    if (const SoundFontCheck check = checkSoundFontFile(path); !check.ok) {
        m_problem = check.problem;
        m_reason = "the SoundFont " + path + " cannot be used: " + m_problem;
        return false;
    }
    if (m_soundFontId != -1) {
        fluid_synth_sfunload(m_synth, m_soundFontId, 1);
        m_soundFontId = -1;
    }
    const uint64_t mark = synthDiagnosticsMark();
    const int id = fluid_synth_sfload(m_synth, path.c_str(), 1);
    if (id == FLUID_FAILED) {
        // FluidSynth's first complaint says what is wrong inside the file.
        const std::vector<std::string> said = synthDiagnosticsSince(mark);
        m_problem = said.empty() ? std::string("it could not be loaded") : "it could not be loaded: " + said.front();
        m_reason = "the SoundFont " + path + " cannot be used: " + m_problem;
        return false;
    }
    m_soundFontId = id;
    m_reason.clear();
    return true;
}

bool FluidSynthEngine::loadChosenSoundFont(SoundFontChoice& choice)
{
    if (loadSoundFont(choice.path))
        return true;
    if (choice.path.empty() || !choice.notice.empty())
        return false;
    const std::string failed = choice.path;
    const std::string reason = m_reason;
    const std::string fallback = findSoundFont(soundFontFolders(), failed);
    choice.notice = soundFontFallbackNotice(failed, m_problem, fallback);
    choice.path = fallback;
    if (!fallback.empty() && loadSoundFont(fallback))
        return true;
    choice.reason = reason;
    m_reason = reason;
    return false;
}

void FluidSynthEngine::dispatch(uint32_t message) const
{
    if (!m_synth)
        return;
    const int status = static_cast<int>(shortMessageStatus(message));
    const int ch = status & 0x0F;
    const int d1 = static_cast<int>(shortMessageData1(message));
    const int d2 = static_cast<int>(shortMessageData2(message));
    // FluidSynth checks the ranges itself and refuses out-of-range data.
    switch (status & 0xF0) {
    case midistatus::kNoteOff: fluid_synth_noteoff(m_synth, ch, d1); break;
    case midistatus::kNoteOn:
        if (d2 == 0)
            fluid_synth_noteoff(m_synth, ch, d1);
        else
            fluid_synth_noteon(m_synth, ch, d1, d2);
        break;
    case midistatus::kKeyPressure: fluid_synth_key_pressure(m_synth, ch, d1, d2); break;
    case midistatus::kController: fluid_synth_cc(m_synth, ch, d1, d2); break;
    case midistatus::kProgramChange: fluid_synth_program_change(m_synth, ch, d1); break;
    case midistatus::kChannelPressure: fluid_synth_channel_pressure(m_synth, ch, d1); break;
    case midistatus::kPitchWheel: fluid_synth_pitch_bend(m_synth, ch, wheelOf(d1, d2)); break;
    default: break;  // system messages mean nothing to a synthesizer here
    }
}

}  // namespace tarabix
