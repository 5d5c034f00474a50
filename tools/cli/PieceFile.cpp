#include "tools/cli/PieceFile.h"

#include "base/Rounding.h"
#include "midi/PieceFile.h"

#include <charconv>

namespace tarabix::cli {

bool loadPiece(const std::string& path, MidiFile& piece, std::string& error)
{
    const PieceReadResult read = readPieceFile(path, piece);
    error = pieceFaultText(path, read);
    return read.ok();
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
