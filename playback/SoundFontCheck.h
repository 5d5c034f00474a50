#pragma once

#include <string>

namespace tarabix {

// A quick look at a SoundFont's outline before the synthesizer is given it: the RIFF "sfbk"
// header, the three lists (INFO, sdta, pdta) with sizes that fit the file, and the preset and
// sample tables in pdta with whole records. Only chunk headers are read (a few kilobytes, even
// of a 140 MB file), so it runs at once where the full load would take a worker thread; a file
// that passes can still fail the full load, e.g. with damaged sample data.
struct SoundFontCheck {
    bool ok = false;
    std::string problem;  // why not, in words for the learner ("it is empty", ...); empty when ok
};

SoundFontCheck checkSoundFontFile(const std::string& path);

}  // namespace tarabix
