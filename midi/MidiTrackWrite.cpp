// Writing a track as the "MTrk" chunk of a Standard MIDI File.
#include "midi/MidiTrack.h"

#include "midi/MidiBytes.h"

#include <algorithm>

namespace tarabix {

namespace {

void appendVarLen(std::string& out, uint32_t value)
{
    char bytes[5];
    int n = 0;
    bytes[4 - n++] = static_cast<char>(value & 0x7F);
    while ((value >>= 7) != 0)
        bytes[4 - n++] = static_cast<char>(0x80 | (value & 0x7F));
    out.append(bytes + 5 - n, static_cast<size_t>(n));
}

}  // namespace

std::string MidiTrack::makeMidiTrackStr() const
{
    std::string body;
    body.reserve(static_cast<size_t>(m_nEvents) * 4 + 8);
    for (const MidiEvent& e : events()) {
        if (e.eType == MidiEvent::kChannelMessage) {
            appendVarLen(body, static_cast<uint32_t>(e.deltaTick));
            const uint8_t kind = e.eData.empty() ? 0 : statusKind(static_cast<uint8_t>(e.eData[0]));
            const size_t n = kind == midistatus::kProgramChange || kind == midistatus::kChannelPressure ? 2 : 3;
            body.append(e.eData, 0, std::min(n, e.eData.size()));
        } else if (e.eType == MidiEvent::kMeta) {
            appendVarLen(body, static_cast<uint32_t>(e.deltaTick));
            body.push_back(static_cast<char>(midistatus::kMeta));
            body.push_back(e.eData.empty() ? '\0' : e.eData[0]);
            const size_t dataSize = e.eData.empty() ? 0 : e.eData.size() - 1;
            appendVarLen(body, static_cast<uint32_t>(dataSize));
            if (dataSize > 0)
                body.append(e.eData, 1);
        }
    }
    // A track read from a file keeps its end-of-track as the single byte 2F, so it gets a second,
    // complete one here: players that need FF 2F 00 find it, and the first is harmless.
    const bool closed = m_nEvents > 0 && m_events[static_cast<size_t>(m_nEvents - 1)].eType == MidiEvent::kMeta &&
                        m_events[static_cast<size_t>(m_nEvents - 1)].eData == std::string_view("\x2F\x00", 2);
    if (!closed)
        body.append("\x00\xFF\x2F\x00", 4);

    std::string chunk = "MTrk";
    chunk.reserve(body.size() + 8);
    appendBigEndian(chunk, static_cast<uint32_t>(body.size()), 4);
    chunk += body;
    return chunk;
}

}  // namespace tarabix
