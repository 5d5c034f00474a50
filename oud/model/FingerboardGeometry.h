#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "oud/model/Tunings.h"

namespace tarabix {

// The fingerboard picture is 743 x 188 pixels; every point here is a pixel of it, origin top-left.
inline constexpr int32_t kPictureWidth = 743;
inline constexpr int32_t kPictureHeight = 188;

// Orientations (the "UdOrient" setting): bit 0 turns the picture upside down, bit 1 left to right.
inline constexpr int32_t kRightPlayerView = 0;
inline constexpr int32_t kRightMirrorView = 1;
inline constexpr int32_t kLeftPlayerView = 2;
inline constexpr int32_t kLeftMirrorView = 3;
inline constexpr int32_t kFlipVertical = 1;
inline constexpr int32_t kFlipHorizontal = 2;

// Quarter-tone pitch numbers 0..254 (2 x MIDI note, plus 1 for the quarter tone above).
inline constexpr int32_t kPositionCount = 255;
// The playing zone of each string: seven semitones, fourteen quarter tones above the open string.
inline constexpr int32_t kZoneQuarterTones = 14;

struct PicPoint {
    int32_t x = 0;
    int32_t y = 0;
    bool operator==(const PicPoint&) const = default;
};

// A point in picture units; the window may pass fractions when its picture is scaled.
struct PicPointF {
    double x = 0.0;
    double y = 0.0;
};

// Nut (open-string end) and end of the playing zone of each string as drawn in the picture,
// string 0 (the lowest) first.
inline constexpr std::array<PicPoint, kMaxStrings> kStringNut = {
    PicPoint{59, 153}, PicPoint{59, 134}, PicPoint{59, 111}, PicPoint{59, 87}, PicPoint{59, 65}, PicPoint{59, 43}};
inline constexpr std::array<PicPoint, kMaxStrings> kStringEnd = {
    PicPoint{678, 171}, PicPoint{678, 143}, PicPoint{678, 113}, PicPoint{678, 81}, PicPoint{678, 51}, PicPoint{678, 23}};

// Where a point of the picture's own drawing lies once the picture is shown in `orientation`.
PicPoint orientPoint(PicPoint p, int32_t orientation);

struct NotePitch {
    int32_t note = 0;   // MIDI note, 60 = C4
    int32_t cents = 0;  // above the note
    bool operator==(const NotePitch&) const = default;
};

// Brings the cents into 0..99, moving whole semitones into the note: (60, -50) -> (59, 50).
void normalizePitch(int32_t& note, int32_t& cents);

// Fraction of the whole sounding length (nut to bridge) between the nut and the stop that sounds
// `quarterTones` above the open string (a fraction of a quarter tone for pitches off the grid).
double stopFraction(double quarterTones);

// stopFraction of the seventh semitone: the playing zone drawn from nut to end point.
double zoneLength();

// The point of the stop `quarterTones` above the open string on the string drawn from `nut` to
// `end` (the end of the seven-semitone zone), halves rounded to even. Every place the fingerboard
// shows comes from here: the position table, pitches between its entries and the key labels.
PicPoint stopPoint(PicPoint nut, PicPoint end, double quarterTones);

// How many cents above the open string a stop at zone fraction t sounds (the inverse of
// zoneFraction, in cents, rounded halves to even). Empty where t lies beyond any real stop.
std::optional<int32_t> centsAtZoneFraction(double t);

}  // namespace tarabix
