#pragma once

#include "midi/EventList.h"
#include "midi/MidiFile.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>
#include <vector>

namespace tarabix::test {

// The piece of these events, at one tick per millisecond, so absMS equals the time given; every
// track ends with an end-of-track at its last event's time.
inline MidiFile pieceFrom(const EventList& events)
{
    MidiFile file;
    EXPECT_EQ(file.setFromList(events.events()), 0);
    return file;
}

struct TimedMessage {
    int32_t ms;
    uint8_t status, c1, c2 = 0;
    int32_t track = 0;
};

// A piece of channel messages alone.
inline MidiFile pieceOf(std::initializer_list<TimedMessage> messages)
{
    EventList events;
    for (const TimedMessage& m : messages)
        events.channel(m.track, m.ms, m.status, m.c1, m.c2);
    return pieceFrom(events);
}

// Single notes on track 0, channel 0: note 60 + n at times[n] (SMPTE timing: 500 ms beats in 4/4).
inline MidiFile notesAt(const std::vector<int32_t>& times)
{
    EventList events;
    for (size_t i = 0; i < times.size(); ++i)
        events.channel(0, times[i], 0x90, static_cast<uint8_t>(60 + i), 100);
    return pieceFrom(events);
}

}  // namespace tarabix::test
