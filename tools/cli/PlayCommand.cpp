#include "tools/cli/Commands.h"
#include "tools/cli/PieceFile.h"

#include "base/MonotonicClock.h"
#include "midi/MidiError.h"
#include "midi/MidiFile.h"
#include "playback/AudioDriverSettings.h"
#include "playback/Metronome.h"
#include "playback/MidiPlayer.h"
#include "playback/PieceRouter.h"
#include "playback/SoundFontLocator.h"
#include "playback/SystemMidiOut.h"
#include "playback/mMidiMain.h"
#include "playback/qt/QtPlayerWait.h"

#include <QCoreApplication>

#include <cstdio>
#include <memory>
#include <thread>
#include <vector>

namespace tarabix::cli {

namespace {

int usage()
{
    std::fputs("usage: tarabix-cli play FILE [--device ID|null] [--speed R] [--from SECONDS] [--timing-log CSV]\n"
               "                       [--precise-timer | --busy-wait] [--soundfont FILE] [--latency MS]\n"
               "                       [--audio-out OUT.wav]\n"
               "                       [--loop A:B --passes N] [--ramp FROM:STEP] [--count-in BEATS]\n"
               "  --loop A:B      play the passage from A to B seconds N times (N >= 1), keeping time\n"
               "  --ramp FROM:STEP  pass k at min(100, FROM + k * STEP) % of --speed\n"
               "  --count-in BEATS  that many clicks before playing and before every pass\n",
               stderr);
    return 2;
}

// "--device null": the piece is played in full time, its output thrown away.
class DiscardPort final : public MidiOutPort {
public:
    int32_t open() override { return kMidiOutOk; }
    int32_t close() override { return kMidiOutOk; }
    void send(uint32_t) override {}
};

struct TimingRecord {
    int32_t absMS;
    int32_t dueMs;
    int64_t sentUs;
};

bool writeTimingLog(const std::string& path, const std::vector<TimingRecord>& records)
{
    std::FILE* f = std::fopen(path.c_str(), "w");
    if (!f)
        return false;
    std::fputs("absMS,due_ms,sent_ms\n", f);
    for (const TimingRecord& r : records)
        std::fprintf(f, "%d,%d.000,%lld.%03lld\n", r.absMS, r.dueMs, static_cast<long long>(r.sentUs / 1000),
                     static_cast<long long>(r.sentUs % 1000));
    return std::fclose(f) == 0;
}

// "A:B" as two numbers parsed by `part`.
std::optional<std::pair<int32_t, int32_t>> parsePair(const std::string& text,
                                                     std::optional<int32_t> (*part)(const std::string&))
{
    const size_t colon = text.find(':');
    if (colon == std::string::npos)
        return std::nullopt;
    const auto first = part(text.substr(0, colon));
    const auto second = part(text.substr(colon + 1));
    if (!first || !second)
        return std::nullopt;
    return std::pair{*first, *second};
}

// Events of the piece a plan plays, once per pass, so the timing log never grows while playing.
size_t eventsToPlay(const MidiFile& piece, const PracticePlan& plan)
{
    size_t events = 0;
    for (int32_t t = 0; t < piece.numOfTracks(); ++t) {
        for (const MidiEvent& e : piece.tracks(t)->events())
            events += !plan.loop || (e.absMS >= plan.loop->fromMs && e.absMS < plan.loop->toMs);
    }
    return plan.loop ? events * static_cast<size_t>(plan.passes) : events;
}

}  // namespace

// Plays the piece in real time through the output layer, waiting in a Qt event loop exactly as
// the window does; the timing log tells how late each event reached the device.
int play(const Args& args)
{
    std::string input;
    std::string timingLogPath;
    std::string device;
    std::string audioOut;
    double speed = 1.0;
    int32_t fromMs = 0;
    PracticePlan plan;
    QtPlayerWait::Strategy strategy = QtPlayerWait::bestStrategy();
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        const bool hasValue = i + 1 < args.size();
        if (a == "--device" && hasValue) {
            device = args[++i];
            if (device != "null" && !parseInt(device))
                return usage();
        } else if (a == "--speed" && hasValue) {
            const auto value = parseNumber(args[++i]);
            if (!value || !(*value > 0.0 && *value <= 100.0))
                return usage();
            speed = *value;
        } else if (a == "--from" && hasValue) {
            const auto value = parseSecondsAsMs(args[++i]);
            if (!value)
                return usage();
            fromMs = *value;
        } else if (a == "--loop" && hasValue) {
            const auto range = parsePair(args[++i], parseSecondsAsMs);
            if (!range)
                return usage();
            plan.loop = LoopRange{range->first, range->second};
        } else if (a == "--passes" && hasValue) {
            const auto value = parseInt(args[++i]);
            if (!value || *value < 1)
                return usage();
            plan.passes = *value;
        } else if (a == "--ramp" && hasValue) {
            const auto ramp = parsePair(args[++i], parseInt);
            if (!ramp)
                return usage();
            plan.ramp = TempoRamp{ramp->first, ramp->second, 100};
        } else if (a == "--count-in" && hasValue) {
            const auto value = parseInt(args[++i]);
            if (!value)
                return usage();
            plan.countInBeats = *value;
        } else if (a == "--soundfont" && hasValue) {
            setSoundFontOverride(args[++i]);
        } else if (a == "--latency" && hasValue) {
            const auto value = parseInt(args[++i]);
            if (!value || *value < kMinSynthLatencyMs || *value > kMaxSynthLatencyMs)
                return usage();
            setBuiltInSynthLatencyMs(*value);
        } else if (a == "--audio-out" && hasValue) {
            audioOut = args[++i];
        } else if (a == "--timing-log" && hasValue) {
            timingLogPath = args[++i];
        } else if (a == "--busy-wait") {
            strategy = QtPlayerWait::Strategy::BusyPoll;
        } else if (a == "--precise-timer") {
            strategy = QtPlayerWait::Strategy::PreciseTimer;
        } else if (input.empty() && !a.starts_with("-")) {
            input = a;
        } else {
            return usage();
        }
    }
    // A loop plays a counted number of passes: the command line has no stop button.
    if (input.empty() || (!audioOut.empty() && !device.empty()) || plan.loop.has_value() != (plan.passes > 0))
        return usage();

    MidiFile piece;
    std::string error;
    if (!loadPiece(input, piece, error)) {
        std::fprintf(stderr, "tarabix-cli play: %s\n", error.c_str());
        return 1;
    }
    if (const auto problem = practicePlanProblem(plan, piece.allLastAbsMSec())) {
        std::fprintf(stderr, "tarabix-cli play: %s\n", problem->c_str());
        return 2;
    }

    int argc = 1;
    char name[] = "tarabix-cli";
    char* argv[] = {name, nullptr};
    QCoreApplication app(argc, argv);

    if (device == "null") {
        setMidiOutBackend({[] { return std::vector<std::string>{}; },
                           [](int32_t) { return std::make_unique<DiscardPort>(); }});
    } else if (!device.empty()) {
        setMidiDeviceId(*parseInt(device));
    } else if (!audioOut.empty()) {
        // The built-in synthesizer in real time, its sound going to the file in place of the
        // sound card: the same driver path and timing as a listener hears.
        setBuiltInSynthAudioFile(audioOut);
    }
    if (reopenMidiOut() != kMidiOutOk)
        std::fprintf(stderr, "tarabix-cli play: no sound from MIDI output %d (%s); playing on silently\n",
                     getMidiDeviceId(), midiOutFailureReason().c_str());
    // A SoundFont passed over at the open is known now; one refused by the full load, later.
    std::string notice = midiOutNotice();
    if (!notice.empty())
        std::fprintf(stderr, "tarabix-cli play: %s\n", notice.c_str());

    MonotonicClock clock;
    QtPlayerWait wait(strategy);
    MidiPlayer player(QtPlayerWait::playerClock(clock, wait));
    PieceRouter router;
    Metronome metronome;
    // A jump's cut and chase sound when the end of the pass is due, like the events around them.
    player.chase = [&](int32_t startMs) {
        const MidiOutDueTime due(player.currentDueMs());
        router.startFrom(&piece, startMs);
    };
    player.countInBeat = [&](int32_t, bool accent) {
        const MidiOutDueTime due(player.currentDueMs());
        metronome.click(accent);
    };
    if (plan.loop || plan.ramp) {
        player.passStarted = [&](int32_t pass, float speedRatio) {
            std::printf("pass %d of %d at speed %.3g\n", pass + 1, plan.loop ? plan.passes : 1, speedRatio);
            std::fflush(stdout);
        };
    }
    std::vector<TimingRecord> timing;
    player.msg = [&](uint8_t status, uint8_t c1, uint8_t c2, int32_t absMSec) {
        const MidiOutDueTime due(player.currentDueMs());
        router.route(status, c1, c2);
        if (!timingLogPath.empty())
            timing.push_back({absMSec, player.currentDueMs(), clock.micros()});
    };
    player.resetPlayState();
    player.setPlaySpeedRatio(static_cast<float>(speed));
    player.setTheMidi(&piece);
    player.setStartOffsetMSecMidi(fromMs);
    player.setPractice(plan);
    if (!timingLogPath.empty())
        timing.reserve(eventsToPlay(piece, plan));  // no allocation while playing

    int exitCode = 0;
    try {
        player.play();
    } catch (const MidiError& e) {
        std::fprintf(stderr, "tarabix-cli play: cannot time the piece: %s (error %d)\n", e.description().c_str(),
                     e.number());
        exitCode = 1;
    }
    if (const std::string later = midiOutNotice(); later != notice && !later.empty())
        std::fprintf(stderr, "tarabix-cli play: %s\n", later.c_str());
    const std::string output = midiOutDescription();
    if (output.ends_with(", stopped"))
        std::fprintf(stderr, "tarabix-cli play: the sound output stopped during the piece (%s); played on silently\n",
                     output.c_str());
    // The last notes are still waiting for their sample or ringing: let the file have them.
    if (!audioOut.empty())
        std::this_thread::sleep_for(std::chrono::milliseconds(1000));
    midiOutReset();
    closeMidiOut();
    resetMidiMainState();
    setBuiltInSynthAudioFile({});

    if (!timingLogPath.empty() && !writeTimingLog(timingLogPath, timing)) {
        std::fprintf(stderr, "tarabix-cli play: cannot write %s\n", timingLogPath.c_str());
        return 1;
    }
    return exitCode;
}

}  // namespace tarabix::cli
