// How long the first note after a silence waits for the built-in synthesizer's audio to come
// back: the audio is let go (on a virtual clock, at once), then a note-on is sent and timed; the
// send returns once the driver runs again and the note is in the synth.
//   TARABIX_WAKE_DRIVER=pulseaudio build/bench/synth_wake_bench    (run by bench/desktop_sound.sh
//   under each sound server; the default is FluidSynth's file driver, writing to /dev/null)
#include "playback/FluidSynthPort.h"
#include "playback/SoundFontLocator.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdlib>
#include <string>
#include <thread>

namespace {

using namespace tarabix;
using Clock = std::chrono::steady_clock;

void WakeForANote(benchmark::State& state)
{
    if (findSoundFont().empty()) {
        state.SkipWithError("no General MIDI SoundFont installed");
        return;
    }
    const char* driver = std::getenv("TARABIX_WAKE_DRIVER");
    int64_t virtualMs = 0;
    FluidSynthPortOptions options;
    if (driver && *driver) {
        options.audioDrivers = {driver};
    } else {
        options.audioDrivers = {"file"};
        options.driverSettings = {{"audio.file.name", "/dev/null"}, {"audio.file.type", "raw"}};
    }
    options.idleWatcher = false;
    options.clockMs = [&virtualMs] { return virtualMs; };
    FluidSynthPort port(options);
    if (port.open() != kMidiOutOk || !port.waitUntilReady(10000)) {
        state.SkipWithError(port.failureReason().c_str());
        return;
    }
    state.SetLabel(port.outputDescription());
    for (auto _ : state) {
        // Let go: all sound off, then the quiet time passes on the virtual clock.
        port.send(0x78B0);
        for (int tries = 0; tries < 1000 && port.audioRunning(); ++tries) {
            // The quiet time counts from the last block that still rang, which the audio thread
            // may write after the all-sound-off: each try lets a whole quiet time pass again.
            virtualMs += options.idlePauseMs + 1;
            port.checkIdle();
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        if (port.audioRunning()) {
            state.SkipWithError("the audio was not let go");
            return;
        }
        const auto start = Clock::now();
        port.send(0x643C90);
        state.SetIterationTime(std::chrono::duration<double>(Clock::now() - start).count());
        port.send(0x3C80);
    }
}
BENCHMARK(WakeForANote)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(20);

}  // namespace

BENCHMARK_MAIN();
