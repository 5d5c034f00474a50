#pragma once

#include "oud/model/mMaqams.h"

#include <optional>

namespace tarabix {

class MidiFile;

// The maqam a piece starts in: its earliest text event that is a valid "Q:" marker for `maqams`
// (on equal times the lowest track, the order the player delivers them in). Empty when the piece
// names none.
std::optional<MaqamMarker> firstMaqamMarker(const MidiFile& piece, const mMaqams& maqams);

}  // namespace tarabix
