#pragma once

#include <cstdio>
#include <string>
#include <string_view>

#include <unistd.h>

namespace tarabix::fuzz {

// Loaders that take a path get the fuzz bytes through one file per process, rewritten for every
// input: in /dev/shm when it exists so the run is not bound by the disk. The file goes when the
// run ends normally; a crash leaves it for a look.
inline const std::string& tempPath(const char* stem)
{
    struct OwnFile {
        std::string path;
        ~OwnFile() { std::remove(path.c_str()); }
    };
    static const OwnFile file{[stem] {
        const char* folder = access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp";
        return std::string(folder) + "/tarabix-fuzz-" + stem + "-" + std::to_string(getpid()) + ".ini";
    }()};
    return file.path;
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
