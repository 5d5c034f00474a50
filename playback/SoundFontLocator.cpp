#include "playback/SoundFontLocator.h"

#include "playback/SoundFontCheck.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <mutex>
#include <sstream>

namespace tarabix {

namespace fs = std::filesystem;

namespace {

// The names General MIDI SoundFonts are installed under, the most common first.
constexpr const char* kGmNames[] = {"FluidR3_GM", "default-GM", "default", "GeneralUser GS", "TimGM6mb",
                                    "MuseScore_General"};
constexpr const char* kExtensions[] = {".sf2", ".sf3"};

// Under each data folder.
constexpr const char* kSubfolders[] = {"soundfonts", "sounds/sf2", "sounds/sf3"};

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
std::string programFolder()
{
    std::error_code ec;
    const fs::path exe = fs::read_symlink("/proc/self/exe", ec);
    return ec ? std::string() : exe.parent_path().string();
}

std::string environment(const char* name)
{
    const char* value = std::getenv(name);
    return value ? std::string(value) : std::string();
}

bool isSoundFontName(const fs::path& file)
{
    std::string ext = file.extension().string();
    std::ranges::transform(ext, ext.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return ext == ".sf2" || ext == ".sf3";
}

bool sameFile(const std::string& a, const std::string& b)
{
    if (b.empty())
        return false;
    std::error_code ec;
    return fs::equivalent(a, b, ec);
}

bool usable(const std::string& path, const std::string& excluding)
{
    return !sameFile(path, excluding) && checkSoundFontFile(path).ok;
}

std::vector<std::string> otherSoundFontsIn(const std::string& folder)
{
    std::vector<std::string> files;
    std::error_code ec;
    for (fs::directory_iterator it(folder, ec), end; !ec && it != end; it.increment(ec)) {
        if (isSoundFontName(it->path()))
            files.push_back(it->path().string());
    }
    std::ranges::sort(files);
    return files;
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

SoundFontPlaces systemSoundFontPlaces()
{
    SoundFontPlaces places;
    places.programFolder = programFolder();
    places.dataHome = environment("XDG_DATA_HOME");
    if (places.dataHome.empty()) {
        if (const std::string home = environment("HOME"); !home.empty())
            places.dataHome = (fs::path(home) / ".local" / "share").string();
    }
    std::stringstream dirs(environment("XDG_DATA_DIRS"));
    for (std::string dir; std::getline(dirs, dir, ':');) {
        if (!dir.empty())
            places.dataDirs.push_back(dir);
    }
    // A desktop that sets its own list (a sandbox, a session of its own) may leave out the
    // system's folders; they are searched after it anyway.
    places.dataDirs.push_back("/usr/local/share");
    places.dataDirs.push_back("/usr/share");
    return places;
}

std::vector<std::string> soundFontFolders(const SoundFontPlaces& places)
{
    std::vector<std::string> folders;
    auto add = [&folders](const fs::path& folder) {
        const std::string text = folder.lexically_normal().string();
        if (std::ranges::find(folders, text) == folders.end())
            folders.push_back(text);
    };
    if (!places.programFolder.empty())
        add(fs::path(places.programFolder) / "sf2");
    std::vector<std::string> dataFolders;
    if (!places.dataHome.empty())
        dataFolders.push_back(places.dataHome);
    dataFolders.insert(dataFolders.end(), places.dataDirs.begin(), places.dataDirs.end());
    for (const std::string& data : dataFolders) {
        for (const char* sub : kSubfolders)
            add(fs::path(data) / sub);
    }
    return folders;
}

std::vector<std::string> soundFontFolders()
{
    return soundFontFolders(systemSoundFontPlaces());
}

std::string findSoundFont(const std::vector<std::string>& folders, const std::string& excluding)
{
    for (const std::string& folder : folders) {
        for (const char* name : kGmNames) {
            for (const char* ext : kExtensions) {
                const std::string path = (fs::path(folder) / (std::string(name) + ext)).string();
                if (usable(path, excluding))
                    return path;
            }
        }
    }
    for (const std::string& folder : folders) {
        for (const std::string& path : otherSoundFontsIn(folder)) {
            if (usable(path, excluding))
                return path;
        }
    }
    return {};
}

std::string findSoundFont()
{
    return findSoundFont(soundFontFolders());
}

std::string soundFontFallbackNotice(const std::string& wanted, const std::string& problem,
                                    const std::string& fallback)
{
    std::string text = "The SoundFont " + wanted + " cannot be used: " + problem + ". ";
    if (fallback.empty())
        return text + "No General MIDI SoundFont was found in its place, so the built-in synthesizer is silent.";
    return text + "The built-in synthesizer plays the system's General MIDI SoundFont " + fallback + " instead.";
}

SoundFontChoice chooseSoundFont(const std::string& wanted, const std::vector<std::string>& folders)
{
    SoundFontChoice choice;
    SoundFontCheck check;
    if (!wanted.empty()) {
        check = checkSoundFontFile(wanted);
        if (check.ok) {
            choice.path = wanted;
            return choice;
        }
    }
    choice.path = findSoundFont(folders, wanted);
    if (!wanted.empty())
        choice.notice = soundFontFallbackNotice(wanted, check.problem, choice.path);
    if (choice.path.empty()) {
        choice.reason = "no General MIDI SoundFont found (install one, e.g. the package fluid-soundfont-gm, "
                        "or choose a .sf2 or .sf3 file)";
        if (!wanted.empty())
            choice.reason = "the SoundFont " + wanted + " cannot be used (" + check.problem + ") and " + choice.reason;
    }
    return choice;
}

SoundFontChoice chooseSoundFont()
{
    return chooseSoundFont(soundFontOverride(), soundFontFolders());
}

}  // namespace tarabix
