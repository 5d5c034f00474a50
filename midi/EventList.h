#pragma once

#include "midi/MidiFile.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tarabix {

// A piece to be written, as events with their track and tick from the start, in the order they
// are added; MidiFile::setFromList lays them out into tracks. The sample pieces, the soak run's
// random pieces and the tests' pieces are all put together through it.
class EventList {
public:
    // A channel message: status (kind and channel) and two data bytes, the second 0 where the
    // kind takes one.
    EventList& channel(int32_t track, int32_t tick, uint8_t status, uint8_t data1, uint8_t data2);
    EventList& meta(int32_t track, int32_t tick, uint8_t metaType, std::string_view data);
    EventList& sysEx(int32_t track, int32_t tick, std::string_view dataFromF0);
    // Microseconds per quarter note, in the three bytes of a tempo event.
    EventList& tempo(int32_t track, int32_t tick, int32_t microsecondsPerQuarter);
    // The wheel of `midiChannel` (0-15) moved to a shift of `cents`, as centsToWheel has it.
    EventList& pitchWheel(int32_t track, int32_t tick, uint8_t midiChannel, double cents);

    std::span<const ListedEvent> events() const { return m_events; }
    void clear() { m_events.clear(); }

private:
    EventList& add(int32_t track, int32_t tick, int32_t eType, std::string data);

    std::vector<ListedEvent> m_events;
};

}  // namespace tarabix
