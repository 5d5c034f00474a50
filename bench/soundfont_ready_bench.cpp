// When the built-in synthesizer can first sound, measured without a sound card: FluidSynth's
// file driver stands in for the audio device (it renders in real time into /dev/null), so open()
// does the same work as at the window's start-up.
//   SynthOpen        what the window's start-up waits for: the synth and the audio driver
//   SoundFontReady   open() until the SoundFont is loaded and a note would sound
// The SoundFont is the one the program finds (findSoundFont); the file stays in the page cache
// between iterations, as it does for a learner who has started the program before.
#include "playback/FluidSynthPort.h"
#include "playback/SoundFontLocator.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <string>

namespace {

using namespace tarabix;
using Clock = std::chrono::steady_clock;

FluidSynthPortOptions fileDriverOptions()
{
    FluidSynthPortOptions options;
    options.audioDrivers = {"file"};
    options.driverSettings = {{"audio.file.name", "/dev/null"}, {"audio.file.type", "raw"}};
    return options;
}

bool haveSoundFont(benchmark::State& state)
{
    if (!findSoundFont().empty())
        return true;
    state.SkipWithError("no General MIDI SoundFont installed");
    return false;
}

void SynthOpen(benchmark::State& state)
{
    if (!haveSoundFont(state))
        return;
    for (auto _ : state) {
        FluidSynthPort port(fileDriverOptions());
        const auto start = Clock::now();
        const int32_t status = port.open();
        state.SetIterationTime(std::chrono::duration<double>(Clock::now() - start).count());
        if (status != kMidiOutOk) {
            state.SkipWithError(port.failureReason().c_str());
            return;
        }
        port.waitUntilReady(10000);
    }
}
BENCHMARK(SynthOpen)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(10);

void SoundFontReady(benchmark::State& state)
{
    if (!haveSoundFont(state))
        return;
    for (auto _ : state) {
        FluidSynthPort port(fileDriverOptions());
        const auto start = Clock::now();
        const bool ready = port.open() == kMidiOutOk && port.waitUntilReady(10000);
        state.SetIterationTime(std::chrono::duration<double>(Clock::now() - start).count());
        if (!ready) {
            state.SkipWithError(port.failureReason().c_str());
            return;
        }
    }
}
BENCHMARK(SoundFontReady)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(10);

}  // namespace

BENCHMARK_MAIN();
