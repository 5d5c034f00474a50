#pragma once

// The pieces shipped under data/samples, read the way the window opens them.
#include "midi/MidiFile.h"
#include "midi/MzfContainer.h"
#include "midi/StringStreamIn.h"

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

namespace tarabix::test {

inline const std::filesystem::path kDataFolder = std::filesystem::path(TARABIX_SOURCE_DIR) / "data";

// The piece's MIDI, from inside an MZF or from a plain .mid file; 0 or the reader's status.
inline int32_t readPiece(const std::string& path, MidiFile& file)
{
    if (!isMzfPath(path))
        return file.readMidiFile(path);
    std::string midi;
    bool hasSheet = false;
    if (const int32_t status = getMzfMidi(path, midi, hasSheet); status != 0)
        return status;
    StringStreamIn stream;
    stream.setFromString(midi);
    return file.readMidi(stream);
}

// Every file under data/samples, in name order.
inline std::vector<std::string> samplePiecePaths()
{
    std::vector<std::string> paths;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(kDataFolder / "samples"))
        if (entry.is_regular_file())
            paths.push_back(entry.path().string());
    std::sort(paths.begin(), paths.end());
    return paths;
}

}  // namespace tarabix::test
