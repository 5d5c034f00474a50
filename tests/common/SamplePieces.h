#pragma once

// The pieces shipped under data/samples, read the way the window opens them.
#include "midi/MidiFile.h"
#include "midi/PieceFile.h"

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

namespace tarabix::test {

inline const std::filesystem::path kDataFolder = std::filesystem::path(TARABIX_SOURCE_DIR) / "data";

// The piece's MIDI, from inside an MZF or from a plain .mid file; 0 when it reads, -1 when the
// file is missing, else the reader's status.
inline int32_t readPiece(const std::string& path, MidiFile& file)
{
    const PieceReadResult read = readPieceFile(path, file);
    return read.ok() ? 0 : read.fault == PieceFault::NoSuchFile ? -1 : read.status;
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
