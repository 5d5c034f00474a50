#pragma once

#include <cstdint>
#include <optional>

namespace tarabix {

// The practice room's click: a wood block on the General MIDI percussion channel (10), high for
// an accent or a downbeat, low for the other beats, sent through the output layer like a piece's
// notes, so the owner stamps it with the click's due time (MidiOutDueTime). A click's note-off goes
// out just before the next click. It takes no pitch shift: the quarter tones are the oud's.
class Metronome {
public:
    static constexpr uint8_t kAccentNote = 76;  // hi wood block
    static constexpr uint8_t kBeatNote = 77;    // low wood block
    static constexpr int32_t kDefaultVolume = 100;

    // A velocity 0..127 (held inside it); 0 is silent.
    int32_t volume() const { return m_volume; }
    void setVolume(int32_t volume);

    void click(bool accent);
    // Ends the last click (a stop, the end of a count-in).
    void release();

private:
    int32_t m_volume = kDefaultVolume;
    std::optional<uint8_t> m_sounding;
};

}  // namespace tarabix
