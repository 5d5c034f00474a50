#include "tools/cli/Commands.h"

#include "midi/MidiError.h"
#include "midi/MidiFile.h"
#include "midi/PieceFile.h"

#include <cstdio>
#include <string>

namespace tarabix::cli {

// Reads the piece as the window does (an MZF file's MIDI part) and writes its text dump byte for
// byte.
int dump(const Args& args)
{
    if (args.size() != 1) {
        std::fputs("usage: tarabix-cli dump FILE\n", stderr);
        return 2;
    }
    const std::string& path = args[0];
    MidiFile file;
    const PieceReadResult read = readPieceFile(path, file);
    if (read.fault == PieceFault::NoSuchFile) {
        std::fprintf(stderr, "tarabix-cli dump: %s: no such file\n", path.c_str());
        return 1;
    }
    if (!read.ok()) {
        std::printf("STATUS %d\n", read.status);
        return 1;
    }
    std::string text;
    try {
        text = file.toText();
    } catch (const MidiError& e) {
        std::fprintf(stderr, "tarabix-cli dump: %s: cannot describe an event: %s (error %d)\n", path.c_str(),
                     e.description().c_str(), e.number());
        return 2;
    }
    return std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0 ? 0 : 1;
}

}  // namespace tarabix::cli
