#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tarabix {

// The recent complaints of the sound libraries (FluidSynth's log, the ALSA library's errors),
// kept here instead of going to stderr so a dialog or `tarabix-cli devices` can show why there is
// no sound. Thread-safe: FluidSynth logs from its audio and loader threads too.

// Routes every FluidSynth log level, the ALSA library's error output and the domain-less GLib
// log of the libraries under FluidSynth here. Idempotent.
void installSynthDiagnostics();

// Adds one line (newest last); only the most recent lines are kept.
void addSynthDiagnostic(std::string line);

// The kept lines, oldest first.
std::vector<std::string> recentSynthDiagnostics();

// A mark before a call, to get back what the libraries said during it (lines already dropped
// from the kept ones are lost).
uint64_t synthDiagnosticsMark();
std::vector<std::string> synthDiagnosticsSince(uint64_t mark);

void clearSynthDiagnostics();

}  // namespace tarabix
