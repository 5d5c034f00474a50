#pragma once

#include "midi/MidiFile.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

namespace tarabix::testing {

// Builds a piece event by event, at one tick per millisecond, so absMS equals the time given.
class PieceBuilder {
public:
    PieceBuilder& channel(int32_t track, int32_t ms, uint8_t status, uint8_t c1, uint8_t c2)
    {
        return add(track, ms, MidiEvent::kChannelMessage, std::string{char(status), char(c1), char(c2)});
    }
    PieceBuilder& noteOn(int32_t track, int32_t ms, uint8_t note, uint8_t velocity = 100, uint8_t ch = 0)
    {
        return channel(track, ms, static_cast<uint8_t>(0x90 | ch), note, velocity);
    }
    PieceBuilder& meta(int32_t track, int32_t ms, uint8_t metaType, const std::string& data)
    {
        return add(track, ms, MidiEvent::kMeta, std::string(1, char(metaType)) + data);
    }
    PieceBuilder& sysEx(int32_t track, int32_t ms, const std::string& dataFromF0)
    {
        return add(track, ms, MidiEvent::kSysEx, dataFromF0);
    }

    // The piece; every track ends with an end-of-track at its last event's time.
    MidiFile build() const
    {
        MidiFile file;
        EXPECT_EQ(file.setFromList(m_events), 0);
        return file;
    }

private:
    PieceBuilder& add(int32_t track, int32_t ms, int32_t eType, std::string data)
    {
        ListedEvent le;
        le.track = track;
        le.absTick = ms;
        le.event.eType = eType;
        le.event.eData = std::move(data);
        m_events.push_back(std::move(le));
        return *this;
    }

    std::vector<ListedEvent> m_events;
};

}  // namespace tarabix::testing
