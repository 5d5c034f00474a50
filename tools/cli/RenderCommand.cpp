#include "tools/cli/Commands.h"
#include "tools/cli/PieceFile.h"

#include "midi/MidiFile.h"
#include "playback/PieceRender.h"

#include <chrono>
#include <cstdio>

namespace tarabix::cli {

namespace {

int usage()
{
    std::fputs("usage: tarabix-cli render FILE -o OUT.wav [--speed R] [--octave N] [--volume V]\n"
               "                         [--from SECONDS] [--length SECONDS] [--soundfont FILE]\n",
               stderr);
    return 2;
}

}  // namespace

// Writes the piece as the window would play it into a WAV file, faster than real time; from a
// point inside it, its channels are first set as the piece has them there.
int render(const Args& args)
{
    std::string input;
    std::string output;
    PieceRenderOptions options;
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        const bool hasValue = i + 1 < args.size();
        if (a == "-o" && hasValue) {
            output = args[++i];
        } else if (a == "--speed" && hasValue) {
            const auto speed = parseNumber(args[++i]);
            if (!speed || !(*speed > 0.0 && *speed <= 100.0))
                return usage();
            options.speed = static_cast<float>(*speed);
        } else if (a == "--octave" && hasValue) {
            const auto octave = parseInt(args[++i]);
            if (!octave || *octave < -10 || *octave > 10)
                return usage();
            options.midiOctShift = *octave;
        } else if (a == "--soundfont" && hasValue) {
            options.soundFontPath = args[++i];
        } else if (a == "--volume" && hasValue) {
            const auto volume = parseInt(args[++i]);
            if (!volume || *volume < 0 || *volume > 127)
                return usage();
            options.volume = *volume;
        } else if (a == "--from" && hasValue) {
            const auto from = parseSecondsAsMs(args[++i]);
            if (!from)
                return usage();
            options.fromMs = *from;
        } else if (a == "--length" && hasValue) {
            const auto length = parseSecondsAsMs(args[++i]);
            if (!length || *length == 0)
                return usage();
            options.lengthMs = *length;
        } else if (input.empty() && !a.starts_with("-")) {
            input = a;
        } else {
            return usage();
        }
    }
    if (input.empty() || output.empty())
        return usage();

    MidiFile piece;
    std::string error;
    if (!loadPiece(input, piece, error)) {
        std::fprintf(stderr, "tarabix-cli render: %s\n", error.c_str());
        return 1;
    }
    if (options.fromMs > piece.allLastAbsMSec()) {
        std::fprintf(stderr, "tarabix-cli render: --from %.3f s is past the end of the piece (%.3f s)\n",
                     options.fromMs / 1000.0, piece.allLastAbsMSec() / 1000.0);
        return 2;
    }
    const auto started = std::chrono::steady_clock::now();
    const PieceRenderResult result = renderPieceToWav(piece, output, options);
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
    if (!result.notice.empty())
        std::fprintf(stderr, "tarabix-cli render: %s\n", result.notice.c_str());
    if (!result.ok) {
        std::fprintf(stderr, "tarabix-cli render: %s\n", result.error.c_str());
        return 1;
    }
    const double audioSeconds = result.audioMs / 1000.0;
    std::printf("%s: %.3f s of audio, %d events, rendered in %.3f s (%.1f x real time)\n", output.c_str(),
                audioSeconds, result.events, seconds, seconds > 0 ? audioSeconds / seconds : 0.0);
    return 0;
}

}  // namespace tarabix::cli
