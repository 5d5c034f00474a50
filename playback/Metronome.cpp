#include "playback/Metronome.h"

#include "midi/MidiBytes.h"
#include "playback/MidiOutPort.h"
#include "playback/mMidiMain.h"

#include <algorithm>

namespace tarabix {

namespace {

constexpr auto kClickChannel = static_cast<uint8_t>(kMidiPercussionChannel);

}  // namespace

void Metronome::setVolume(int32_t volume)
{
    m_volume = std::clamp(volume, 0, 127);
}

void Metronome::click(bool accent)
{
    release();
    if (m_volume == 0)
        return;
    const uint8_t note = accent ? kAccentNote : kBeatNote;
    midiOutShortMsg(packShortMessage(midistatus::kNoteOn | kClickChannel, note, static_cast<uint8_t>(m_volume)));
    m_sounding = note;
}

void Metronome::release()
{
    if (m_sounding)
        midiOutShortMsg(packShortMessage(midistatus::kNoteOff | kClickChannel, *m_sounding, 0));
    m_sounding.reset();
}

}  // namespace tarabix
