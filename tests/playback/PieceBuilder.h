#pragma once

#include "midi/EventList.h"
#include "midi/MidiFile.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>

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

}  // namespace tarabix::test
