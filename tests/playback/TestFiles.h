#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <unistd.h>

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

}  // namespace tarabix::test
