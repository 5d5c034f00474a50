#pragma once

#include <string>
#include <vector>

namespace tarabix {

// Which General MIDI SoundFont the built-in synthesizer plays, first match wins:
// the path given by the user (command line or API), "sf2/default.sf2" in the program folder,
// then the system's GM SoundFont where Debian and others install it.

void setSoundFontOverride(std::string path);
std::string soundFontOverride();

// The places searched, in order (the override only when set).
std::vector<std::string> soundFontCandidates();

// The first candidate that is a readable file; empty when there is none.
std::string findSoundFont();

}  // namespace tarabix
