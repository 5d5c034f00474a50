// When the window shows a note's mark against when the note is heard (bench/mark_timing.sh).
//
//   mark_probe play OUT.wav MARKS.csv [WRITE_FRAMES]
//     Plays clicks through the built-in synthesizer in real time, its audio going to OUT.wav in
//     place of the sound card (FluidSynth's file driver, writing WRITE_FRAMES at a time: 64 as a
//     sound card takes them, 882 = 20 ms as PulseAudio's driver does at the default latency). The
//     clicks go through the window's own path: the player waiting in the Qt event loop, the
//     router, the due time, and DelayedMarks with the output's heard delay, whose showing of each
//     mark is noted. First come 16 reference clicks sent without a due time: a file has no clock
//     of ours, and they tie its samples to it.
//   mark_probe compare MARKS.csv ONSETS.txt
//     With the onsets of OUT.wav (sound_check onset-times OUT.wav 100), how far each mark was shown
//     from its click being heard.
#include "base/MonotonicClock.h"
#include "midi/MidiFile.h"
#include "playback/FluidSynthPort.h"
#include "playback/MidiPlayer.h"
#include "playback/PieceRouter.h"
#include "playback/mMidiMain.h"
#include "playback/qt/DelayedMarks.h"
#include "playback/qt/QtPlayerWait.h"

#include <QCoreApplication>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace {

using namespace tarabix;

constexpr int kWoodBlock = 76;  // General MIDI drum kit, channel 10
constexpr int kDrums = 9;
constexpr int kReferences = 16;
constexpr int kReferenceSpacingMs = 107;  // 7 ms past a multiple of any period of 10 or 20 ms
constexpr int kTies = 8;                  // groups apart by more than the sequencer's re-tie gap
constexpr int kClicksPerTie = 8;
constexpr int kIntervalMs = 100;

ListedEvent channelEvent(int ms, int status, int d1, int d2)
{
    ListedEvent e;
    e.absTick = ms;
    e.event.eType = MidiEvent::kChannelMessage;
    e.event.eData = std::string{static_cast<char>(status), static_cast<char>(d1), static_cast<char>(d2)};
    return e;
}

// Groups of clicks 2.5 s apart and a few ms more each time, so each group ties the synthesizer's
// clocks afresh at another place in its write burst.
MidiFile clicks()
{
    std::vector<ListedEvent> events;
    int t = 500;
    for (int g = 0; g < kTies; ++g) {
        for (int i = 0; i < kClicksPerTie; ++i, t += kIntervalMs) {
            events.push_back(channelEvent(t, 0x90 + kDrums, kWoodBlock, 120));
            events.push_back(channelEvent(t + kIntervalMs / 2, 0x80 + kDrums, kWoodBlock, 0));
        }
        t += 2500 + 7 * g;
    }
    MidiFile piece;
    piece.setFromList(events);
    return piece;
}

struct Shown {
    int tie;
    int32_t dueMs;
    int32_t delayMs;
    int64_t shownUs;
};

int play(const char* wavPath, const char* csvPath, int writeFrames)
{
    int argc = 1;
    char name[] = "mark_probe";
    char* argv[] = {name, nullptr};
    QCoreApplication app(argc, argv);

    FluidSynthPortOptions options;
    options.audioDrivers = {"file"};
    options.driverSettings = {{"audio.file.name", wavPath}, {"audio.file.type", "wav"}, {"audio.file.format", "s16"}};
    options.idleWatcher = false;  // a file takes everything; no pause
    options.fileWriteFrames = writeFrames;
    FluidSynthPort* port = nullptr;
    setMidiOutBackend({[] { return std::vector<std::string>{}; }, [&](int32_t) {
                           auto made = std::make_unique<FluidSynthPort>(options);
                           port = made.get();
                           return made;
                       }});
    if (reopenMidiOut() != kMidiOutOk || !port || !port->waitUntilReady(20000)) {
        std::fprintf(stderr, "mark_probe: no built-in synthesizer: %s\n", midiOutFailureReason().c_str());
        return 1;
    }

    MonotonicClock clock;
    QtPlayerWait wait;
    const PlayerClock playerClock = QtPlayerWait::playerClock(clock, wait);
    const auto waitUntilMs = [&](int32_t ms) {
        while (clock.millis() < ms)
            playerClock.wait(ms);
    };

    std::vector<int64_t> references;
    const int32_t firstReference = clock.millis() + 500;  // the audio's pace is watched meanwhile
    for (int i = 0; i < kReferences; ++i) {
        waitUntilMs(firstReference + i * kReferenceSpacingMs);
        references.push_back(clock.micros());
        midiNoteOn(kDrums, kWoodBlock, 0, 120);  // no due time: it sounds at the next block
        midiNoteOff(kDrums, kWoodBlock);
    }
    waitUntilMs(clock.millis() + 500);

    const MidiFile piece = clicks();
    MidiPlayer player(playerClock);
    PieceRouter router;
    router.setVolume(127);
    router.setChannelShown(kDrums, true);  // the clicks are this probe's notes
    std::vector<Shown> shown;
    std::deque<Shown> waiting;  // what is known of each mark until it is shown
    int32_t lastDue = 0;
    int tie = -1;
    DelayedMarks marks([&clock] { return clock.millis(); }, [&](const PieceMark&) {
        Shown s = waiting.front();
        waiting.pop_front();
        s.shownUs = clock.micros();
        shown.push_back(s);
    });
    router.markNote = [&](int ch, int note, int32_t cents) { marks.add(PieceMark::noteOn(ch, note, cents)); };
    player.chase = [&](int32_t fromMs) { router.startFrom(&piece, fromMs); };
    player.msg = [&](uint8_t status, uint8_t c1, uint8_t c2, int32_t) {
        const int32_t due = player.currentDueMs();
        const size_t before = marks.waiting();
        {
            const MidiOutDueTime dueTime(due);
            router.route(status, c1, c2);
        }
        if (tie < 0 || due - lastDue > 2000)
            ++tie;
        lastDue = due;
        const int32_t delay = midiOutHeardDelayMs();
        for (size_t added = marks.waiting() - before; added > 0; --added)
            waiting.push_back({tie, due, delay, 0});
        marks.release(due + delay);
    };
    player.resetPlayState();
    player.setTheMidi(&piece);
    player.play();
    waitUntilMs(clock.millis() + 1000);  // the last click is heard and its mark shown
    const std::string output = midiOutDescription();
    midiOutReset();
    closeMidiOut();
    resetMidiMainState();

    std::FILE* f = std::fopen(csvPath, "w");
    if (!f)
        return 1;
    std::fprintf(f, "# %s\n", output.c_str());
    std::fprintf(f, "burst,%.3f\n", (writeFrames > 0 ? writeFrames : 64) * 1000.0 / 44100.0);
    for (int64_t us : references)
        std::fprintf(f, "ref,%lld\n", static_cast<long long>(us));
    for (const Shown& s : shown)
        std::fprintf(f, "mark,%d,%d,%d,%lld\n", s.tie, s.dueMs, s.delayMs, static_cast<long long>(s.shownUs));
    return std::fclose(f) == 0 ? 0 : 1;
}

double median(std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    return v.empty() ? NAN : (v[(v.size() - 1) / 2] + v[v.size() / 2]) / 2;
}

// The p-th fraction of the sizes of v, and how many are over 10 ms.
double sizeAt(const std::vector<double>& v, double p)
{
    std::vector<double> sizes;
    for (double x : v)
        sizes.push_back(std::fabs(x));
    std::sort(sizes.begin(), sizes.end());
    const size_t rank = static_cast<size_t>(std::ceil(p * static_cast<double>(sizes.size())));
    return sizes.empty() ? NAN : sizes[std::clamp<size_t>(rank, 1, sizes.size()) - 1];
}

long over10(const std::vector<double>& v)
{
    return std::count_if(v.begin(), v.end(), [](double x) { return std::fabs(x) > 10.0; });
}

int compare(const char* csvPath, const char* onsetsPath)
{
    std::ifstream csv(csvPath);
    std::vector<double> references;
    std::vector<Shown> shown;
    std::string output;
    double burstMs = 0;
    for (std::string line; std::getline(csv, line);) {
        if (line.starts_with("# ")) {
            output = line.substr(2);
            continue;
        }
        std::replace(line.begin(), line.end(), ',', ' ');
        std::istringstream in(line);
        std::string kind;
        in >> kind;
        if (kind == "burst") {
            in >> burstMs;
        } else if (kind == "ref") {
            long long us = 0;
            in >> us;
            references.push_back(static_cast<double>(us) / 1000.0);
        } else if (kind == "mark") {
            Shown s{};
            long long us = 0;
            in >> s.tie >> s.dueMs >> s.delayMs >> us;
            s.shownUs = us;
            shown.push_back(s);
        }
    }
    std::ifstream onsetFile(onsetsPath);
    std::vector<double> onsets;
    for (double t = 0; onsetFile >> t;)
        onsets.push_back(t);
    if (onsets.size() != references.size() + shown.size()) {
        std::printf("%zu onsets for %zu references and %zu marks: cannot pair them\n", onsets.size(), references.size(),
                    shown.size());
        return 1;
    }
    // A reference sounds at the first sample not yet written when it was sent: up to a write
    // burst after the sample being heard then (more while the writing thread was late). Their
    // sending times fall evenly over the burst, so the file's first sample was heard half a
    // burst after the middle of (sent - onset). The clicks' rise to the onset threshold is the
    // same for all and falls out.
    std::vector<double> sentMinusOnset;
    for (size_t i = 0; i < references.size(); ++i)
        sentMinusOnset.push_back(references[i] - onsets[i]);
    const double fileStart = median(sentMinusOnset) + burstMs / 2;
    const auto [lowest, highest] = std::minmax_element(sentMinusOnset.begin(), sentMinusOnset.end());
    std::vector<double> misses;
    std::vector<double> atDelivery;
    std::vector<double> delays;
    std::vector<std::vector<double>> perTie(kTies);
    for (size_t k = 0; k < shown.size(); ++k) {
        const double heard = fileStart + onsets[references.size() + k];
        const double miss = static_cast<double>(shown[k].shownUs) / 1000.0 - heard;
        misses.push_back(miss);
        atDelivery.push_back(shown[k].dueMs - heard);
        delays.push_back(shown[k].delayMs);
        if (shown[k].tie >= 0 && shown[k].tie < kTies)
            perTie[static_cast<size_t>(shown[k].tie)].push_back(miss);
    }
    std::printf("output: %s\n", output.c_str());
    std::printf("references: sent minus onset spread over %.2f ms for a burst of %.2f ms\n", *highest - *lowest,
                burstMs);
    std::printf("marks shown minus heard, ms (negative: before the sound), %zu clicks in %d ties:\n", misses.size(),
                kTies);
    for (const auto& [what, v] : {std::pair{"delayed by the heard delay", &misses},
                                  std::pair{"at the due time, as before", &atDelivery}})
        std::printf("  %s: median %+.2f, |miss| p90 %.2f, largest %.2f, over 10 ms: %ld\n", what, median(*v),
                    sizeAt(*v, 0.9), sizeAt(*v, 1.0), over10(*v));
    std::printf("  heard delay used: median %.0f ms (from %.0f to %.0f)\n", median(delays),
                *std::min_element(delays.begin(), delays.end()), *std::max_element(delays.begin(), delays.end()));
    std::printf("  per tie, median miss:");
    for (const std::vector<double>& t : perTie)
        std::printf(" %+.1f", median(t));
    std::printf("\n");
    return 0;
}

}  // namespace

int main(int argc, char** argv)
{
    const std::string mode = argc >= 2 ? argv[1] : "";
    if (mode == "play" && (argc == 4 || argc == 5))
        return play(argv[2], argv[3], argc == 5 ? std::clamp(std::atoi(argv[4]), 64, 8192) : 0);
    if (mode == "compare" && argc == 4)
        return compare(argv[2], argv[3]);
    std::fputs("usage: mark_probe play OUT.wav MARKS.csv [WRITE_FRAMES] | compare MARKS.csv ONSETS.txt\n", stderr);
    return 2;
}
