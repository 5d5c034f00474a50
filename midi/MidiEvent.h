#pragma once

#include <cstdint>
#include <string>

namespace tarabix {

// One timed event of a track. eData holds the bytes by kind: a channel message always 3 bytes
// (status with the channel in its low nibble, data1, data2 = 0 for program change and channel
// pressure); a system exclusive message 0xF0 followed by the bytes stored after its length; a meta
// event its type byte followed by its data. Short events stay inside the string's own buffer, so a
// piece of a million notes costs no allocation per event.
struct MidiEvent {
    static constexpr int32_t kChannelMessage = 1;
    static constexpr int32_t kSysEx = 2;
    static constexpr int32_t kMeta = 3;

    // The four numbers come first so that no padding sits between them and the string: a million
    // events are 8 MB smaller.
    int32_t eType = 0;
    int32_t deltaTick = 0;
    int32_t absTick = 0;
    int32_t absMS = 0;  // from the start of the piece at normal speed
    std::string eData;
    const MidiEvent* srcEvt = nullptr;  // the event this one was made from, if any

    // Everything but srcEvt: a copy is a new event, not the one it was made from.
    void copyFrom(const MidiEvent& other)
    {
        eType = other.eType;
        eData = other.eData;
        deltaTick = other.deltaTick;
        absTick = other.absTick;
        absMS = other.absMS;
    }

    bool isMeta(uint8_t metaType) const
    {
        return eType == kMeta && !eData.empty() && static_cast<uint8_t>(eData[0]) == metaType;
    }
};

}  // namespace tarabix
