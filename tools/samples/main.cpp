// tarabix-gen-samples OUTDIR [WORKDIR]: writes every sample piece under OUTDIR/<maqam>/, the MZF
// pieces with their sheets engraved by LilyPond in WORKDIR (a temporary folder by default).
#include "midi/MzfContainer.h"
#include "tools/samples/PieceMidi.h"
#include "tools/samples/PieceSheet.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

using namespace tarabix;
using namespace tarabix::samples;

namespace {

constexpr int32_t kShortestMs = 45'000;
constexpr int32_t kLongestMs = 120'000;

bool endsWith(const std::string& s, const std::string& tail)
{
    return s.size() >= tail.size() && s.compare(s.size() - tail.size(), tail.size(), tail) == 0;
}

bool writePiece(const Piece& piece, const std::filesystem::path& outDir, const std::filesystem::path& workDir)
{
    std::string error;
    ParsedPiece parsed;
    if (!parsePiece(piece, parsed, error)) {
        std::fprintf(stderr, "%s\n", error.c_str());
        return false;
    }
    MidiFile midi;
    if (const int32_t status = buildPieceMidi(parsed, midi); status != 0) {
        std::fprintf(stderr, "%s: laying out the events failed with %d\n", piece.fileName.c_str(), status);
        return false;
    }
    const int32_t ms = midi.allLastAbsMSec();
    if (ms < kShortestMs || ms > kLongestMs) {
        std::fprintf(stderr, "%s lasts %d ms, outside %d..%d\n", piece.fileName.c_str(), ms, kShortestMs, kLongestMs);
        return false;
    }
    const std::filesystem::path folder = outDir / piece.folder;
    std::filesystem::create_directories(folder);
    const std::filesystem::path path = folder / piece.fileName;
    if (endsWith(piece.fileName, ".mid")) {
        if (midi.toFile(path.string()) != 0) {
            std::fprintf(stderr, "cannot write %s\n", path.string().c_str());
            return false;
        }
    } else {
        const std::string baseName = path.stem().string();
        std::string png;
        if (!engraveSheet(sheetSource(parsed), workDir, baseName, png, error)) {
            std::fprintf(stderr, "%s\n", error.c_str());
            return false;
        }
        const std::vector<MzfPart> parts = {{mzf::kMidiPartId, midi.makeMidiStr()}, {mzf::kSheetPartId, png}};
        const std::string bytes = makeMultiPart(parts);
        std::ofstream file(path, std::ios::binary | std::ios::trunc);
        if (!file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()))) {
            std::fprintf(stderr, "cannot write %s\n", path.string().c_str());
            return false;
        }
    }
    std::printf("%-40s %6.1f s\n", (piece.folder + "/" + piece.fileName).c_str(), ms / 1000.0);
    return true;
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc < 2 || argc > 3) {
        std::fprintf(stderr, "usage: tarabix-gen-samples OUTDIR [WORKDIR]\n");
        return 2;
    }
    const std::filesystem::path outDir = argv[1];
    const std::filesystem::path workDir =
        argc == 3 ? std::filesystem::path(argv[2]) : std::filesystem::temp_directory_path() / "tarabix-sheets";
    bool ok = true;
    for (const Piece& piece : allPieces())
        ok = writePiece(piece, outDir, workDir) && ok;
    return ok ? 0 : 1;
}
