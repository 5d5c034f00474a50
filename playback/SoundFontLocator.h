#pragma once

#include <string>
#include <vector>

namespace tarabix {

// Which General MIDI SoundFont the built-in synthesizer plays: the learner's own file (the
// command line, or the one chosen in the device dialog and kept in the settings) when it passes
// the quick check, otherwise the first good one in the usual folders of the common Linux
// distributions.

void setSoundFontOverride(std::string path);
std::string soundFontOverride();

// What the folder list is made from; soundFontFolders() fills it from the process's environment.
struct SoundFontPlaces {
    std::string programFolder;           // a SoundFont shipped beside the program, "sf2/"
    std::string dataHome;                // $XDG_DATA_HOME, or ~/.local/share
    std::vector<std::string> dataDirs;   // $XDG_DATA_DIRS, or /usr/local/share and /usr/share
};

SoundFontPlaces systemSoundFontPlaces();

// The folders searched, in order, without duplicates: the program's own, the learner's, then the
// system's (soundfonts/, sounds/sf2/, sounds/sf3/ under each data folder, which covers Debian,
// Ubuntu, Fedora, Arch and openSUSE).
std::vector<std::string> soundFontFolders(const SoundFontPlaces& places);
std::vector<std::string> soundFontFolders();

// The first SoundFont in the folders that passes the quick check: General MIDI names first
// (FluidR3_GM, default-GM, default, ...; .sf2 before .sf3), in folder order, then any other
// .sf2 or .sf3 file. A file that is the same as `excluding` (through links too) is passed over.
// Empty when there is none.
std::string findSoundFont(const std::vector<std::string>& folders, const std::string& excluding = {});
std::string findSoundFont();

struct SoundFontChoice {
    std::string path;    // the file to load; empty when there is none
    std::string notice;  // set when the learner's file was passed over for the system's
    std::string reason;  // why there is none, when path is empty
};

// `wanted` (may be empty) when it passes the quick check, else the system's GM SoundFont.
SoundFontChoice chooseSoundFont(const std::string& wanted, const std::vector<std::string>& folders);
// The same for the override and the usual folders.
SoundFontChoice chooseSoundFont();

// The notice for a learner's file that cannot be used, and what plays instead ("" for silence).
std::string soundFontFallbackNotice(const std::string& wanted, const std::string& problem,
                                    const std::string& fallback);

}  // namespace tarabix
