#pragma once

#include <QImage>
#include <QSize>

#include <cstdint>

namespace tarabix {

// How many strengths a coming note's mark takes on its way from faint to strong: few enough that
// the fingerboard is redrawn only a few times per note as it comes nearer.
inline constexpr int32_t kLookAheadLevels = 8;
// The highest number a mark carries: one digit fits the mark.
inline constexpr int32_t kLookAheadMostMoments = 9;

// The mark of a coming note: where (its pitch), which moment it belongs to (1 = the next) and how
// strongly it shows (1 faint .. kLookAheadLevels).
struct LookAheadMark {
    int32_t note = 0;
    int32_t cents = 0;
    int32_t moment = 1;
    int32_t level = 1;
    bool operator==(const LookAheadMark&) const = default;
};

// How strongly a note heard msUntilHeard from now shows: the faintest while it is fadeMs or more
// away, the strongest once it is due.
int32_t lookAheadLevel(int32_t msUntilHeard, int32_t fadeMs);

// A coming note's mark, `size` large: a hollow ring with the moment's number, pale blue, at the
// level's strength. Hollow, so that it never looks like a sounding note's finger mark (a filled
// disc with the finger's number), and the wood and strings show through it.
QImage lookAheadPicture(int32_t moment, int32_t level, QSize size);

}  // namespace tarabix
