#pragma once

#include <QImage>

namespace tarabix::gen {

// The oud's neck seen from the player, nut at the left: pegbox, nut, dark fingerboard with its
// grain, the six courses, and beyond the playing zone the edge of the spruce soundboard with a
// hint of the rosette. Every string's centre line runs exactly through its nut and end points.
QImage paintFingerboard();

}  // namespace tarabix::gen
