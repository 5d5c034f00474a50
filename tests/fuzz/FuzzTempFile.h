#pragma once

#include <cstdio>
#include <string>
#include <string_view>

#include <unistd.h>

namespace tarabix::fuzz {

// Loaders that take a path get the fuzz bytes through one file per process, rewritten for every
// input: in /dev/shm when it exists so the run is not bound by the disk. The file goes when the
// run ends normally; a crash leaves it for a look. False when the bytes cannot be written.
inline bool writeTempFile(const std::string& path, std::string_view bytes)
{
    std::FILE* file = std::fopen(path.c_str(), "wb");
    const bool written = file && std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
    return file && std::fclose(file) == 0 && written;
}

inline const std::string& tempPath(const char* stem)
{
    static const struct OwnFile {
        std::string path;
        ~OwnFile() { std::remove(path.c_str()); }
    } file{std::string(access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp") + "/tarabix-fuzz-" + stem + "-" + std::to_string(getpid()) + ".ini"};
    return file.path;
}

}  // namespace tarabix::fuzz
