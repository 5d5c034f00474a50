#pragma once

#include "playback/mMidiMain.h"

#include <string>

namespace tarabix {

// The program's real outputs: id -1 ("MIDI Mapper") is the built-in synthesizer, ids 0..n-1
// are the system's MIDI output ports.
MidiOutBackend systemMidiOutBackend();

// The output latency the built-in synthesizer is opened with from now on (the learner's
// setting); clamped to the allowed range.
void setBuiltInSynthLatencyMs(int ms);
int builtInSynthLatencyMs();

// Plays the built-in synthesizer into a WAV file in real time, through FluidSynth's file driver
// in place of the sound card (the command line's test seam); empty: the sound card again.
void setBuiltInSynthAudioFile(const std::string& wavPath);

}  // namespace tarabix
