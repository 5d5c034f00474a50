#include "playback/PieceRouter.h"

#include "base/Rounding.h"
#include "playback/MidiOutPort.h"
#include "playback/PieceChase.h"
#include "playback/mMidiMain.h"

namespace tarabix {

namespace {

constexpr uint8_t kNoteOff = 0x80;
constexpr uint8_t kNoteOn = 0x90;
constexpr uint8_t kPitchWheel = 0xE0;

}  // namespace

PieceRouter::PieceRouter()
{
    m_enabled.fill(true);
    m_shown.fill(true);
    // Channel 10 carries General MIDI percussion: a darbuka is heard, but its "notes" are drum
    // sounds, not places on the oud.
    m_shown[kPercussionChannel] = false;
}

void PieceRouter::resetChannelState()
{
    m_cents.fill(0);
    m_sounding.fill(0);
}

void PieceRouter::startFrom(const MidiFile* piece, int32_t fromMs)
{
    resetChannelState();
    if (!piece || fromMs <= 0)
        return;
    for (const ChannelMessage& m : chasePiece(*piece, fromMs).messages())
        route(m.status, m.c1, m.c2);
}

void PieceRouter::silenceChannel(int ch)
{
    constexpr uint8_t kSustain = 64;
    constexpr uint8_t kAllNotesOff = 123;
    midiOutShortMsg(packShortMessage(static_cast<uint8_t>(0xB0 + ch), kSustain, 0));
    midiOutShortMsg(packShortMessage(static_cast<uint8_t>(0xB0 + ch), kAllNotesOff, 0));
    m_sounding.at(ch) = 0;
}

void PieceRouter::route(uint8_t status, uint8_t c1, uint8_t c2)
{
    const int ch = status & 0x0F;
    if (!m_enabled[ch])
        return;
    const uint8_t kind = status & 0xF0;
    const bool isNoteOn = kind == kNoteOn && c2 != 0;
    const bool isNoteOff = kind == kNoteOff || (kind == kNoteOn && c2 == 0);
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
    if (kind == kPitchWheel) {
        // Bending a sounding note would slide it; a piece's wheel sets the quarter tone of the
        // channel's next notes instead.
        if (m_sounding[ch] == 0)
            m_cents[ch] = bendToCents(c2 * 128 + c1, true);
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
