#pragma once

#include "playback/PieceRouter.h"

#include <cstdint>
#include <string>

namespace tarabix {

class MidiFile;

struct PieceRenderOptions {
    float speed = 1.0f;
    int32_t midiOctShift = 0;
    int32_t volume = PieceRouter::kDefaultVolume;
    int32_t fromMs = 0;         // where in the piece the render starts, its channels chased there
    int32_t lengthMs = 0;       // how long to render from there (audio ms, before the tail); 0 to the end
    int32_t tailMs = 2000;      // silence after the last event, so the last notes ring out
    std::string soundFontPath;  // empty: the one the built-in synthesizer chooses
};

struct PieceRenderResult {
    bool ok = false;
    std::string error;      // why not, when not ok
    std::string notice;     // set when the SoundFont asked for was passed over for the system's
    int32_t audioMs = 0;    // length of the written audio
    int32_t events = 0;     // channel messages the player delivered
};

// Plays the piece on a virtual clock into the built-in synthesizer without an audio device and
// writes 44.1 kHz stereo 16-bit WAV as fast as the synthesizer computes: the same player and the
// same routing as the window (octave shift, volume, quarter tones from the piece's pitch wheels),
// and the same chase when it starts inside the piece.
// Takes over the output layer (mMidiMain) while it runs and leaves it reset.
PieceRenderResult renderPieceToWav(const MidiFile& piece, const std::string& wavPath,
                                   const PieceRenderOptions& options = {});

}  // namespace tarabix
