#pragma once

#include "midi/MidiFile.h"
#include "tools/samples/NoteText.h"
#include "tools/samples/SamplePiece.h"

#include <string>
#include <vector>

namespace tarabix::samples {

// The melody of every section, read once and shared by the MIDI writer and the sheet engraver so
// that the sheet always shows the notes that sound.
struct ParsedPiece {
    const Piece* piece = nullptr;
    std::vector<std::vector<MelodyNote>> sections;
};

bool parsePiece(const Piece& piece, ParsedPiece& parsed, std::string& error);

// Three tracks: tempo and metre; the oud on channel 1 with its "Q:" markers and a pitch-wheel
// message before every note whose quarter-tone shift differs from the last; the darbuka on
// channel 10. Returns the MidiFile status of laying the events out (0 on success).
int32_t buildPieceMidi(const ParsedPiece& parsed, MidiFile& midi);

}  // namespace tarabix::samples
