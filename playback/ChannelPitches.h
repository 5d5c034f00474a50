#pragma once

#include "midi/MidiBytes.h"

#include <array>
#include <cstdint>
#include <optional>

namespace tarabix {

// What one of a piece's channel messages does on its way out, as far as pitch goes.
struct PitchStep {
    enum class Kind : uint8_t {
        Other,        // not a note or a wheel: it passes unchanged
        NoteOn,       // note and cents: what sounds
        NoteOff,      // note and cents: what stops
        OffKeyboard,  // a note the octave shift takes off the keyboard: dropped whole
        Wheel,        // taken into the channel's cents (or ignored while a note sounds): never sent
    };
    Kind kind = Kind::Other;
    int32_t note = 0;   // the key moved by the octave shift
    int32_t cents = 0;  // the channel's shift the note sounds (or sounded) with
};

// The pitch rules of a piece's notes, per channel: notes are moved by the MIDI octave shift and
// dropped when that takes them off the keyboard; a pitch wheel becomes the channel's shift in
// cents, a quarter tone at a time, only while no note sounds on the channel (bending a sounding
// note would slide it), and the next note-on carries it. The router plays by these rules and the
// look-ahead foretells with them, so both agree on the quarter tone of every note.
class ChannelPitches {
public:
    // The note a piece's key sounds as after the octave shift; empty off either end of the
    // keyboard (0 and 127 count as off).
    static std::optional<int32_t> shiftedNote(int32_t key, int32_t octaveShift);

    // Takes one channel message into the channel's state and says what it does.
    PitchStep apply(uint8_t status, uint8_t c1, uint8_t c2, int32_t octaveShift);

    // No channel shifted, nothing sounding.
    void reset();
    // The channel's notes were cut at once: none sounds any more.
    void silence(int ch) { m_sounding.at(static_cast<size_t>(ch)) = 0; }

    int32_t cents(int ch) const { return m_cents.at(static_cast<size_t>(ch)); }
    void setCents(int ch, int32_t cents) { m_cents.at(static_cast<size_t>(ch)) = cents; }
    int32_t sounding(int ch) const { return m_sounding.at(static_cast<size_t>(ch)); }

private:
    std::array<int32_t, kMidiChannels> m_cents{};
    std::array<int32_t, kMidiChannels> m_sounding{};
};

}  // namespace tarabix
