#pragma once

#include "tools/samples/PieceMidi.h"

#include <filesystem>
#include <string>

namespace tarabix::samples {

// LilyPond source of the piece's sheet: the oud line in the treble clef an octave above its sound
// (the way oud music is written), Arabic quarter-tone accidentals, the key signature of the
// maqam, rehearsal marks with the modulations, repeat signs and tempo marks.
std::string sheetSource(const ParsedPiece& parsed);

// Engraves source with LilyPond in workDir and returns the cropped PNG's bytes in png. False with
// a message when LilyPond is missing or fails.
bool engraveSheet(const std::string& source, const std::filesystem::path& workDir, const std::string& baseName,
                  std::string& png, std::string& error);

}  // namespace tarabix::samples
