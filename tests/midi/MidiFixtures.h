#pragma once

#include "midi/MidiBytes.h"
#include "midi/MidiError.h"
#include "midi/MidiFile.h"
#include "midi/StringStreamIn.h"
#include "tests/common/TempFolder.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <vector>

namespace tarabix::test {

// Byte-exact fixtures: files are built here byte by byte, never loaded from disk.
inline std::string bytes(std::initializer_list<int> values) { return std::string(values.begin(), values.end()); }

inline std::string trackChunk(const std::string& body)
{
    return "MTrk" + bigEndianBytes(static_cast<uint32_t>(body.size()), 4) + body;
}

inline std::string header(int format, int nTracks, int division)
{
    return "MThd" + bigEndianBytes(6, 4) + bigEndianBytes(format, 2) + bigEndianBytes(nTracks, 2) + bigEndianBytes(division, 2);
}

inline const std::string kEndOfTrack = bytes({0x00, 0xFF, 0x2F, 0x00});

inline std::vector<std::string> eDataOf(const MidiTrack& track)
{
    std::vector<std::string> out;
    for (const MidiEvent& e : track.events())
        out.push_back(e.eData);
    return out;
}

inline int32_t readBytes(MidiFile& file, const std::string& content)
{
    StringStreamIn stream;
    stream.setFromString(content);
    return file.readMidi(stream);
}

// Runs f, which must raise MidiError `number`.
template <class F>
void expectMidiError(F f, int32_t number)
{
    try {
        f();
        ADD_FAILURE() << "no error raised";
    } catch (const MidiError& e) {
        EXPECT_EQ(e.number(), number);
    }
}

}  // namespace tarabix::test
