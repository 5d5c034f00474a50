// tarabix-cli: the program's model, player and output layer without a window.
#include "tools/cli/Commands.h"

#include <cstdio>
#include <string_view>

namespace {

struct Command {
    std::string_view name;
    std::string_view synopsis;
    int (*run)(const tarabix::cli::Args&);
};

constexpr Command kCommands[] = {
    {"version", "version              print the program's name and version", tarabix::cli::version},
    {"devices", "devices [-v]         list the MIDI outputs and their ids (--soundfont FILE)", tarabix::cli::devices},
    {"dump", "dump FILE            write the text dump of a MIDI file", tarabix::cli::dump},
    {"play", "play FILE            play in real time (--device ID|null, --speed R, --from S, --timing-log CSV,\n"
             "                         --soundfont FILE; practice: --loop A:B --passes N, --ramp FROM:STEP,\n"
             "                         --count-in BEATS)",
     tarabix::cli::play},
    {"render", "render FILE -o OUT.wav  write the piece as audio (--speed R, --octave N, --volume V,\n"
             "                         --soundfont FILE)",
     tarabix::cli::render},
    {"scale", "scale MAQAM TONIC    the places of a maqam's notes (--tuning ID, --view 0..3, --names western|solfege)",
     tarabix::cli::scale},
};

int usage(std::FILE* out)
{
    std::fputs("usage: tarabix-cli COMMAND [ARGS]\n", out);
    for (const Command& c : kCommands)
        std::fprintf(out, "  %.*s\n", static_cast<int>(c.synopsis.size()), c.synopsis.data());
    return out == stdout ? 0 : 2;
}

}  // namespace

int main(int argc, char* argv[])
{
    if (argc < 2)
        return usage(stderr);
    const std::string_view name = argv[1];
    if (name == "help" || name == "--help" || name == "-h")
        return usage(stdout);
    for (const Command& c : kCommands) {
        if (c.name == name)
            return c.run(tarabix::cli::Args(argv + 2, argv + argc));
    }
    std::fprintf(stderr, "tarabix-cli: unknown command '%s'\n", argv[1]);
    return usage(stderr);
}
