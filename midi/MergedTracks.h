#pragma once

#include "midi/MidiEvent.h"

#include <cstdint>
#include <vector>

namespace tarabix {

class MidiFile;

// Walks a piece's tracks as one list in time order: the event with the smallest absMS comes
// next, and on equal times the lowest track, so each track keeps its own order. The player plays
// in this order and the channel chase reads the piece's history in it, so both agree on which of
// two simultaneous settings wins. The piece must outlive the walk; null walks no tracks.
class MergedTracks {
public:
    explicit MergedTracks(const MidiFile* piece = nullptr);

    // Every track back to its first event at or after startMs.
    void seek(int32_t startMs);

    // The track whose event comes next; -1 when every track is used up.
    int32_t nextTrack() const;
    // The next unplayed event of a track that nextTrack returned.
    const MidiEvent& nextEvent(int32_t track) const;
    void advance(int32_t track) { ++m_next[static_cast<size_t>(track)]; }

private:
    const MidiFile* m_piece;
    std::vector<int32_t> m_next;
};

}  // namespace tarabix
