#include "midi/BeatGrid.h"

#include "base/Rounding.h"
#include "midi/MidiBytes.h"
#include "midi/MidiFile.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace tarabix {

namespace {

constexpr double kClocksPerQuarter = 24.0;
constexpr double kDefaultMsPerQuarter = MidiFile::kDefaultTempo / 1000.0;
// A beat that ends within this share of its bar's end is the bar's end, not one more beat.
constexpr double kBarEndSlack = 1e-9;

// The index of the last entry starting at or before unit; the first starts at 0.
template <class T>
size_t lastStartingBy(const std::vector<T>& list, double unit)
{
    const auto after = std::upper_bound(list.begin(), list.end(), unit, [](double u, const T& t) { return u < t.start; });
    return static_cast<size_t>(std::max<ptrdiff_t>(after - list.begin() - 1, 0));
}

}  // namespace

BeatGrid::BeatGrid()
    : m_unitsPerQuarter(static_cast<int32_t>(kDefaultMsPerQuarter)),
      m_lastUnit(std::numeric_limits<double>::infinity()),
      m_metres{{0.0, 4.0 * m_unitsPerQuarter, 1.0 * m_unitsPerQuarter}},
      m_tempi{{0.0, 0, kDefaultMsPerQuarter}}
{
}

BeatGrid::BeatGrid(const MidiFile& piece) : BeatGrid()
{
    const int32_t division = piece.midiHdrDivision();
    // Without ticks per quarter note (SMPTE frames, or a division of 0) units are milliseconds and
    // the default tempo makes a quarter 500 of them, so msAt is the identity.
    const bool ticks = division > 0;
    if (ticks) {
        m_unitsPerQuarter = division;
        m_metres = {{0.0, 4.0 * m_unitsPerQuarter, 1.0 * m_unitsPerQuarter}};
    }
    struct Found {
        double unit;
        const MidiEvent* event;
    };
    std::vector<Found> found;
    m_lastUnit = 0;
    for (int32_t t = 0; t < piece.numOfTracks(); ++t) {
        for (const MidiEvent& e : piece.tracks(t)->events()) {
            const double unit = ticks ? e.absTick : e.absMS;
            m_lastUnit = std::max(m_lastUnit, unit);
            if (e.isMeta(midimeta::kTimeSignature) || (ticks && e.isMeta(midimeta::kTempo)))
                found.push_back({unit, &e});
        }
    }
    // By position; on equal positions the higher track comes later and wins, as in the stamping.
    std::stable_sort(found.begin(), found.end(), [](const Found& a, const Found& b) { return a.unit < b.unit; });
    for (const auto& [unit, e] : found) {
        if (e->isMeta(midimeta::kTempo)) {
            m_tempi.push_back({unit, e->absMS, MidiFile::msPerQuarterOf(*e)});
            continue;
        }
        // FF 58: numerator, the denominator's power of two, MIDI clocks per click. A signature that
        // cannot make a bar is passed over.
        if (e->eData.size() < 4)
            continue;
        const int numerator = static_cast<uint8_t>(e->eData[1]);
        const int power = static_cast<uint8_t>(e->eData[2]);
        const int clocks = static_cast<uint8_t>(e->eData[3]);
        if (numerator == 0 || power > 6 || clocks == 0)
            continue;
        m_metres.push_back({unit, numerator * 4.0 / (1 << power) * m_unitsPerQuarter,
                            clocks / kClocksPerQuarter * m_unitsPerQuarter});
    }
}

const BeatGrid::Tempo& BeatGrid::tempoAt(double unit) const
{
    return m_tempi[lastStartingBy(m_tempi, unit)];
}

int32_t BeatGrid::msAt(double unit) const
{
    const Tempo& t = tempoAt(unit);
    return roundHalfEvenInt(MidiFile::msAfterTempo(t.startMs, unit - t.start, t.msPerQuarter, m_unitsPerQuarter));
}

double BeatGrid::unitAt(int32_t ms) const
{
    auto after = std::upper_bound(m_tempi.begin(), m_tempi.end(), ms, [](int32_t m, const Tempo& t) { return m < t.startMs; });
    const Tempo& t = *std::prev(after);
    if (t.msPerQuarter <= 0.0)
        return t.start;
    return t.start + (ms - t.startMs) * m_unitsPerQuarter / t.msPerQuarter;
}

BeatAt BeatGrid::beatAt(int32_t pieceMs) const
{
    const double unit = unitAt(pieceMs);
    const Metre& m = m_metres[lastStartingBy(m_metres, unit)];
    return {roundHalfEvenInt(MidiFile::msAfterTempo(0, m.beat, tempoAt(unit).msPerQuarter, m_unitsPerQuarter)),
            static_cast<int32_t>(std::ceil(m.bar / m.beat - kBarEndSlack))};
}

std::vector<BeatTime> BeatGrid::beats(int32_t fromMs, int32_t untilMs) const
{
    std::vector<BeatTime> out;
    if (untilMs <= fromMs)
        return out;
    const double fromUnit = unitAt(fromMs);
    for (size_t i = lastStartingBy(m_metres, fromUnit); i < m_metres.size(); ++i) {
        const Metre& m = m_metres[i];
        const double end = i + 1 < m_metres.size() ? m_metres[i + 1].start : std::numeric_limits<double>::infinity();
        // From a bar before the one fromMs lies in, against rounding; nothing before the metre.
        const double firstBar = std::max(0.0, std::floor((fromUnit - m.start) / m.bar) - 1);
        for (double bar = firstBar; m.start + bar * m.bar < end; ++bar) {
            const double barStart = m.start + bar * m.bar;
            for (int k = 0; k * m.beat < m.bar * (1 - kBarEndSlack); ++k) {
                const double unit = barStart + k * m.beat;
                if (unit >= end)
                    break;
                if (unit > m_lastUnit)
                    return out;
                const int32_t ms = msAt(unit);
                if (ms >= untilMs)
                    return out;
                if (ms >= fromMs)
                    out.push_back({ms, k == 0});
            }
        }
    }
    return out;
}

}  // namespace tarabix
