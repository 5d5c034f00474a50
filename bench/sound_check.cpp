// The pieces and the measurements of the sound scripts (bench/heard_timing.sh,
// bench/desktop_sound.sh):
//   sound_check write-clicks OUT.mid COUNT INTERVAL_MS   clicks on a wood block, the first at 1 s
//   sound_check write-probe OUT.mid SECONDS              C4 + 50 cents, E4 - 50 cents, G4 on a clarinet
//   sound_check write-quiet OUT.mid SECONDS              one note at the start and one at the end
//   sound_check onsets IN.wav INTERVAL_MS                click onsets against their best-fitting grid
//   sound_check onset-times IN.wav INTERVAL_MS           every click onset, ms from the first sample
//   sound_check probe IN.wav                             dropouts inside the notes and their pitch
// Only 16-bit PCM WAV files (FluidSynth's file driver, parec) are read.
#include "midi/EventList.h"
#include "midi/MidiBytes.h"
#include "midi/MidiFile.h"
#include "tests/playback/PitchEstimator.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <span>
#include <string>
#include <vector>

namespace {

using namespace tarabix;

constexpr int kFirstClickMs = 1000;
constexpr int kProbeNoteMs = 1500;
constexpr int kProbeGapMs = 100;

struct ProbeNote {
    int channel;
    int note;
    int cents;
};
constexpr ProbeNote kProbe[] = {{0, 60, 50}, {1, 64, -50}, {2, 67, 0}};

int writePiece(const char* path, const EventList& events)
{
    MidiFile piece;
    piece.setFromList(events.events());
    return piece.toFile(path) == 0 ? 0 : 1;
}

int writeClicks(const char* path, int count, int intervalMs)
{
    constexpr int kWoodBlock = 76;  // General MIDI drum kit, channel 10
    constexpr uint8_t kDrums = kMidiPercussionChannel;
    EventList events;
    for (int i = 0; i < count; ++i) {
        const int on = kFirstClickMs + i * intervalMs;
        events.channel(0, on, midistatus::kNoteOn | kDrums, kWoodBlock, 120);
        events.channel(0, on + intervalMs / 2, midistatus::kNoteOff | kDrums, kWoodBlock, 0);
    }
    return writePiece(path, events);
}

int writeProbe(const char* path, int seconds)
{
    // A steady tone whose fundamental is its strongest partial (an organ here sounds octaves below).
    constexpr int kClarinet = 71;
    EventList events;
    for (const ProbeNote& n : kProbe) {
        events.channel(0, 0, midistatus::kProgramChange + n.channel, kClarinet, 0);
        // The piece's wheel gives the channel its quarter tone before the note.
        events.pitchWheel(0, 0, static_cast<uint8_t>(n.channel), n.cents);
    }
    for (int t = 500, i = 0; t + kProbeNoteMs <= seconds * 1000; t += kProbeNoteMs + kProbeGapMs, ++i) {
        const ProbeNote& n = kProbe[i % 3];
        events.channel(0, t, midistatus::kNoteOn + n.channel, n.note, 100);
        events.channel(0, t + kProbeNoteMs, midistatus::kNoteOff + n.channel, n.note, 0);
    }
    return writePiece(path, events);
}

int writeQuiet(const char* path, int seconds)
{
    EventList events;
    events.channel(0, 500, midistatus::kNoteOn, 64, 100).channel(0, 1000, midistatus::kNoteOff, 64, 0);
    events.channel(0, seconds * 1000, midistatus::kNoteOn, 67, 100)
        .channel(0, seconds * 1000 + 500, midistatus::kNoteOff, 67, 0);
    return writePiece(path, events);
}

struct Wav {
    double rate = 0;
    std::vector<double> mono;  // channels summed, full scale 1 per channel
};

uint32_t le32(const unsigned char* p) { return p[0] | p[1] << 8 | p[2] << 16 | static_cast<uint32_t>(p[3]) << 24; }
uint16_t le16(const unsigned char* p) { return static_cast<uint16_t>(p[0] | p[1] << 8); }

bool readWav(const char* path, Wav& wav)
{
    std::ifstream in(path, std::ios::binary);
    const std::vector<unsigned char> bytes{std::istreambuf_iterator<char>(in), {}};
    if (bytes.size() < 12 || std::memcmp(bytes.data(), "RIFF", 4) != 0 || std::memcmp(&bytes[8], "WAVE", 4) != 0)
        return false;
    int channels = 0;
    int bits = 0;
    for (size_t pos = 12; pos + 8 <= bytes.size();) {
        const unsigned char* chunk = &bytes[pos];
        size_t size = le32(chunk + 4);
        if (std::memcmp(chunk, "fmt ", 4) == 0 && pos + 24 <= bytes.size()) {
            channels = le16(chunk + 10);
            wav.rate = le32(chunk + 12);
            bits = le16(chunk + 22);
        } else if (std::memcmp(chunk, "data", 4) == 0) {
            // A recorder stopped by a signal may leave the size unwritten: take what is there.
            size = std::min(size == 0 ? bytes.size() : size, bytes.size() - pos - 8);
            if (bits != 16 || channels < 1)
                return false;
            const size_t frames = size / (2 * channels);
            wav.mono.resize(frames);
            for (size_t f = 0; f < frames; ++f) {
                double sum = 0;
                for (int c = 0; c < channels; ++c)
                    sum += static_cast<int16_t>(le16(chunk + 8 + 2 * (f * channels + c))) / 32768.0;
                wav.mono[f] = sum;
            }
            return wav.rate > 0;
        }
        pos += 8 + size + (size & 1);
    }
    return false;
}

double percentile(std::vector<double> v, double p)
{
    if (v.empty())
        return NAN;
    std::sort(v.begin(), v.end());
    const size_t rank = static_cast<size_t>(std::ceil(p * v.size()));
    return v[std::clamp<size_t>(rank, 1, v.size()) - 1];
}

// An onset is the first sample above a third of the loudest one (the ring of a click stays well
// under it), at least half an interval after the last onset; deviations are against the grid
// whose phase is the median of all of them.
std::vector<double> findOnsets(const Wav& wav, int intervalMs)
{
    double peak = 0;
    for (double x : wav.mono)
        peak = std::max(peak, std::fabs(x));
    std::vector<double> times;
    if (peak == 0)
        return times;
    const double threshold = peak / 3;
    const auto deadFrames = static_cast<size_t>(wav.rate * intervalMs / 2000.0);
    for (size_t f = 0; f < wav.mono.size(); ++f) {
        if (std::fabs(wav.mono[f]) >= threshold) {
            times.push_back(f * 1000.0 / wav.rate);
            f += deadFrames;
        }
    }
    return times;
}

// Every onset, in ms from the file's first sample, one a line.
int onsetTimes(const Wav& wav, int intervalMs)
{
    for (double t : findOnsets(wav, intervalMs))
        std::printf("%.3f\n", t);
    return 0;
}

int onsets(const Wav& wav, int intervalMs)
{
    const std::vector<double> times = findOnsets(wav, intervalMs);
    if (times.empty()) {
        std::puts("no sound");
        return 1;
    }
    std::vector<double> phase;
    for (size_t i = 0; i < times.size(); ++i)
        phase.push_back(times[i] - static_cast<double>(i) * intervalMs);
    const double offset = percentile(phase, 0.5);
    std::vector<double> dev;
    for (double p : phase)
        dev.push_back(std::fabs(p - offset));
    std::printf("onsets %zu first_ms %.3f median_dev_ms %.3f p99_dev_ms %.3f max_dev_ms %.3f\n", times.size(),
                times.empty() ? 0.0 : times.front(), percentile(dev, 0.5), percentile(dev, 0.99), percentile(dev, 1.0));
    return 0;
}

// The notes are found by the probe's own schedule from the first sound on; a dropout is a
// millisecond that falls under a thousandth of the peak while the sound 5 ms before and after it
// is above a tenth: a gap inside a note, not its end.
int probe(const Wav& wav)
{
    double peak = 0;
    for (double x : wav.mono)
        peak = std::max(peak, std::fabs(x));
    if (peak < 0.01) {
        std::puts("no sound");
        return 1;
    }
    const auto frames = [&](double ms) { return static_cast<size_t>(wav.rate * ms / 1000); };
    std::vector<double> env(wav.mono.size() / frames(1));
    for (size_t w = 0; w < env.size(); ++w)
        for (size_t i = 0; i < frames(1); ++i)
            env[w] = std::max(env[w], std::fabs(wav.mono[w * frames(1) + i]));
    int dropouts = 0;
    for (size_t w = 5; w + 5 < env.size(); ++w)
        if (env[w] < peak / 1000 && env[w - 1] >= peak / 1000 && env[w - 5] > peak / 10)
            for (size_t after = w + 1; after < std::min(env.size(), w + 40); ++after)
                if (env[after] > peak / 10) {
                    ++dropouts;
                    break;
                }
    size_t first = 0;
    while (first < env.size() && env[first] < peak / 10)
        ++first;
    const double refs[3] = {261.6256 * std::pow(2, 50 / 1200.0), 329.6276 * std::pow(2, -50 / 1200.0), 391.9954};
    std::vector<double> centsOff[3];
    int notes = 0;
    for (size_t start = first; start + kProbeNoteMs < env.size(); start += kProbeNoteMs + kProbeGapMs, ++notes) {
        const std::span<const double> steady(wav.mono.data() + frames(start + kProbeNoteMs / 2.0), frames(200));
        const double hz = test::fundamentalHz(steady, wav.rate, 100, 1000);
        if (hz > 0)
            centsOff[notes % 3].push_back(1200 * std::log2(hz / refs[notes % 3]));
    }
    std::printf("notes %d dropouts %d", notes, dropouts);
    const char* names[3] = {"C4+50", "E4-50", "G4"};
    for (int k = 0; k < 3; ++k)
        std::printf(" %s_cents %+.2f", names[k], percentile(centsOff[k], 0.5));
    std::printf(" peak_dbfs %.1f\n", 20 * std::log10(peak));
    return 0;
}

}  // namespace

int main(int argc, char** argv)
{
    const std::string mode = argc >= 2 ? argv[1] : "";
    if (mode == "write-clicks" && argc == 5)
        return writeClicks(argv[2], std::clamp(std::atoi(argv[3]), 1, 100000), std::clamp(std::atoi(argv[4]), 10, 10000));
    if (mode == "write-probe" && argc == 4)
        return writeProbe(argv[2], std::clamp(std::atoi(argv[3]), 3, 3600));
    if (mode == "write-quiet" && argc == 4)
        return writeQuiet(argv[2], std::clamp(std::atoi(argv[3]), 3, 3600));
    if (((mode == "onsets" || mode == "onset-times") && argc == 4) || (mode == "probe" && argc == 3)) {
        Wav wav;
        if (!readWav(argv[2], wav)) {
            std::fprintf(stderr, "sound_check: %s is not a 16-bit PCM WAV file\n", argv[2]);
            return 1;
        }
        if (mode == "probe")
            return probe(wav);
        const int interval = std::clamp(std::atoi(argv[3]), 10, 10000);
        return mode == "onsets" ? onsets(wav, interval) : onsetTimes(wav, interval);
    }
    std::fputs("usage: sound_check write-clicks OUT.mid COUNT INTERVAL_MS | write-probe OUT.mid SECONDS\n"
               "                   | write-quiet OUT.mid SECONDS\n"
               "                   | onsets IN.wav INTERVAL_MS | onset-times IN.wav INTERVAL_MS | probe IN.wav\n",
               stderr);
    return 2;
}
