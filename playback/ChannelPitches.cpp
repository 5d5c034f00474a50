#include "playback/ChannelPitches.h"

#include "playback/mMidiMain.h"

namespace tarabix {

std::optional<int32_t> ChannelPitches::shiftedNote(int32_t key, int32_t octaveShift)
{
    const int32_t note = octaveShift * 12 + key;
    if (note <= 0 || note >= 127)
        return std::nullopt;
    return note;
}

PitchStep ChannelPitches::apply(uint8_t status, uint8_t c1, uint8_t c2, int32_t octaveShift)
{
    const auto ch = static_cast<size_t>(statusChannel(status));
    const uint8_t kind = statusKind(status);
    const bool isNoteOn = kind == midistatus::kNoteOn && c2 != 0;
    const bool isNoteOff = kind == midistatus::kNoteOff || (kind == midistatus::kNoteOn && c2 == 0);
    if (isNoteOn || isNoteOff) {
        // Dropped whole, its count included: its note-off is dropped the same way.
        const std::optional<int32_t> note = shiftedNote(c1, octaveShift);
        if (!note)
            return {PitchStep::Kind::OffKeyboard};
        const PitchStep step{isNoteOn ? PitchStep::Kind::NoteOn : PitchStep::Kind::NoteOff, *note, m_cents[ch]};
        if (isNoteOn)
            ++m_sounding[ch];
        else if (m_sounding[ch] >= 1)
            --m_sounding[ch];
        return step;
    }
    if (kind == midistatus::kPitchWheel) {
        if (m_sounding[ch] == 0)
            m_cents[ch] = nearestQuarterTone(wheelToCents(wheelOf(c1, c2)));
        return {PitchStep::Kind::Wheel};
    }
    return {};
}

void ChannelPitches::reset()
{
    m_cents.fill(0);
    m_sounding.fill(0);
}

}  // namespace tarabix
