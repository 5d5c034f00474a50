#pragma once

#include "playback/AudioDriverSettings.h"
#include "playback/MidiOutPort.h"

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace tarabix {

struct FluidSynthPortOptions {
    std::string soundFontPath;  // empty: the program's choice (soundFontOverride()), else the system's
    std::vector<std::string> audioDrivers = defaultAudioDrivers();
    double sampleRate = 44100.0;
    // The audio the device holds ahead of what is heard; each driver gets the buffer that gives
    // it (chooseAudioDriverSettings). Read each time the audio starts, so a changed setting
    // applies from the next open on.
    std::function<int()> latencyMs = [] { return kDefaultSynthLatencyMs; };
    // Further FluidSynth string settings for the driver (e.g. "audio.file.name").
    std::vector<std::pair<std::string, std::string>> driverSettings;
    // How far ahead of the audio thread's last write a time-stamped message is placed, beyond
    // the driver's own write burst: room for a sender that is late by up to this much.
    double scheduleMarginMs = 10.0;
    // After this long with nothing sent and nothing sounding the audio driver is let go, so the
    // sound server may suspend; the next note brings it back.
    int idlePauseMs = 3000;
    // Milliseconds on a steady clock for the idle pause (tests give a virtual one), and whether a
    // watcher thread looks for the pause by itself (tests call checkIdle instead). The thread
    // runs while the audio does either way, to watch the audio's pace (heardDelayMs).
    std::function<int64_t()> clockMs;
    bool idleWatcher = true;
    // Frames the file driver writes at a time: 0 for one 64-frame block, as a sound card takes
    // them; more imitates a sound server's bursts (PulseAudio's is the whole latency), for the
    // benchmarks.
    int fileWriteFrames = 0;
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
//
// Messages sent with a due time go through the synth's sequencer and sound at their sample (see
// SynthTimeline). When nothing has been sent and nothing has sounded for a few seconds, the
// audio driver is let go; the next note-on brings it back before it plays, and other messages
// change the synth's state without it. A driver whose sound server went away is noticed, let go,
// and tried again at later notes.
class FluidSynthPort final : public MidiOutPort {
public:
    enum class State { Closed, Loading, Ready, Failed };

    explicit FluidSynthPort(FluidSynthPortOptions options = {});
    ~FluidSynthPort() override;

    int32_t open() override;
    int32_t close() override;
    void send(uint32_t message) override;
    void sendAt(uint32_t message, int32_t dueMs) override;
    // Also drops the time-stamped messages still waiting, so nothing sounds after a stop.
    void reset() override;
    // The sequencer's lead, plus where in the audio thread's write burst the clocks were tied
    // (measured; half a burst until the audio has been watched for a moment), plus the buffer
    // the driver keeps behind its writes (AudioDriverSettings::deviceDelayMs, as asked of the
    // driver: a sound server may grant a little less).
    int32_t heardDelayMs() const override;
    std::string failureReason() const override;
    std::string notice() const override;
    bool isReady() const override { return state() == State::Ready; }

    // The SoundFont chosen at the last open (the fallback when the learner's file was passed
    // over); empty when there is none.
    std::string soundFontPath() const;

    std::string outputDescription() const override;

    // True while the audio driver runs (open, and neither idle nor lost).
    bool audioRunning() const;
    // Pauses the audio when it has been silent long enough; the watcher thread calls it.
    void checkIdle();

    State state() const;
    // Blocks until the SoundFont is loaded or failed, at most timeoutMs; true when ready.
    bool waitUntilReady(int timeoutMs) const;

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};

}  // namespace tarabix
