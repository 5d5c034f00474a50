#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <cstdint>
#include <string>
#include <unistd.h>
#include <vector>

namespace tarabix::test {

// A path in the temporary folder that no other test run on this machine uses.
inline std::string scratchPath(const std::string& name)
{
    return (std::filesystem::temp_directory_path() / ("tarabix-" + std::to_string(getpid()) + "-" + name)).string();
}

inline std::string readBytes(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// The interleaved samples of a 16-bit PCM WAV file with the canonical 44-byte header.
inline std::vector<float> wavSamples16(const std::string& wavBytes)
{
    std::vector<float> samples;
    for (size_t at = 44; at + 2 <= wavBytes.size(); at += 2)
        samples.push_back(static_cast<int16_t>(static_cast<uint8_t>(wavBytes[at]) |
                                               static_cast<uint8_t>(wavBytes[at + 1]) << 8));
    return samples;
}

}  // namespace tarabix::test
