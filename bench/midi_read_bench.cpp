// Reading and timing a large MIDI file: 16 tracks, 1,000,000 note events, 1,000 tempo changes,
// pitch bends for the quarter tones. The piece is generated here through our own writer.
//   midi_read_bench                    Google Benchmark runs (in memory)
//   midi_read_bench --write FILE       writes the piece
//   midi_read_bench --time FILE        reads and times FILE once, as the window does, and reports
#include "midi/MidiError.h"
#include "midi/MidiFile.h"
#include "midi/StringStreamIn.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>

namespace {

using tarabix::MidiFile;
using tarabix::MidiTrack;

constexpr int kTracks = 16;
constexpr int kNoteEvents = 1000000;  // note-ons and note-offs together
constexpr int kTempoChanges = 1000;
constexpr int kDivision = 480;

MidiFile makeBenchPiece()
{
    MidiFile file;
    file.setMidiFileFormat(1);
    file.setMidiHdrDivision(kDivision);
    file.setNTracks(kTracks);
    std::mt19937 random(20060303);

    const int notes = kNoteEvents / 2;
    const int noteTracks = kTracks - 1;
    int64_t longestTick = 0;
    for (int t = 1; t < kTracks; ++t) {
        MidiTrack& track = *file.tracks(t);
        const auto channel = static_cast<uint8_t>(t - 1);
        track.c_addTracknameE(0, "Part " + std::to_string(t));
        track.c_addProgChangeE(0, channel, static_cast<uint8_t>(random() % 128));
        const int trackNotes = notes / noteTracks + (t - 1 < notes % noteTracks ? 1 : 0);
        int64_t tick = 0;
        for (int n = 0; n < trackNotes; ++n) {
            const auto gap = static_cast<int32_t>(random() % 60);
            const auto length = static_cast<int32_t>(60 + random() % 420);
            const auto key = static_cast<uint8_t>(48 + random() % 36);
            if (n % 4 == 0) {
                // Quarter tones come from the wheel, set while no note sounds on the channel.
                track.c_addPitchWheelE(gap, channel, random() % 2 ? 50.0 : 0.0);
                track.c_addNoteOnE(0, channel, key, static_cast<uint8_t>(40 + random() % 80));
            } else {
                track.c_addNoteOnE(gap, channel, key, static_cast<uint8_t>(40 + random() % 80));
            }
            track.c_addNoteOffE(length, channel, key);
            tick += gap + length;
        }
        longestTick = std::max(longestTick, tick);
    }
    MidiTrack& tempoMap = *file.tracks(0);
    tempoMap.c_addTracknameE(0, "Tempo map");
    const auto step = static_cast<int32_t>(longestTick / kTempoChanges);
    for (int i = 0; i < kTempoChanges; ++i)
        tempoMap.c_addNewTempo(i == 0 ? 0 : step, static_cast<int32_t>(400000 + random() % 400000));
    return file;
}

const std::string& benchPieceBytes()
{
    static const std::string bytes = makeBenchPiece().makeMidiStr();
    return bytes;
}

void readAndTime(benchmark::State& state)
{
    const std::string& bytes = benchPieceBytes();
    for (auto _ : state) {
        tarabix::StringStreamIn stream;
        stream.setFromString(bytes);
        MidiFile file;
        if (file.readMidi(stream) != 0)
            state.SkipWithError("the piece did not read");
        benchmark::DoNotOptimize(file.allLastAbsMSec());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(bytes.size()));
}
BENCHMARK(readAndTime)->Unit(benchmark::kMillisecond);

void timingOnly(benchmark::State& state)
{
    tarabix::StringStreamIn stream;
    stream.setFromString(benchPieceBytes());
    MidiFile file;
    file.readMidi(stream);
    for (auto _ : state)
        benchmark::DoNotOptimize(file.setEvtsAbsMSecs());
}
BENCHMARK(timingOnly)->Unit(benchmark::kMillisecond);

void timingWithYieldHook(benchmark::State& state)
{
    tarabix::StringStreamIn stream;
    stream.setFromString(benchPieceBytes());
    MidiFile file;
    file.readMidi(stream);
    int64_t calls = 0;
    file.setYieldHook([&] { ++calls; }, 5);
    for (auto _ : state)
        benchmark::DoNotOptimize(file.setEvtsAbsMSecs());
    state.counters["yields"] = benchmark::Counter(static_cast<double>(calls), benchmark::Counter::kAvgIterations);
}
BENCHMARK(timingWithYieldHook)->Unit(benchmark::kMillisecond);

void textDump(benchmark::State& state)
{
    tarabix::StringStreamIn stream;
    stream.setFromString(benchPieceBytes());
    MidiFile file;
    file.readMidi(stream);
    for (auto _ : state)
        benchmark::DoNotOptimize(file.toText().size());
}
BENCHMARK(textDump)->Unit(benchmark::kMillisecond);

int writePiece(const char* path)
{
    const MidiFile file = makeBenchPiece();
    const int32_t status = file.toFile(path);
    if (status != 0) {
        std::fprintf(stderr, "midi_read_bench: cannot write %s (error %d)\n", path, status);
        return 1;
    }
    return 0;
}

int timeOnce(const char* path)
{
    const auto start = std::chrono::steady_clock::now();
    MidiFile file;
    const int32_t status = file.readMidiFile(path);
    const double ms = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
    int64_t events = 0;
    for (int t = 0; t < file.numOfTracks(); ++t)
        events += file.tracks(t)->trkNEvents();
    std::printf("status %d tracks %d events %lld piece_ms %d read_and_time_ms %.1f\n", status, file.numOfTracks(),
                static_cast<long long>(events), file.allLastAbsMSec(), ms);
    return status == 0 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc == 3 && std::strcmp(argv[1], "--write") == 0)
        return writePiece(argv[2]);
    if (argc == 3 && std::strcmp(argv[1], "--time") == 0)
        return timeOnce(argv[2]);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
