#include "playback/SoundFontLocator.h"

#include <filesystem>
#include <fstream>
#include <mutex>

namespace tarabix {

namespace {

std::mutex& overrideMutex()
{
    static std::mutex m;
    return m;
}

std::string& overridePath()
{
    static std::string path;
    return path;
}

// The executable's folder, found without a GUI toolkit so the command line shares the rule.
std::filesystem::path programFolder()
{
    std::error_code ec;
    const std::filesystem::path exe = std::filesystem::read_symlink("/proc/self/exe", ec);
    return ec ? std::filesystem::path() : exe.parent_path();
}

bool isReadableFile(const std::string& path)
{
    std::error_code ec;
    if (!std::filesystem::is_regular_file(path, ec))
        return false;
    std::ifstream in(path, std::ios::binary);
    return in.good();
}

}  // namespace

void setSoundFontOverride(std::string path)
{
    std::lock_guard lock(overrideMutex());
    overridePath() = std::move(path);
}

std::string soundFontOverride()
{
    std::lock_guard lock(overrideMutex());
    return overridePath();
}

std::vector<std::string> soundFontCandidates()
{
    std::vector<std::string> candidates;
    if (std::string user = soundFontOverride(); !user.empty())
        candidates.push_back(std::move(user));
    if (const std::filesystem::path folder = programFolder(); !folder.empty())
        candidates.push_back((folder / "sf2" / "default.sf2").string());
    candidates.push_back("/usr/share/sounds/sf2/FluidR3_GM.sf2");
    candidates.push_back("/usr/share/sounds/sf2/default-GM.sf2");
    candidates.push_back("/usr/share/soundfonts/default.sf2");
    candidates.push_back("/usr/share/soundfonts/FluidR3_GM.sf2");
    return candidates;
}

std::string findSoundFont()
{
    for (const std::string& path : soundFontCandidates()) {
        if (isReadableFile(path))
            return path;
    }
    return {};
}

}  // namespace tarabix
