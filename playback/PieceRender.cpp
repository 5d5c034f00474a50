#include "playback/PieceRender.h"

#include "midi/MidiError.h"
#include "playback/MidiPlayer.h"
#include "playback/OfflineSynth.h"
#include "playback/PieceRouter.h"
#include "playback/VirtualClock.h"
#include "playback/WavWriter.h"
#include "playback/mMidiMain.h"

#include <memory>

namespace tarabix {

namespace {

constexpr int kSampleRate = 44100;

// The output layer is global; whatever happens, the render hands it back in its start-up state.
struct OutputTakeover {
    explicit OutputTakeover(std::shared_ptr<OfflineSynth> synth)
    {
        setMidiOutBackend({[] { return std::vector<std::string>{}; },
                           [synth](int32_t id) -> std::unique_ptr<MidiOutPort> {
                               if (id != kMidiMapperId)
                                   return nullptr;
                               return std::make_unique<OfflineSynthPort>(synth);
                           }});
        setMidiDeviceId(kMidiMapperId);
    }
    ~OutputTakeover() { resetMidiMainState(); }
    OutputTakeover(const OutputTakeover&) = delete;
    OutputTakeover& operator=(const OutputTakeover&) = delete;
};

}  // namespace

PieceRenderResult renderPieceToWav(const MidiFile& piece, const std::string& wavPath,
                                   const PieceRenderOptions& options)
{
    PieceRenderResult result;
    OfflineSynthOptions synthOptions;
    synthOptions.soundFontPath = options.soundFontPath;
    synthOptions.sampleRate = kSampleRate;
    auto synth = std::make_shared<OfflineSynth>(synthOptions);
    result.notice = synth->notice();
    if (!synth->ready()) {
        result.error = "the built-in synthesizer cannot play: " + synth->failureReason();
        return result;
    }
    WavWriter wav;
    if (!wav.open(wavPath, kSampleRate, OfflineSynth::kAudioChannels)) {
        result.error = wav.error();
        return result;
    }

    OutputTakeover takeover(synth);
    if (reopenMidiOut() != kMidiOutOk) {
        result.error = midiOutFailureReason();
        return result;
    }

    bool written = true;
    VirtualClock clock;
    clock.onAdvance = [&](int32_t, int32_t toMs) {
        synth->renderUntil(toMs);
        const std::vector<float> samples = synth->takeSamples();
        written = wav.write(samples) && written;
    };

    PieceRouter router;
    router.setMidiOctShift(options.midiOctShift);
    router.setVolume(options.volume);

    MidiPlayer player(clock.playerClock());
    player.resetPlayState();
    player.setPlaySpeedRatio(options.speed);
    player.setTheMidi(&piece);
    player.setStartOffsetMSecMidi(options.fromMs);
    player.chase = [&](int32_t fromMs) { router.startFrom(&piece, fromMs); };
    if (options.lengthMs > 0)
        clock.at(options.lengthMs, [&] { player.stopPlaying(); });
    player.msg = [&](uint8_t status, uint8_t c1, uint8_t c2, int32_t) {
        router.route(status, c1, c2);
        ++result.events;
    };
    try {
        player.play();
    } catch (const MidiError& e) {
        result.error = "cannot time the piece: " + e.description();
        return result;
    }
    midiOutReset();
    clock.advanceBy(options.tailMs);

    result.audioMs = clock.now();
    if (!wav.close() || !written) {
        result.error = wav.error();
        return result;
    }
    result.ok = true;
    return result;
}

}  // namespace tarabix
