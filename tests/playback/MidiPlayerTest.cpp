#include "PieceBuilder.h"
#include "midi/MidiError.h"
#include "playback/MidiPlayer.h"
#include "playback/VirtualClock.h"

#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace tarabix {
namespace {

using test::notesAt;
using Log = std::vector<std::string>;

// Every event the owner hears, with the clock time it heard it at: "120 n61@100" is note 61
// (absMS 100) delivered at clock time 120.
class MidiPlayerTest : public ::testing::Test {
protected:
    MidiPlayerTest()
    {
        player.msg = [this](uint8_t status, uint8_t c1, uint8_t, int32_t absMSec) {
            log.push_back(std::to_string(clock.now()) + (status == 0x90 ? " n" : " s") + std::to_string(c1) + "@" +
                          std::to_string(absMSec));
            if (const auto it = afterEvent.find(absMSec); it != afterEvent.end())
                it->second();
        };
        player.meta = [this](int16_t track, uint8_t type, const std::string& txt, int32_t absMSec) {
            log.push_back(std::to_string(clock.now()) + " meta" + std::to_string(track) + "." + std::to_string(type) +
                          " " + txt + "@" + std::to_string(absMSec));
        };
        player.silenceAlert = [this](int32_t ms) { log.push_back("silence " + std::to_string(ms)); };
        player.donePB = [this] { log.push_back("done"); };
        player.resetPlayState();
    }

    VirtualClock clock;
    MidiPlayer player{clock.playerClock()};
    // Run by the handler after it heard the event at that absMS (a slow handler, a button...).
    std::map<int32_t, std::function<void()>> afterEvent;
    Log log;
};

// Requests made before the play: settings, actions at clock times and actions of the handler.
// Silence alerts are off unless a case asks for them.
TEST_F(MidiPlayerTest, DeliversEachEventAtItsTime)
{
    struct Case { const char* name; std::optional<MidiFile> piece; std::function<void()> requests; Log expected; };
    const auto lateBy = [this](int32_t ms, float tolerance) {
        return [this, ms, tolerance] {
            player.setCatchUpTolerance(tolerance);
            afterEvent[100] = [this, ms] { clock.advanceTo(200 + ms); };  // the event at 200 is found late
        };
    };
    const Case cases[] = {
        {"equal times in two tracks: the lower track first",
         test::pieceOf({{100, 0x90, 72, 1, 2}, {50, 0x90, 71, 1, 1}, {100, 0x90, 73, 1, 1}, {100, 0x90, 70, 1}, {150, 0x90, 74, 1}}),
         [] {},
         {"50 n71@50", "100 n70@100", "100 n73@100", "100 n72@100", "150 n74@150", "done"}},
        {"no file", std::nullopt, [] {}, {"done"}},
        {"text-like meta events are raised, the rest consumed silently",
         test::pieceFrom(EventList().meta(0, 0, 0x03, "Oud").meta(1, 0, 0x51, std::string("\x07\xA1\x20", 3)).meta(1, 10, 0x01, "Q:Rast/0")
             .meta(1, 20, 0x07, "cue").meta(1, 20, 0x08, "not text-like").channel(1, 30, 0xC0, 5, 0)),
         [] {}, {"0 meta0.3 Oud@0", "10 meta1.1 Q:Rast/0@10", "20 meta1.7 cue@20", "30 s5@30", "done"}},
        {"a stop from a handler takes effect before the next event", notesAt({0, 100, 100, 200}),
         [this] { afterEvent[100] = [this] { player.stopPlaying(); }; },
         {"0 n60@0", "100 n61@100", "done"}},
        {"half speed from an offset, the first event at once; speed 2 set later counts from the last event",
         notesAt({0, 100, 150, 300, 400, 500}),
         [this] {
             player.setPlaySpeedRatio(0.5f);
             player.setStartOffsetMSecMidi(100);
             afterEvent[300] = [this] { player.setPlaySpeedRatio(2.0f); };
             clock.at(230, [] {});  // the user interface handles something mid-wait: no effect on time
         },
         {"0 n61@100", "100 n62@150", "400 n63@300", "450 n64@400", "500 n65@500", "done"}},
        {"21 ms late catches up", notesAt({0, 100, 200, 300}), lateBy(21, 1.0f),
         {"0 n60@0", "100 n61@100", "221 n62@200", "321 n63@300", "done"}},
        {"20 ms late moves nothing", notesAt({0, 100, 200, 300}), lateBy(20, 1.0f),
         {"0 n60@0", "100 n61@100", "220 n62@200", "300 n63@300", "done"}},
        {"40 ms late with half tolerance", notesAt({0, 100, 200, 300}), lateBy(40, 0.5f),
         {"0 n60@0", "100 n61@100", "240 n62@200", "320 n63@300", "done"}},
        {"silence alerts only for waits of at least the minimum", notesAt({0, 100, 100, 250}),
         [this] { player.setMinSilenceAlertMS(120); },
         {"0 n60@0", "100 n61@100", "100 n62@100", "silence 150", "250 n63@250", "done"}},
        {"reposition between two events while playing", notesAt({0, 100, 200, 300, 400, 500}),
         [this] { clock.at(50, [this] { player.reposition(150); }); },
         {"0 n60@0", "100 n62@200", "200 n63@300", "300 n64@400", "400 n65@500", "done"}},
        {"a skip drops the rest of one silence", notesAt({0, 1000, 1100, 2100}),
         [this] { clock.at(300, [this] { player.skipSilence(); }); },
         {"0 n60@0", "300 n61@1000", "400 n62@1100", "1400 n63@2100", "done"}},
        {"requests made while idle are lost", notesAt({0, 100, 200}),
         [this] {
             player.stopPlaying();
             player.skipSilence();
             player.reposition(150);
         },
         {"0 n60@0", "100 n61@100", "200 n62@200", "done"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        clock = VirtualClock();
        log.clear();
        afterEvent.clear();
        player.resetPlayState();
        player.setMinSilenceAlertMS(std::numeric_limits<int32_t>::max());
        c.requests();
        player.setTheMidi(c.piece ? &*c.piece : nullptr);
        player.play();
        EXPECT_EQ(log, c.expected);
    }
}

TEST_F(MidiPlayerTest, TimeArithmeticFaultsRaiseTheirErrors)
{
    const MidiFile piece = notesAt({0, 1000000});
    player.setTheMidi(&piece);
    for (const auto& [speed, error] : {std::pair{0.0f, midierr::kDivisionByZero}, {0.0001f, midierr::kOverflow}}) {
        player.setPlaySpeedRatio(speed);
        try {
            player.play();
            ADD_FAILURE() << "no error raised at speed " << speed;
        } catch (const MidiError& e) {
            EXPECT_EQ(e.number(), error);
        }
    }
}

}  // namespace
}  // namespace tarabix
