#include "base/ReadWholeFile.h"

#include <cstdio>
#include <filesystem>
#include <system_error>

namespace tarabix {

int32_t readWholeFile(const std::string& path, std::string& bytes)
{
    bytes.clear();
    std::error_code ec;
    const auto status = std::filesystem::status(path, ec);
    if (path.empty() || status.type() == std::filesystem::file_type::not_found)
        return kFileNotFound;
    if (ec || std::filesystem::is_directory(status))
        return kPathAccessError;

    std::FILE* file = std::fopen(path.c_str(), "rb");
    if (!file)
        return kPathAccessError;
    std::string data;
    char chunk[1 << 16];
    size_t got;
    while ((got = std::fread(chunk, 1, sizeof chunk, file)) > 0)
        data.append(chunk, got);
    const bool failed = std::ferror(file) != 0;
    std::fclose(file);
    if (failed)
        return kDeviceIoError;
    bytes = std::move(data);
    return 0;
}

}  // namespace tarabix
