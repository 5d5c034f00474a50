#pragma once

#include "midi/MergedTracks.h"
#include "playback/ChannelPitches.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace tarabix {

class MidiFile;
class PieceRouter;

// A note-on still to be heard, as it will sound.
struct UpcomingNote {
    int32_t moment = 0;   // 1 for the next moment, 2 for the one after; a chord's notes share one
    int32_t dueMs = 0;    // piece time at normal speed
    int32_t channel = 0;
    int32_t note = 0;     // moved by the octave shift
    int32_t cents = 0;    // the channel's shift in force at its note-on
    bool operator==(const UpcomingNote&) const = default;
};

// Which coming notes to list: those of the first `moments` moments (notes due at the same
// millisecond are one moment), and when untilMs is given only those due no later than it.
struct NextNotesQuery {
    int32_t moments = 1;
    std::optional<int32_t> untilMs;
};

// The notes of a piece that come next, for the look-ahead marks. It walks the piece in the
// player's order, one step behind it: the owner tells it each channel message the player handed
// to the router (delivered) and each start or jump (startAt). The notes still to be handed over
// get their quarter tones from the router's channel state now, carried forward over the messages
// before them by the router's own rules (ChannelPitches); the notes handed over but not heard yet
// (the output sounds them a little later) are remembered with the shift they were sent with.
// Muted channels are passed over as the router drops them; hidden ones are heard but not listed.
//
// Each call costs a few events' walk, not a scan of the piece: the walk goes from where the player
// stands, and gives up after a few thousand events with nothing more to list (a long passage on
// hidden channels only). The piece must outlive the walk; null lists nothing.
class NextNotes {
public:
    explicit NextNotes(const MidiFile* piece = nullptr);

    const MidiFile* piece() const { return m_piece; }

    // The player starts at fromMs (or jumps there): nothing from there on has been handed over.
    void startAt(int32_t fromMs);

    // The player has handed this channel message of absMs to the router, which has routed it.
    // A message that is not the next one the walk expects (a jump it was not told of, or the
    // look-ahead switched on while playing) moves the walk to it.
    void delivered(uint8_t status, uint8_t c1, uint8_t c2, int32_t absMs, const PieceRouter& router);

    // The note-ons due after heardMs (the piece time being heard now), in time order, with the
    // router's channels, octave shift and state as they are now.
    const std::vector<UpcomingNote>& upcoming(int32_t heardMs, const PieceRouter& router, const NextNotesQuery& query);

private:
    // A note-on handed over and not heard yet.
    struct Sent {
        int32_t absMs = 0;
        int32_t channel = 0;
        int32_t key = 0;  // before the octave shift, which may change before it is heard
        int32_t cents = 0;
    };

    bool passDelivered(uint8_t status, uint8_t c1, uint8_t c2, int32_t absMs, bool resync);
    bool take(int32_t dueMs, int32_t channel, int32_t note, int32_t cents, const NextNotesQuery& query);

    const MidiFile* m_piece;
    MergedTracks m_cursor;  // at the first event the player has not handed over
    std::vector<Sent> m_sent;
    // Scratch of upcoming(), kept so that a call allocates nothing once the piece has played a while.
    MergedTracks m_walk;
    std::vector<UpcomingNote> m_upcoming;
    int32_t m_moment = 0;
    int32_t m_momentMs = 0;
};

}  // namespace tarabix
