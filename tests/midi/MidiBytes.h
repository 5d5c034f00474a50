#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>

namespace tarabix::test {

// Byte-exact fixtures: files are built here byte by byte, never loaded from disk.
inline std::string bytes(std::initializer_list<int> values)
{
    std::string out;
    for (const int v : values)
        out.push_back(static_cast<char>(v));
    return out;
}

inline std::string bigEndian32(uint32_t v)
{
    return bytes({static_cast<int>(v >> 24 & 0xFF), static_cast<int>(v >> 16 & 0xFF),
                  static_cast<int>(v >> 8 & 0xFF), static_cast<int>(v & 0xFF)});
}

inline std::string trackChunk(const std::string& body)
{
    return "MTrk" + bigEndian32(static_cast<uint32_t>(body.size())) + body;
}

inline std::string header(int format, int nTracks, int division)
{
    return "MThd" + bigEndian32(6) +
           bytes({format >> 8 & 0xFF, format & 0xFF, nTracks >> 8 & 0xFF, nTracks & 0xFF,
                  division >> 8 & 0xFF, division & 0xFF});
}

inline const std::string kEndOfTrack = bytes({0x00, 0xFF, 0x2F, 0x00});

}  // namespace tarabix::test
