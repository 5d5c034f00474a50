#include "tools/cli/Commands.h"

#include "playback/FluidSynthPort.h"
#include "playback/SoundFontLocator.h"
#include "playback/SynthDiagnostics.h"
#include "playback/mMidiMain.h"

#include <cstdio>

namespace tarabix::cli {

// Lists the MIDI outputs with their ids, "MIDI Mapper" (the built-in synthesizer) first, and
// says why the built-in synthesizer would be silent when it cannot play.
int devices(const Args& args)
{
    bool verbose = false;
    for (size_t i = 0; i < args.size(); ++i) {
        if (args[i] == "--soundfont" && i + 1 < args.size()) {
            setSoundFontOverride(args[++i]);
        } else if (args[i] == "-v" || args[i] == "--verbose") {
            verbose = true;
        } else {
            std::fprintf(stderr, "usage: tarabix-cli devices [--soundfont FILE] [-v]\n");
            return 2;
        }
    }
    const std::string userSoundFont = soundFontOverride();
    if (!userSoundFont.empty() && findSoundFont() != userSoundFont)
        std::fprintf(stderr, "tarabix-cli: cannot read the SoundFont %s\n", userSoundFont.c_str());

    FluidSynthPort synth;
    const int32_t synthResult = synth.open();
    const std::string soundFont = findSoundFont();
    for (const MidiOutDevice& device : listMidiOutDevices()) {
        if (device.id != kMidiMapperId) {
            std::printf("%3d  %s\n", device.id, device.name.c_str());
            continue;
        }
        std::printf("%3d  %s (built-in synthesizer", device.id, device.name.c_str());
        if (!soundFont.empty())
            std::printf(", %s", soundFont.c_str());
        if (synthResult == kMidiOutOk)
            std::printf(")\n");
        else
            std::printf("): silent, %s\n", synth.failureReason().c_str());
    }
    synth.close();
    if (verbose) {
        for (const std::string& line : recentSynthDiagnostics())
            std::printf("     %s\n", line.c_str());
    }
    return 0;
}

}  // namespace tarabix::cli
