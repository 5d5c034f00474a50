#pragma once

#include <array>
#include <cstdint>
#include <utility>
#include <vector>

namespace tarabix {

class MidiFile;

struct ChannelMessage {
    uint8_t status = 0;
    uint8_t c1 = 0;
    uint8_t c2 = 0;
    bool operator==(const ChannelMessage&) const = default;
};

// A registered (pitch-bend range, tuning...) or non-registered parameter and the data the piece
// last entered for it.
struct ParameterChase {
    bool registered = true;
    uint8_t msb = 0;
    uint8_t lsb = 0;
    int16_t dataMsb = -1;  // -1: not entered
    int16_t dataLsb = -1;
};

// How one channel stands at a moment of the piece, from the channel messages before it.
struct ChannelChase {
    static constexpr int16_t kNone = -1;

    int16_t program = kNone;      // the last program change before the moment
    int32_t wheel = kNone;        // the last pitch-wheel value (0..16383) before the moment
    bool programLater = false;    // no program change before, one later
    bool wheelLater = false;      // no pitch wheel before, one later
    // Parameters given data before the moment, in the order they were first selected.
    std::vector<ParameterChase> parameters;
    // Other controllers set before the moment with their last value, in the order of those last
    // changes; the parameter selection among them is the one the piece left.
    std::vector<std::pair<uint8_t, uint8_t>> controllers;
    // Controllers the piece sets only later: they go back to where a device starts.
    std::vector<uint8_t> controllersLater;
    // Pedals that hold notes (sustain, sostenuto, hold) the piece uses on the channel.
    std::vector<uint8_t> pedals;
};

struct PieceChase {
    std::array<ChannelChase, 16> channels;

    // The messages that bring a device from any state to this one, channel by channel: the
    // controllers the piece only sets later back to their start values, each parameter selected
    // and given its data, the chased controllers (bank select before the program change it
    // applies to), the pedals released, the program, the pitch wheel.
    std::vector<ChannelMessage> messages() const;
};

// The state every channel of the piece has at atMs: what the events before atMs left it in,
// read in playing order. Pedals are never chased down: a jump lands with them released.
PieceChase chasePiece(const MidiFile& piece, int32_t atMs);

}  // namespace tarabix
