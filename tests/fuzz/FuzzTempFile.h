#pragma once

#include <cstdio>
#include <string>
#include <string_view>

#include <unistd.h>

namespace tarabix::fuzz {

// Loaders that take a path get the fuzz bytes through one file per process, rewritten for every
// input: in /dev/shm when it exists so the run is not bound by the disk.
inline const std::string& tempPath(const char* stem)
{
    static const std::string path = [stem] {
        const char* folder = access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp";
        return std::string(folder) + "/tarabix-fuzz-" + stem + "-" + std::to_string(getpid()) + ".ini";
    }();
    return path;
}

inline bool writeTempFile(const std::string& path, std::string_view bytes)
{
    std::FILE* file = std::fopen(path.c_str(), "wb");
    if (!file)
        return false;
    const bool written = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
    return std::fclose(file) == 0 && written;
}

}  // namespace tarabix::fuzz
