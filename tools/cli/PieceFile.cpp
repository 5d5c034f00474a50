#include "tools/cli/PieceFile.h"

#include "base/Rounding.h"
#include "midi/MidiFile.h"
#include "midi/MzfContainer.h"
#include "midi/StringStreamIn.h"

#include <charconv>
#include <filesystem>
#include <system_error>

namespace tarabix::cli {

bool loadPiece(const std::string& path, MidiFile& piece, std::string& error)
{
    // The reader creates a missing file, as the window's open flow relies on its own check first.
    std::error_code ec;
    if (!std::filesystem::is_regular_file(path, ec)) {
        error = path + ": no such file";
        return false;
    }
    int32_t status = 0;
    if (isMzfPath(path)) {
        std::string midiBytes;
        bool hasSheet = false;
        if (getMzfMidi(path, midiBytes, hasSheet) != 0) {
            error = path + ": not a usable MZF file";
            return false;
        }
        StringStreamIn stream;
        stream.setFromString(std::move(midiBytes));
        status = piece.readMidi(stream);
    } else {
        status = piece.readMidiFile(path);
    }
    if (status != 0) {
        error = path + ": cannot read the MIDI data (status " + std::to_string(status) + ")";
        return false;
    }
    return true;
}

std::optional<double> parseNumber(const std::string& text)
{
    double value = 0;
    const char* end = text.data() + text.size();
    const auto [ptr, ec] = std::from_chars(text.data(), end, value);
    if (ec != std::errc() || ptr != end || text.empty())
        return std::nullopt;
    return value;
}

std::optional<int> parseInt(const std::string& text)
{
    int value = 0;
    const char* end = text.data() + text.size();
    const auto [ptr, ec] = std::from_chars(text.data(), end, value);
    if (ec != std::errc() || ptr != end || text.empty())
        return std::nullopt;
    return value;
}

std::optional<int32_t> parseSecondsAsMs(const std::string& text)
{
    const auto seconds = parseNumber(text);
    if (!seconds || !(*seconds >= 0.0 && *seconds <= 2000000.0))
        return std::nullopt;
    return roundHalfEvenInt(*seconds * 1000.0);
}

}  // namespace tarabix::cli
