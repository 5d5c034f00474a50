#include "playback/NextNotes.h"

#include "midi/MidiFile.h"
#include "playback/PieceRouter.h"

#include <algorithm>

namespace tarabix {

namespace {

// How far one look ahead walks past the last note it could list: a few minutes of a dense piece,
// far more than the few moments shown, yet a bound on a long passage of hidden channels only.
constexpr int32_t kMostEventsWalked = 4096;

// Notes sent and not heard yet: the output's delay (a few tens of ms) holds a dense chord or two;
// more means the owner stopped asking, and the oldest cannot be unheard any more.
constexpr size_t kMostSent = 256;

bool isChannelMessage(const MidiEvent& event)
{
    return event.eType == MidiEvent::kChannelMessage && event.eData.size() == 3;
}

uint8_t byteAt(const MidiEvent& event, size_t i)
{
    return static_cast<uint8_t>(event.eData[i]);
}

}  // namespace

NextNotes::NextNotes(const MidiFile* piece)
    : m_piece(piece), m_cursor(piece), m_walk(piece)
{
}

void NextNotes::startAt(int32_t fromMs)
{
    m_sent.clear();
    if (m_piece)
        m_cursor.seek(fromMs);
}

// Walks past the events before the delivered message, as the player passes them (meta and system
// events are not handed over), and past the message itself. Out of step: false. When resyncing,
// other channel messages of the same moment may come first: the player handed them over before.
bool NextNotes::passDelivered(uint8_t status, uint8_t c1, uint8_t c2, int32_t absMs, bool resync)
{
    for (int32_t track = m_cursor.nextTrack(); track >= 0; track = m_cursor.nextTrack()) {
        const MidiEvent& event = m_cursor.nextEvent(track);
        if (event.absMS > absMs)
            return false;
        if (isChannelMessage(event)) {
            const bool same = event.absMS == absMs && byteAt(event, 0) == status && byteAt(event, 1) == c1 &&
                              byteAt(event, 2) == c2;
            if (same) {
                m_cursor.advance(track);
                return true;
            }
            if (!resync || event.absMS != absMs)
                return false;
        }
        m_cursor.advance(track);
    }
    return false;
}

void NextNotes::delivered(uint8_t status, uint8_t c1, uint8_t c2, int32_t absMs, const PieceRouter& router)
{
    if (!m_piece)
        return;
    if (!passDelivered(status, c1, c2, absMs, false)) {
        // Whatever was sent before belongs to another place of the piece.
        m_sent.clear();
        m_cursor.seek(absMs);
        if (!passDelivered(status, c1, c2, absMs, true))
            return;
    }
    const int ch = statusChannel(status);
    const bool noteOn = statusKind(status) == midistatus::kNoteOn && c2 != 0;
    if (!noteOn || !router.channelEnabled(ch))
        return;
    if (m_sent.size() == kMostSent)
        m_sent.erase(m_sent.begin(), m_sent.begin() + kMostSent / 2);
    // The router has routed it: the channel's cents are those it was sent with.
    m_sent.push_back({absMs, ch, c1, router.channelCents(ch)});
}

// Lists a note unless it starts a moment past the query's; false when nothing later can be listed.
bool NextNotes::take(int32_t dueMs, int32_t channel, int32_t note, int32_t cents, const NextNotesQuery& query)
{
    if (query.untilMs && dueMs > *query.untilMs)
        return false;
    if (m_moment == 0 || dueMs != m_momentMs) {
        if (m_moment == query.moments)
            return false;
        ++m_moment;
        m_momentMs = dueMs;
    }
    m_upcoming.push_back({m_moment, dueMs, channel, note, cents});
    return true;
}

const std::vector<UpcomingNote>& NextNotes::upcoming(int32_t heardMs, const PieceRouter& router,
                                                     const NextNotesQuery& query)
{
    m_upcoming.clear();
    m_moment = 0;
    if (!m_piece || query.moments <= 0)
        return m_upcoming;
    const int32_t octaves = router.midiOctShift();

    // Sent, and heard once their time comes.
    m_sent.erase(m_sent.begin(), std::find_if(m_sent.begin(), m_sent.end(), [heardMs](const Sent& s) {
                     return s.absMs > heardMs;
                 }));
    for (const Sent& s : m_sent) {
        const std::optional<int32_t> note = ChannelPitches::shiftedNote(s.key, octaves);
        if (!note || !router.channelShown(s.channel) || !router.channelEnabled(s.channel))
            continue;
        if (!take(s.absMs, s.channel, *note, s.cents, query))
            return m_upcoming;
    }

    // Still to be sent: the router's rules carried forward from its state now.
    ChannelPitches pitches = router.pitches();
    m_walk = m_cursor;
    int32_t walked = 0;
    for (int32_t track = m_walk.nextTrack(); track >= 0 && walked < kMostEventsWalked; track = m_walk.nextTrack()) {
        const MidiEvent& event = m_walk.nextEvent(track);
        if (query.untilMs && event.absMS > *query.untilMs)
            break;
        m_walk.advance(track);
        ++walked;
        if (!isChannelMessage(event))
            continue;
        const uint8_t status = byteAt(event, 0);
        const int ch = statusChannel(status);
        if (!router.channelEnabled(ch))
            continue;
        const PitchStep step = pitches.apply(status, byteAt(event, 1), byteAt(event, 2), octaves);
        if (step.kind != PitchStep::Kind::NoteOn || !router.channelShown(ch) || event.absMS <= heardMs)
            continue;
        if (!take(event.absMS, ch, step.note, step.cents, query))
            break;
        walked = 0;
    }
    return m_upcoming;
}

}  // namespace tarabix
