#pragma once

#include "playback/mMidiMain.h"

namespace tarabix {

// The program's real outputs: id -1 ("MIDI Mapper") is the built-in synthesizer, ids 0..n-1
// are the system's MIDI output ports.
MidiOutBackend systemMidiOutBackend();

}  // namespace tarabix
