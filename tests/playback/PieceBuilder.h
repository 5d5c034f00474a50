#pragma once

#include "midi/EventList.h"
#include "midi/MidiBytes.h"
#include "midi/MidiFile.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace tarabix::test {

// Builds a piece event by event, at one tick per millisecond, so absMS equals the time given.
class PieceBuilder {
public:
    PieceBuilder& channel(int32_t track, int32_t ms, uint8_t status, uint8_t c1, uint8_t c2)
    {
        m_events.channel(track, ms, status, c1, c2);
        return *this;
    }
    PieceBuilder& noteOn(int32_t track, int32_t ms, uint8_t note, uint8_t velocity = 100, uint8_t ch = 0)
    {
        return channel(track, ms, static_cast<uint8_t>(midistatus::kNoteOn | ch), note, velocity);
    }
    PieceBuilder& meta(int32_t track, int32_t ms, uint8_t metaType, const std::string& data)
    {
        m_events.meta(track, ms, metaType, data);
        return *this;
    }
    PieceBuilder& sysEx(int32_t track, int32_t ms, const std::string& dataFromF0)
    {
        m_events.sysEx(track, ms, dataFromF0);
        return *this;
    }

    // The piece; every track ends with an end-of-track at its last event's time.
    MidiFile build() const
    {
        MidiFile file;
        EXPECT_EQ(file.setFromList(m_events.events()), 0);
        return file;
    }

private:
    EventList m_events;
};

}  // namespace tarabix::test
