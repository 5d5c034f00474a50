#pragma once

#include "midi/MidiBytes.h"
#include "playback/ChannelPitches.h"

#include <array>
#include <cstdint>
#include <functional>

namespace tarabix {

class MidiFile;

// Turns a piece's due channel messages into output, the same way for the window, the command
// line's player and the offline renderer: muted channels are dropped, notes are moved by the
// MIDI octave shift (and dropped when that takes them off the keyboard), note-on velocities
// follow the volume, and a piece's pitch wheel becomes the channel's shift in cents, a quarter
// tone at a time, while no note sounds on the channel; the next note-on carries it to the device.
// The pitch rules are ChannelPitches', which the look-ahead (NextNotes) foretells with too.
// Everything goes out through the output layer (mMidiMain).
class PieceRouter {
public:
    // Where the window's volume control starts, and the volume of a render that names none: the
    // synthesizer's gain is set so that the sample pieces peak a few dB under full scale here.
    static constexpr int32_t kDefaultVolume = 100;

    // Drawing the fingerboard is the window's business: it hears of every note-on and note-off of
    // a shown channel, with the shifted note and the channel's shift, just before the device does.
    std::function<void(int ch, int note, int32_t cents)> markNote;
    std::function<void(int ch, int note, int32_t cents)> unmarkNote;

    // All channels enabled, all but the percussion channel shown, no shifts, nothing sounding,
    // the starting volume (kDefaultVolume), octave shift 0.
    PieceRouter();

    void route(uint8_t status, uint8_t c1, uint8_t c2);

    // What playing starts from: no channel shifted, nothing sounding.
    void resetChannelState();

    // Every start of the player (its chase): nothing sounds any more, and past the very beginning
    // the channels get the piece's programs, controllers and pitch wheels (hence their cents) as
    // they stand at fromMs, through the same rules as the piece's own messages. Channels that
    // struck a note since the last start are cut first (silenceChannel), so a loop's jump leaves
    // nothing of its last pass ringing, pedalled notes included. A first start at 0 sends
    // nothing: the piece sets its channels up itself.
    void startFrom(const MidiFile* piece, int32_t fromMs);

    // Cuts every note of one channel at once (sustain off, all notes off) and forgets them, so a
    // channel muted while it sounds falls silent and follows the piece's pitch wheel again.
    void silenceChannel(int ch);

    bool channelEnabled(int ch) const { return m_enabled.at(ch); }
    void setChannelEnabled(int ch, bool on) { m_enabled.at(ch) = on; }
    bool channelShown(int ch) const { return m_shown.at(ch); }
    void setChannelShown(int ch, bool on) { m_shown.at(ch) = on; }
    // The shift every later note-on of the channel is played with (a maqam sets it too).
    int32_t channelCents(int ch) const { return m_pitches.cents(ch); }
    void setChannelCents(int ch, int32_t cents) { m_pitches.setCents(ch, cents); }
    int32_t soundingNotes(int ch) const { return m_pitches.sounding(ch); }
    // Every channel's shift and sounding notes as the messages routed so far left them.
    const ChannelPitches& pitches() const { return m_pitches; }

    int32_t volume() const { return m_volume; }
    void setVolume(int32_t volume) { m_volume = volume; }
    int32_t midiOctShift() const { return m_midiOctShift; }
    void setMidiOctShift(int32_t octaves) { m_midiOctShift = octaves; }

private:
    std::array<bool, kMidiChannels> m_enabled{};
    std::array<bool, kMidiChannels> m_shown{};
    ChannelPitches m_pitches;
    std::array<bool, kMidiChannels> m_struck{};  // a note-on since the last start or cut
    int32_t m_volume = kDefaultVolume;
    int32_t m_midiOctShift = 0;
};

}  // namespace tarabix
