// The look-ahead's notes: what NextNotes foretells while a piece plays, against what the router
// then really marks.
#include "PieceBuilder.h"
#include "playback/MidiPlayer.h"
#include "playback/NextNotes.h"
#include "playback/PieceRouter.h"
#include "playback/VirtualClock.h"

#include <gtest/gtest.h>

#include <optional>
#include <vector>

namespace tarabix {
namespace {

using Notes = std::vector<UpcomingNote>;

// The notes of `marked` (every shown note-on as the router sent it, in playing order) heard after
// heardMs, in the query's moments.
Notes markedAfter(const Notes& marked, int32_t heardMs, const NextNotesQuery& query)
{
    Notes result;
    for (const UpcomingNote& n : marked) {
        if (n.dueMs <= heardMs)
            continue;
        const bool newMoment = result.empty() || n.dueMs != result.back().dueMs;
        if ((query.untilMs && n.dueMs > *query.untilMs) || (newMoment && result.size() && result.back().moment == query.moments))
            break;
        result.push_back({result.empty() ? 1 : result.back().moment + newMoment, n.dueMs, n.channel, n.note, n.cents});
    }
    return result;
}

// Channel 0: wheels set the quarter tone between notes, one during a held note is ignored; 60 and
// 64 at 600 ms make a chord with channel 1's 48. Channel 1 also has a note the octave down takes
// off the keyboard. Channel 2 (muted) and 9 (percussion, hidden) play and move wheels in between;
// channel 3 is hidden. One millisecond per tick, two tracks, text events between.
MidiFile busyPiece()
{
    EventList e;
    e.meta(0, 0, 0x01, "Q:Rast/0").pitchWheel(0, 0, 0, 50.0).channel(0, 0, 0x90, 60, 90).channel(0, 100, 0x80, 60, 0);
    e.pitchWheel(0, 100, 0, -50.0).channel(0, 200, 0x90, 64, 90).pitchWheel(0, 250, 0, 0.0);
    e.channel(0, 300, 0x90, 65, 90).channel(0, 400, 0x80, 64, 0).channel(0, 400, 0x80, 65, 0).pitchWheel(0, 450, 0, 50.0);
    e.channel(0, 600, 0x90, 60, 90).channel(0, 600, 0x90, 64, 90).channel(0, 700, 0x80, 60, 0).channel(0, 700, 0x80, 64, 0);
    e.channel(0, 900, 0x90, 67, 90).channel(0, 1000, 0x80, 67, 0);
    e.channel(1, 150, 0x91, 10, 90).channel(1, 160, 0x81, 10, 0).channel(1, 600, 0x91, 48, 90).channel(1, 800, 0x81, 48, 0);
    e.pitchWheel(1, 500, 2, 50.0).channel(1, 550, 0x92, 62, 90).channel(1, 560, 0x82, 62, 0);
    e.channel(1, 350, 0x99, 36, 90).channel(1, 800, 0x99, 38, 90).meta(1, 750, 0x01, "a lyric");
    e.pitchWheel(1, 300, 3, -50.0).channel(1, 850, 0x93, 55, 90).channel(1, 870, 0x83, 55, 0);
    return test::pieceFrom(e);
}

// The player, the router and the walk joined as the window joins them, on a virtual clock without
// output. After every event handed over, the foretold notes heard after a moment lagMs behind it
// (the output's delay) are the ones the router marks later, with its notes, channels and cents:
// for every way of asking, from the start and from inside the piece, told of the start or finding
// it out, up to the end, where nothing is left.
TEST(NextNotes, ForetellWhatTheRouterMarksLater)
{
    const MidiFile piece = busyPiece();
    struct Start { int32_t fromMs; bool told; };
    for (const NextNotesQuery query : {NextNotesQuery{1, {}}, NextNotesQuery{2, {}}, NextNotesQuery{3, {}}, NextNotesQuery{9, 300}})
        for (const int32_t lagMs : {0, 40})
            for (const Start start : {Start{0, true}, Start{420, true}, Start{420, false}, Start{610, false}}) {
                SCOPED_TRACE(testing::Message() << "moments " << query.moments << (query.untilMs ? " within" : "") << ", lag "
                                                << lagMs << ", from " << start.fromMs << (start.told ? "" : " untold"));
                VirtualClock clock;
                MidiPlayer player{clock.playerClock()};
                PieceRouter router;
                NextNotes next(&piece);
                router.setChannelEnabled(2, false);
                router.setChannelShown(3, false);
                router.setMidiOctShift(-1);
                Notes marked;
                std::vector<std::pair<int32_t, Notes>> foretold;  // heard at, foretold then
                int32_t deliveredMs = 0;
                router.markNote = [&](int ch, int note, int32_t cents) { marked.push_back({0, deliveredMs, ch, note, cents}); };
                player.chase = [&](int32_t fromMs) {
                    router.startFrom(&piece, fromMs);
                    if (start.told)
                        next.startAt(fromMs);
                };
                player.msg = [&](uint8_t status, uint8_t c1, uint8_t c2, int32_t absMs) {
                    deliveredMs = absMs;
                    router.route(status, c1, c2);
                    next.delivered(status, c1, c2, absMs, router);
                    const int32_t heardMs = absMs - lagMs;
                    const NextNotesQuery asked{query.moments, query.untilMs ? std::optional(heardMs + *query.untilMs) : std::nullopt};
                    foretold.emplace_back(heardMs, next.upcoming(heardMs, router, asked));
                };
                player.resetPlayState();
                player.setTheMidi(&piece);
                player.setStartOffsetMSecMidi(start.fromMs);
                player.play();

                ASSERT_FALSE(marked.empty());
                for (const auto& [heardMs, notes] : foretold) {
                    const NextNotesQuery asked{query.moments, query.untilMs ? std::optional(heardMs + *query.untilMs) : std::nullopt};
                    ASSERT_EQ(notes, markedAfter(marked, heardMs, asked)) << "heard at " << heardMs;
                }
                EXPECT_TRUE(foretold.back().second.empty());
            }
}

// The rule by hand: a wheel between notes sets the quarter tone of the next note-on, one during a
// held note does not; a chord is one moment; the octave shift moves the notes.
TEST(NextNotes, TheWheelInForceAtEachNoteOnGivesItsQuarterTone)
{
    EventList e;
    e.pitchWheel(0, 0, 0, 50.0).channel(0, 0, 0x90, 60, 90).pitchWheel(0, 50, 0, -50.0);
    e.channel(0, 100, 0x90, 62, 90).channel(0, 100, 0x90, 69, 90).channel(0, 150, 0x80, 60, 0);
    e.channel(0, 200, 0x80, 62, 0).channel(0, 200, 0x80, 69, 0).pitchWheel(0, 200, 0, -50.0).channel(0, 300, 0x90, 64, 90);
    const MidiFile piece = test::pieceFrom(e);
    PieceRouter router;
    for (const int32_t up : {0, 12}) {
        router.setMidiOctShift(up / 12);
        NextNotes next(&piece);
        next.startAt(0);
        EXPECT_EQ(next.upcoming(-1, router, {3, {}}),
                  (Notes{{1, 0, 0, 60 + up, 50}, {2, 100, 0, 62 + up, 50}, {2, 100, 0, 69 + up, 50}, {3, 300, 0, 64 + up, -50}}));
        EXPECT_EQ(next.upcoming(50, router, {3, 100}), (Notes{{1, 100, 0, 62 + up, 50}, {1, 100, 0, 69 + up, 50}}));
    }
}

}  // namespace
}  // namespace tarabix
