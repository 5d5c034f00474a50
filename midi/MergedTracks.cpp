#include "midi/MergedTracks.h"

#include "midi/MidiFile.h"

namespace tarabix {

MergedTracks::MergedTracks(const MidiFile* piece)
    : m_piece(piece), m_next(piece ? static_cast<size_t>(piece->numOfTracks()) : 0, 0)
{
}

void MergedTracks::seek(int32_t startMs)
{
    for (size_t t = 0; t < m_next.size(); ++t) {
        const MidiTrack* track = m_piece->tracks(static_cast<int32_t>(t));
        int32_t& i = m_next[t];
        i = 0;
        while (i < track->trkNEvents() && track->trkEvents(i).absMS < startMs)
            ++i;
    }
}

// Only a strictly earlier event replaces the choice, so on equal times the lowest track wins.
int32_t MergedTracks::nextTrack() const
{
    int32_t best = -1;
    int32_t bestMs = 0;
    for (size_t t = 0; t < m_next.size(); ++t) {
        const MidiTrack* track = m_piece->tracks(static_cast<int32_t>(t));
        if (m_next[t] >= track->trkNEvents())
            continue;
        const int32_t ms = track->trkEvents(m_next[t]).absMS;
        if (best < 0 || ms < bestMs) {
            best = static_cast<int32_t>(t);
            bestMs = ms;
        }
    }
    return best;
}

const MidiEvent& MergedTracks::nextEvent(int32_t track) const
{
    return m_piece->tracks(track)->trkEvents(m_next[static_cast<size_t>(track)]);
}

}  // namespace tarabix
