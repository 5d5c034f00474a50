// Reading one "MTrk" chunk of a Standard MIDI File into a track.
#include "midi/MidiTrack.h"

#include "midi/MidiBytes.h"
#include "midi/MidiError.h"
#include "midi/StringStreamIn.h"

#include <new>

namespace tarabix {

namespace {

// A variable-length quantity at body[pos]: 7 bits a byte, most significant first.
int32_t readVarLen(const uint8_t* body, size_t end, size_t& pos, int32_t& value)
{
    int32_t v = 0;
    for (;;) {
        if (pos >= end)
            return midierr::kInvalidArgument;
        const uint8_t c = body[pos++];
        if (v >= (1 << 24))  // v * 128 would pass 32 bits
            return midierr::kOverflow;
        v = v * 128 + (c & 0x7F);
        if (!(c & 0x80))
            break;
    }
    value = v;
    return 0;
}

}  // namespace

int32_t MidiTrack::readTrk(StringStreamIn& stream)
{
    try {
        if (stream.readView(4) != "MTrk")
            return kNotATrackChunk;
        const auto length = static_cast<int32_t>(readBigEndian(stream.readView(4)));
        if (length < 1)
            return kEmptyChunk;
        return parseBody(stream.readView(length));
    } catch (const MidiError& e) {
        return e.number();
    } catch (const std::bad_alloc&) {
        return midierr::kOutOfMemory;
    }
}

int32_t MidiTrack::parseBody(std::string_view body)
{
    // An event takes at least two bytes, most take three or four: room for the common case up front
    // keeps the array from being moved while a long track is read.
    const size_t expected = static_cast<size_t>(m_nEvents) + body.size() / 3 + kGrowStep;
    if (expected > m_events.capacity())
        m_events.reserve(expected);

    const auto* p = reinterpret_cast<const uint8_t*>(body.data());
    const size_t end = body.size();
    size_t pos = 0;
    uint8_t runningStatus = 0;
    while (pos < end) {
        int32_t delta = 0;
        if (const int32_t status = readVarLen(p, end, pos, delta))
            return status;
        if (pos >= end)
            return midierr::kInvalidArgument;
        const uint8_t b = p[pos++];
        if (b >= 0x80)
            runningStatus = b;
        else if (runningStatus == 0)
            return kNoRunningStatus;

        const uint8_t kind = statusKind(runningStatus);
        const int nData = kind == midistatus::kProgramChange || kind == midistatus::kChannelPressure
                              ? 1
                              : (kind >= midistatus::kNoteOff && kind <= midistatus::kPitchWheel ? 2 : 0);
        if (nData > 0) {
            uint8_t data1 = b;
            if (b >= 0x80) {
                if (pos >= end)
                    return midierr::kInvalidArgument;
                data1 = p[pos++];
            }
            uint8_t data2 = 0;
            if (nData == 2) {
                if (pos >= end)
                    return midierr::kInvalidArgument;
                data2 = p[pos++];
            }
            if (!appendChannelMessage(delta, runningStatus, data1, data2))
                return midierr::kSubscriptOutOfRange;
        } else if (b == midistatus::kMeta || b == midistatus::kSysEx || b == midistatus::kEscape) {
            uint8_t metaType = 0;
            if (b == midistatus::kMeta) {
                if (pos >= end)
                    return midierr::kInvalidArgument;
                metaType = p[pos++];
            }
            int32_t length = 0;
            if (const int32_t status = readVarLen(p, end, pos, length))
                return status;
            if (static_cast<size_t>(length) > end - pos)
                return midierr::kInvalidArgument;
            const std::string_view data = body.substr(pos, static_cast<size_t>(length));
            pos += static_cast<size_t>(length);
            if (b == midistatus::kMeta) {
                appendMeta(delta, metaType, data);
                if (metaType == midimeta::kEndOfTrack)
                    return 0;  // whatever follows the end of the track is not part of it
            } else if (b == midistatus::kSysEx) {
                std::string message;
                message.reserve(data.size() + 1);
                message.push_back(static_cast<char>(midistatus::kSysEx));
                message.append(data);
                addSysExEvt(delta, message);
            }
            // An escape packet is dropped: the player never sends such packets.
        } else {
            // Also a data byte after a meta or system exclusive event: their status bytes become
            // the running status too, and they take no running data.
            return kUnknownStatusByte;
        }
    }
    return 0;
}

}  // namespace tarabix
