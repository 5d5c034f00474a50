#pragma once

#include "midi/MidiBytes.h"
#include "midi/MidiError.h"
#include "midi/MidiFile.h"
#include "midi/StringStreamIn.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <string>
#include <vector>

namespace tarabix::test {

// Byte-exact fixtures: files are built here byte by byte, never loaded from disk.
inline std::string bytes(std::initializer_list<int> values)
{
    return std::string(values.begin(), values.end());
}

inline std::string trackChunk(const std::string& body)
{
    return "MTrk" + bigEndianBytes(static_cast<uint32_t>(body.size()), 4) + body;
}

inline std::string header(int format, int nTracks, int division)
{
    return "MThd" + bigEndianBytes(6, 4) +
           bytes({format >> 8 & 0xFF, format & 0xFF, nTracks >> 8 & 0xFF, nTracks & 0xFF, division >> 8 & 0xFF,
                  division & 0xFF});
}

inline const std::string kEndOfTrack = bytes({0x00, 0xFF, 0x2F, 0x00});

inline std::vector<std::string> eDataOf(const MidiTrack& track)
{
    std::vector<std::string> out;
    for (const MidiEvent& e : track.events())
        out.push_back(e.eData);
    return out;
}

inline std::vector<int32_t> deltasOf(const MidiTrack& track)
{
    std::vector<int32_t> out;
    for (const MidiEvent& e : track.events())
        out.push_back(e.deltaTick);
    return out;
}

inline int32_t readBytes(MidiFile& file, const std::string& content)
{
    StringStreamIn stream;
    stream.setFromString(content);
    return file.readMidi(stream);
}

// Runs f, which must raise MidiError `number`; the error is returned for further checks.
template <class F>
MidiError expectMidiError(F f, int32_t number)
{
    try {
        f();
    } catch (const MidiError& e) {
        EXPECT_EQ(e.number(), number);
        return e;
    }
    ADD_FAILURE() << "no error raised";
    return MidiError(0, "", "");
}

inline std::string readAll(const std::filesystem::path& path)
{
    std::ifstream in(path, std::ios::binary);
    return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

// A fresh folder of this test and process (ctest runs tests side by side), removed at the end.
struct TempDir {
    std::filesystem::path path = std::filesystem::temp_directory_path() /
        ("tarabix-" + std::string(testing::UnitTest::GetInstance()->current_test_info()->name()) + "-" +
         std::to_string(getpid()));
    TempDir() { std::filesystem::create_directories(path); }
    ~TempDir() { std::filesystem::remove_all(path); }
    std::string operator/(const std::string& name) const { return (path / name).string(); }
    std::string write(const std::string& name, const std::string& content) const
    {
        std::ofstream(path / name, std::ios::binary) << content;
        return *this / name;
    }
};

}  // namespace tarabix::test
