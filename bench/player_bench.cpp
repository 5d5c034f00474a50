// The player engine on a virtual clock (what one delivered event costs), and two helpers of
// bench/player_timing.sh:
//   player_bench --write-dense-piece OUT.mid [EVENTS_PER_SECOND] [SECONDS]
//   player_bench --sleep-floor      how late a bare absolute sleep wakes on this machine right now,
//                                   the floor under any player's lateness
#include "midi/EventList.h"
#include "midi/MidiBytes.h"
#include "midi/MidiFile.h"
#include "playback/MidiPlayer.h"
#include "playback/PieceChase.h"
#include "playback/VirtualClock.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace tarabix;

// Four tracks on four channels playing notes of 15 ms, each track at its own pace, with a
// quarter-tone pitch wheel before every eighth note: close to an ensemble piece at its busiest.
MidiFile makeDensePiece(int eventsPerSecond, int seconds)
{
    constexpr int kTracks = 4;
    EventList events;
    const int total = eventsPerSecond * seconds;
    const int pairsPerTrack = total / 2 / kTracks;
    const double spacingMs = 1000.0 * seconds / pairsPerTrack;
    for (int t = 0; t < kTracks; ++t) {
        const auto ch = static_cast<uint8_t>(t);
        for (int i = 0; i < pairsPerTrack; ++i) {
            const int on = static_cast<int>(i * spacingMs + t * spacingMs / kTracks);
            const auto note = static_cast<uint8_t>(48 + (i * 7 + t * 5) % 36);
            if (i % 8 == 0)
                events.pitchWheel(t, on, ch, i % 16 == 0 ? 50 : 0);
            events.channel(t, on, midistatus::kNoteOn | ch, note, 90);
            events.channel(t, on + 15, midistatus::kNoteOff | ch, note, 0);
        }
    }
    MidiFile piece;
    piece.setFromList(events.events());
    return piece;
}

void BM_PlayDensePieceOnVirtualClock(benchmark::State& state)
{
    const MidiFile piece = makeDensePiece(200, 20);
    int64_t delivered = 0;
    for (auto _ : state) {
        VirtualClock clock;
        MidiPlayer player(clock.playerClock());
        player.resetPlayState();
        player.setTheMidi(&piece);
        player.msg = [&](uint8_t, uint8_t, uint8_t, int32_t) { ++delivered; };
        player.play();
    }
    state.SetItemsProcessed(delivered);
}
BENCHMARK(BM_PlayDensePieceOnVirtualClock)->Unit(benchmark::kMillisecond);

// What a loop's jump back to A costs before A's first note: the chase reads the piece from its
// start up to A. Dense (200 events a second) pieces of 1, 5 and 20 minutes, A near the end.
void BM_ChaseNearTheEndOfADensePiece(benchmark::State& state)
{
    const int seconds = static_cast<int>(state.range(0));
    const MidiFile piece = makeDensePiece(200, seconds);
    const int32_t atMs = (seconds - 1) * 1000;
    for (auto _ : state)
        benchmark::DoNotOptimize(chasePiece(piece, atMs));
}
BENCHMARK(BM_ChaseNearTheEndOfADensePiece)->Arg(60)->Arg(300)->Arg(1200)->Unit(benchmark::kMicrosecond);

// 1000 sleeps to absolute times 5 ms apart; lateness median / p99 / max in ms, like the timing log.
void printSleepFloor()
{
    using clock = std::chrono::steady_clock;
    std::vector<double> late;
    const auto start = clock::now();
    for (int i = 1; i <= 1000; ++i) {
        const auto due = start + std::chrono::milliseconds(5 * i);
        std::this_thread::sleep_until(due);
        late.push_back(std::chrono::duration<double, std::milli>(clock::now() - due).count());
    }
    std::sort(late.begin(), late.end());
    std::printf("%.3f %.3f %.3f\n", late[499], late[989], late[999]);
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc >= 3 && std::strcmp(argv[1], "--write-dense-piece") == 0) {
        const int perSecond = argc >= 4 ? std::atoi(argv[3]) : 200;
        const int seconds = argc >= 5 ? std::atoi(argv[4]) : 20;
        if (perSecond <= 0 || seconds <= 0 || perSecond > 100000 || seconds > 3600) {
            std::fputs("player_bench: events per second 1..100000, seconds 1..3600\n", stderr);
            return 2;
        }
        return makeDensePiece(perSecond, seconds).toFile(argv[2]) == 0 ? 0 : 1;
    }
    if (argc == 2 && std::strcmp(argv[1], "--sleep-floor") == 0) {
        printSleepFloor();
        return 0;
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
