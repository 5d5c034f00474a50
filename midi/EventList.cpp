#include "midi/EventList.h"

#include "midi/MidiBytes.h"

#include <utility>

namespace tarabix {

EventList& EventList::channel(int32_t track, int32_t tick, uint8_t status, uint8_t data1, uint8_t data2)
{
    return add(track, tick, MidiEvent::kChannelMessage,
               {static_cast<char>(status), static_cast<char>(data1), static_cast<char>(data2)});
}

EventList& EventList::meta(int32_t track, int32_t tick, uint8_t metaType, std::string_view data)
{
    std::string bytes(1, static_cast<char>(metaType));
    bytes.append(data);
    return add(track, tick, MidiEvent::kMeta, std::move(bytes));
}

EventList& EventList::sysEx(int32_t track, int32_t tick, std::string_view dataFromF0)
{
    return add(track, tick, MidiEvent::kSysEx, std::string(dataFromF0));
}

EventList& EventList::tempo(int32_t track, int32_t tick, int32_t microsecondsPerQuarter)
{
    return meta(track, tick, midimeta::kTempo, bigEndianBytes(static_cast<uint32_t>(microsecondsPerQuarter), 3));
}

EventList& EventList::pitchWheel(int32_t track, int32_t tick, uint8_t midiChannel, double cents)
{
    const int32_t wheel = centsToWheel(cents);
    return channel(track, tick, static_cast<uint8_t>(midistatus::kPitchWheel | midiChannel), wheelLsb(wheel),
                   wheelMsb(wheel));
}

EventList& EventList::add(int32_t track, int32_t tick, int32_t eType, std::string data)
{
    ListedEvent& e = m_events.emplace_back();
    e.track = track;
    e.absTick = tick;
    e.event.eType = eType;
    e.event.eData = std::move(data);
    return *this;
}

}  // namespace tarabix
