#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <unistd.h>

namespace tarabix::test {

// A fresh folder per test under the system's temporary folder, removed afterwards. The process id
// keeps the plain and the sanitizer suites apart when they run side by side.
class TempFolder {
public:
    explicit TempFolder(const std::string& name)
        : dir_(std::filesystem::temp_directory_path() / ("tarabix_" + name + "_" + std::to_string(::getpid())))
    {
        std::filesystem::remove_all(dir_);
        std::filesystem::create_directories(dir_);
    }
    ~TempFolder() { std::filesystem::remove_all(dir_); }

    std::string path(const std::string& file) const { return (dir_ / file).string(); }
    std::string write(const std::string& file, const std::string& bytes) const
    {
        std::ofstream(dir_ / file, std::ios::binary) << bytes;
        return path(file);
    }
    std::string read(const std::string& file) const
    {
        std::ifstream in(dir_ / file, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    }

private:
    std::filesystem::path dir_;
};

}  // namespace tarabix::test
