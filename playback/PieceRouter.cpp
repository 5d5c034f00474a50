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
    m_pitches.reset();
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
    m_pitches.silence(ch);
    m_struck.at(ch) = false;
}

void PieceRouter::route(uint8_t status, uint8_t c1, uint8_t c2)
{
    const int ch = statusChannel(status);
    if (!m_enabled[ch])
        return;
    const PitchStep step = m_pitches.apply(status, c1, c2, m_midiOctShift);
    switch (step.kind) {
    case PitchStep::Kind::NoteOn:
        if (m_shown[ch] && markNote)
            markNote(ch, step.note, step.cents);
        midiNoteOn(ch, step.note, step.cents, roundHalfEvenInt(static_cast<double>(m_volume) * c2 / 127.0));
        m_struck[ch] = true;
        return;
    case PitchStep::Kind::NoteOff:
        if (m_shown[ch] && unmarkNote)
            unmarkNote(ch, step.note, step.cents);
        midiNoteOff(ch, step.note);
        return;
    case PitchStep::Kind::Other:
        midiOutShortMsg(packShortMessage(status, c1, c2));
        return;
    case PitchStep::Kind::OffKeyboard:
    case PitchStep::Kind::Wheel:
        return;
    }
}

}  // namespace tarabix
