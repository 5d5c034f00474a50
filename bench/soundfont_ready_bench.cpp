// When the built-in synthesizer can first sound, measured without a sound card: FluidSynth's
// file driver stands in for the audio device (it renders in real time into /dev/null), so open()
// does the same work as at the window's start-up.
//   SynthOpen        what the window's start-up waits for: the synth and the audio driver
//   SoundFontReady   open() until the SoundFont is loaded and a note would sound, the file in the
//                    page cache (a learner who has started the program before)
//   SoundFontReadyCold  the same after the SoundFont file is dropped from the page cache (the
//                    first start after booting)
//   SoundFontCheck   the quick look at the file's outline that open() makes before it returns,
//                    warm and cold page cache
// The SoundFont is the one the program finds (findSoundFont).
#include "playback/FluidSynthPort.h"
#include "playback/SoundFontCheck.h"
#include "playback/SoundFontLocator.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <string>

#include <fcntl.h>
#include <unistd.h>

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

// Asks the kernel to forget the file's cached pages, so the next read comes from the disk.
void dropFromPageCache(const std::string& path)
{
    const int fd = ::open(path.c_str(), O_RDONLY);
    if (fd < 0)
        return;
    ::posix_fadvise(fd, 0, 0, POSIX_FADV_DONTNEED);
    ::close(fd);
}

void readyAfterOpen(benchmark::State& state, bool cold)
{
    if (!haveSoundFont(state))
        return;
    for (auto _ : state) {
        if (cold)
            dropFromPageCache(findSoundFont());
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

void SoundFontReady(benchmark::State& state)
{
    readyAfterOpen(state, false);
}
BENCHMARK(SoundFontReady)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(10);

void SoundFontReadyCold(benchmark::State& state)
{
    readyAfterOpen(state, true);
}
BENCHMARK(SoundFontReadyCold)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);

void SoundFontCheckTime(benchmark::State& state)
{
    if (!haveSoundFont(state))
        return;
    const std::string path = findSoundFont();
    const bool cold = state.range(0) != 0;
    for (auto _ : state) {
        if (cold)
            dropFromPageCache(path);
        const auto start = Clock::now();
        const bool ok = checkSoundFontFile(path).ok;
        state.SetIterationTime(std::chrono::duration<double>(Clock::now() - start).count());
        if (!ok) {
            state.SkipWithError("the SoundFont fails the check");
            return;
        }
    }
}
BENCHMARK(SoundFontCheckTime)->Name("SoundFontCheck")->Arg(0)->Arg(1)->UseManualTime()->Unit(benchmark::kMicrosecond)->Iterations(20);

}  // namespace

BENCHMARK_MAIN();
