#pragma once

#include <cstdint>
#include <vector>

namespace tarabix {

class MidiFile;

// The beat at a moment of a piece: its length in milliseconds at normal speed and how many beats
// make a bar (a bar that does not divide evenly counts its shorter last beat).
struct BeatAt {
    int32_t beatMs = 500;
    int32_t beatsPerBar = 4;
    bool operator==(const BeatAt&) const = default;
};

struct BeatTime {
    int32_t ms = 0;  // piece time
    bool downbeat = false;
    bool operator==(const BeatTime&) const = default;
};

// Where a piece's beats fall, for the count-in and the metronome. A beat is the time signature's
// (FF 58) metronome click, its third data byte in MIDI clocks (24 = a quarter note), so 6/8 with
// a click of 36 counts two dotted quarters a bar; each signature starts a bar where it stands.
// Until the first signature the piece is in 4/4 with a quarter-note click, and until the first
// tempo event (FF 51) at 120 quarter notes a minute. Beats are timed by the same tempo map as the
// piece's events. A piece timed in SMPTE frames ignores its tempo events, and so do its beats: a
// quarter note is 500 ms throughout.
class BeatGrid {
public:
    BeatGrid();  // no piece: 4/4, 500 ms beats from 0
    explicit BeatGrid(const MidiFile& piece);

    BeatAt beatAt(int32_t pieceMs) const;

    // Every beat at or after fromMs and before untilMs, in order, none after the piece's last event.
    std::vector<BeatTime> beats(int32_t fromMs, int32_t untilMs) const;

private:
    // Positions are in grid units: ticks, or milliseconds in a piece timed without a tempo map.
    struct Metre {
        double start;
        double bar;
        double beat;
    };
    struct Tempo {
        double start;
        int32_t startMs;
        double msPerQuarter;
    };

    int32_t msAt(double unit) const;
    double unitAt(int32_t ms) const;
    const Tempo& tempoAt(double unit) const;

    int32_t m_unitsPerQuarter;
    double m_lastUnit;
    std::vector<Metre> m_metres;  // by start, the first at 0
    std::vector<Tempo> m_tempi;   // by start, the first at 0
};

}  // namespace tarabix
