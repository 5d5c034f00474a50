#include "tools/cli/Commands.h"

#include "playback/FluidSynthPort.h"
#include "playback/SoundFontLocator.h"
#include "playback/SynthDiagnostics.h"
#include "playback/mMidiMain.h"

#include <cstdio>

namespace tarabix::cli {

// Lists the MIDI outputs with their ids, "MIDI Mapper" (the built-in synthesizer) first with the
// SoundFont it plays, and says why an output is silent or missing: no SoundFont, the learner's
// SoundFont passed over for the system's, no MIDI sequencer.
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

    FluidSynthPort synth;
    const int32_t synthResult = synth.open();
    // The full load decides whether the chosen file really plays; it is quick with the file's
    // presets read on demand.
    if (synthResult == kMidiOutOk)
        synth.waitUntilReady(30000);
    const std::string soundFont = synth.soundFontPath();
    const std::string silentBecause = synth.failureReason();
    for (const MidiOutDevice& device : listMidiOutDevices()) {
        if (device.id != kMidiMapperId) {
            std::printf("%3d  %s\n", device.id, device.name.c_str());
            continue;
        }
        std::printf("%3d  %s (built-in synthesizer", device.id, device.name.c_str());
        if (!soundFont.empty())
            std::printf(", %s", soundFont.c_str());
        if (silentBecause.empty())
            std::printf(")\n");
        else
            std::printf("): silent, %s\n", silentBecause.c_str());
    }
    if (const std::string notice = synth.notice(); !notice.empty())
        std::printf("     %s\n", notice.c_str());
    if (const std::string problem = midiOutDevicesProblem(); !problem.empty())
        std::printf("     No system MIDI ports: %s.\n", problem.c_str());
    synth.close();
    if (verbose) {
        for (const std::string& line : recentSynthDiagnostics())
            std::printf("     %s\n", line.c_str());
    }
    return 0;
}

}  // namespace tarabix::cli
