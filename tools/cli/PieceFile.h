#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace tarabix {
class MidiFile;
}

namespace tarabix::cli {

// Reads a piece as the window opens it: an MZF file (by the last three letters of its name) gives
// its MIDI part, anything else is read as a Standard MIDI File. On failure says why in `error`.
bool loadPiece(const std::string& path, MidiFile& piece, std::string& error);

// Whole-argument number parsing for options; empty when the text is not exactly a number.
std::optional<double> parseNumber(const std::string& text);
std::optional<int> parseInt(const std::string& text);
// A time in seconds (0 to 2,000,000, so its milliseconds fit the player's 32-bit times) as
// milliseconds, to the nearest.
std::optional<int32_t> parseSecondsAsMs(const std::string& text);

}  // namespace tarabix::cli
