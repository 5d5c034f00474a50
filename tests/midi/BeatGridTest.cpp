// Where a piece's beats fall: the count-in's and the metronome's clicks.
#include "midi/BeatGrid.h"
#include "midi/EventList.h"
#include "midi/MidiFile.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

namespace tarabix {

// "1800D": a downbeat at 1800 ms.
static void PrintTo(const BeatTime& beat, std::ostream* out)
{
    *out << beat.ms << (beat.downbeat ? "D" : "");
}

namespace {

// Each case: a piece's division and events, the beats from..until, and the beat at `from`.
TEST(BeatGrid, BeatsFollowTheSignaturesClickAndTheTempoMap)
{
    struct Case {
        const char* name;
        int16_t division;
        EventList events;
        int32_t fromMs, untilMs;
        std::vector<BeatTime> beats;
        BeatAt beatAtFrom;
    };
    const auto T = [](int32_t ms) { return BeatTime{ms, false}; };
    const auto D = [](int32_t ms) { return BeatTime{ms, true}; };
    const Case cases[] = {
        {"6/8 clicked in dotted quarters at 100 quarters a minute", 480,
         EventList().tempo(0, 0, 600000).meta(0, 0, 0x58, std::string{6, 3, 36, 8}).channel(0, 2880, 0x90, 60, 1),
         0, 100000, {D(0), T(900), D(1800), T(2700), D(3600)}, {900, 2}},
        {"3/4 from the middle of a 4/4 bar starts a bar there; beats from 900 ms to 2300", 480,
         EventList().meta(0, 1200, 0x58, std::string{3, 2, 24, 8}).channel(1, 3000, 0x90, 60, 1),
         900, 2300, {T(1000), D(1250), T(1750), T(2250)}, {500, 4}},
        {"the tempo doubles a beat's length from its tick on", 500,
         EventList().tempo(0, 1000, 1000000).channel(0, 2000, 0x90, 60, 1), 0, 100000,
         {D(0), T(500), T(1000), T(2000), D(3000)}, {500, 4}},
        {"a piece timed in SMPTE frames keeps 500 ms beats whatever its tempo", MidiFile::kDefaultDivision,
         EventList().tempo(0, 0, 1000000).channel(0, 2000, 0x90, 60, 1), 0, 100000,
         {D(0), T(500), T(1000), T(1500), D(2000)}, {500, 4}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        MidiFile piece;
        piece.setMidiHdrDivision(c.division);
        ASSERT_EQ(piece.setFromList(c.events.events()), 0);
        const BeatGrid grid(piece);
        EXPECT_EQ(grid.beats(c.fromMs, c.untilMs), c.beats);
        EXPECT_EQ(grid.beatAt(c.fromMs), c.beatAtFrom);
    }
}

}  // namespace
}  // namespace tarabix
