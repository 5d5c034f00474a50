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
        : m_dir(std::filesystem::temp_directory_path() / ("tarabix_" + name + "_" + std::to_string(::getpid())))
    {
        std::filesystem::remove_all(m_dir);
        std::filesystem::create_directories(m_dir);
    }
    ~TempFolder() { std::filesystem::remove_all(m_dir); }

    std::string path(const std::string& file) const { return (m_dir / file).string(); }
    std::string write(const std::string& file, const std::string& bytes) const
    {
        std::ofstream(m_dir / file, std::ios::binary) << bytes;
        return path(file);
    }
    std::string read(const std::string& file) const
    {
        std::ifstream in(m_dir / file, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    }

private:
    std::filesystem::path m_dir;
};

}  // namespace tarabix::test
