#include "playback/PieceRouter.h"

#include "base/Rounding.h"
#include "midi/MidiBytes.h"
#include "playback/MidiOutPort.h"
#include "playback/PieceChase.h"
#include "playback/mMidiMain.h"

namespace tarabix {

PieceRouter::PieceRouter()
{
    m_enabled.fill(true);
    m_shown.fill(true);
    // Channel 10 carries General MIDI percussion: a darbuka is heard, but its "notes" are drum
    // sounds, not places on the oud.
    m_shown[kMidiPercussionChannel] = false;
}

void PieceRouter::resetChannelState()
{
    m_cents.fill(0);
    m_sounding.fill(0);
    m_struck.fill(false);
}

void PieceRouter::startFrom(const MidiFile* piece, int32_t fromMs)
{
    for (int ch = 0; ch < kMidiChannels; ++ch) {
        if (m_struck[ch])
            silenceChannel(ch);
    }
    resetChannelState();
    if (!piece || fromMs <= 0)
        return;
    for (const ChannelMessage& m : chasePiece(*piece, fromMs).messages())
        route(m.status, m.c1, m.c2);
}

void PieceRouter::silenceChannel(int ch)
{
    const auto status = static_cast<uint8_t>(midistatus::kController + ch);
    midiOutShortMsg(packShortMessage(status, midicc::kSustain, 0));
    midiOutShortMsg(packShortMessage(status, midicc::kAllNotesOff, 0));
    m_sounding.at(ch) = 0;
    m_struck.at(ch) = false;
}

void PieceRouter::route(uint8_t status, uint8_t c1, uint8_t c2)
{
    const int ch = statusChannel(status);
    if (!m_enabled[ch])
        return;
    const uint8_t kind = statusKind(status);
    const bool isNoteOn = kind == midistatus::kNoteOn && c2 != 0;
    const bool isNoteOff = kind == midistatus::kNoteOff || (kind == midistatus::kNoteOn && c2 == 0);
    if (isNoteOn || isNoteOff) {
        // A shifted note off either end of the keyboard is dropped whole, its count included.
        const int note = m_midiOctShift * 12 + c1;
        if (note <= 0 || note >= 127)
            return;
        if (isNoteOn)
            noteOn(ch, note, c2);
        else
            noteOff(ch, note);
        return;
    }
    if (kind == midistatus::kPitchWheel) {
        // Bending a sounding note would slide it; a piece's wheel sets the quarter tone of the
        // channel's next notes instead.
        if (m_sounding[ch] == 0)
            m_cents[ch] = nearestQuarterTone(wheelToCents(wheelOf(c1, c2)));
        return;
    }
    midiOutShortMsg(packShortMessage(status, c1, c2));
}

void PieceRouter::noteOn(int ch, int note, uint8_t velocity)
{
    if (m_shown[ch] && markNote)
        markNote(ch, note, m_cents[ch]);
    midiNoteOn(ch, note, m_cents[ch], roundHalfEvenInt(static_cast<double>(m_volume) * velocity / 127.0));
    ++m_sounding[ch];
    m_struck[ch] = true;
}

void PieceRouter::noteOff(int ch, int note)
{
    if (m_shown[ch] && unmarkNote)
        unmarkNote(ch, note, m_cents[ch]);
    midiNoteOff(ch, note);
    if (m_sounding[ch] >= 1)
        --m_sounding[ch];
}

}  // namespace tarabix
