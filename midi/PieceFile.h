#pragma once

#include <cstdint>
#include <string>

namespace tarabix {

class MidiFile;

// Why a piece could not be read from its path.
enum class PieceFault {
    None,
    NoSuchFile,  // nothing (or no regular file) at the path
    BadMzf,      // an MZF file whose container is broken or whose first part is not MIDI
    BadMidi,     // the MIDI data could not be read (status says why)
};

struct PieceReadResult {
    PieceFault fault = PieceFault::None;
    int32_t status = 0;  // the reader's own status for BadMzf and BadMidi
    bool hasSheet = false;
    bool ok() const { return fault == PieceFault::None; }
};

// Reads the piece at path as every part of the program opens one: an MZF file (the last three
// letters of its name, in any case) gives its MIDI part, anything else is read as a Standard MIDI
// File. The path is checked first, so a missing file is reported and never created. On failure
// `piece` may hold a partial read and must be thrown away.
PieceReadResult readPieceFile(const std::string& path, MidiFile& piece);

// One sentence for the learner or the command line, naming the file and the reason.
std::string pieceFaultText(const std::string& path, const PieceReadResult& result);

}  // namespace tarabix
