#include "midi/PieceFile.h"

#include "midi/MidiFile.h"
#include "midi/MzfContainer.h"
#include "midi/StringStreamIn.h"

#include <filesystem>
#include <system_error>

namespace tarabix {

PieceReadResult readPieceFile(const std::string& path, MidiFile& piece)
{
    PieceReadResult result;
    // The MIDI reader would create a missing file: nothing is read from a path that holds none.
    std::error_code ec;
    if (!std::filesystem::is_regular_file(path, ec)) {
        result.fault = PieceFault::NoSuchFile;
        return result;
    }
    if (isMzfPath(path)) {
        std::string midiBytes;
        if (const int32_t status = getMzfMidi(path, midiBytes, result.hasSheet)) {
            result.fault = PieceFault::BadMzf;
            result.status = status;
            return result;
        }
        StringStreamIn stream;
        stream.setFromString(std::move(midiBytes));
        result.status = piece.readMidi(stream);
    } else {
        result.status = piece.readMidiFile(path);
    }
    if (result.status != 0)
        result.fault = PieceFault::BadMidi;
    return result;
}

std::string pieceFaultText(const std::string& path, const PieceReadResult& result)
{
    switch (result.fault) {
    case PieceFault::None:
        return {};
    case PieceFault::NoSuchFile:
        return "The file <" + path + "> does not exist.";
    case PieceFault::BadMzf:
        return "The file <" + path + "> is not a valid MZF file.";
    case PieceFault::BadMidi:
        break;
    }
    return "The file <" + path + "> holds no readable MIDI data (error " + std::to_string(result.status) + ").";
}

}  // namespace tarabix
