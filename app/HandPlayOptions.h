#pragma once

#include <cstdint>

namespace tarabix {

// The choices for sounding single notes with the mouse and the computer keyboard: what the hand
// player plays by and the mouse and keyboard play dialog edits.
struct HandPlayOptions {
    bool approxQrt = true;       // mouse pitches snap to the nearest quarter tone
    bool playMouseMove = false;  // sliding along a string re-strikes the note
    bool playHilite = true;      // played notes are marked on the fingerboard
    bool doubling = false;       // notes on doubled strings are struck twice
    bool showKbGuides = true;    // the key labels over the fingerboard (not kept between runs)
    int32_t doubleOnMs = 5;      // a doubled note: the first strike's length
    int32_t doubleOffMs = 2;     //   and the silence before the second
};

}  // namespace tarabix
