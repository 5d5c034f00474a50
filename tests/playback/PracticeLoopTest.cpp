// The practice room on the virtual clock: loops that keep time, tempo ramps, count-ins, the
// metronome's beats, the learner's requests inside a loop, and the plans that are refused.
#include "PieceBuilder.h"
#include "playback/MidiPlayer.h"
#include "playback/PracticePlan.h"
#include "playback/VirtualClock.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <functional>
#include <string>
#include <vector>

namespace tarabix {
namespace {

using test::notesAt;
using Log = std::vector<std::string>;

// Every note-on heard at its clock time ("1500 n61"); chases, clicks and beats at the player's
// due time while they are raised ("1500 chase 1000"), so the log shows what the owner stamps.
class PracticeLoopTest : public ::testing::Test {
protected:
    PracticeLoopTest()
    {
        const auto due = [this](const std::string& what) { log.push_back(std::to_string(player.currentDueMs()) + " " + what); };
        player.msg = [this](uint8_t, uint8_t c1, uint8_t, int32_t) { log.push_back(std::to_string(clock.now()) + " n" + std::to_string(c1)); };
        player.chase = [due](int32_t fromMs) { due("chase " + std::to_string(fromMs)); };
        player.passStarted = [this](int32_t pass, float speed) {
            char text[48];
            std::snprintf(text, sizeof text, "%d pass %d x%g", clock.now(), pass, static_cast<double>(speed));
            log.push_back(text);
        };
        player.countInBeat = [due](int32_t left, bool accent) { due("click " + std::to_string(left) + (accent ? "!" : "")); };
        player.beatClick = [due](bool downbeat) { due(downbeat ? "down" : "beat"); };
        player.donePB = [this] { log.push_back(std::to_string(clock.now()) + " done"); };
    }

    Log play(const MidiFile& piece, const PracticePlan& plan, float speed = 1.0f, const std::function<void()>& requests = {})
    {
        clock = VirtualClock();
        log.clear();
        player.resetPlayState();
        player.setPlaySpeedRatio(speed);
        player.setPractice(plan);
        if (requests)
            requests();
        player.setTheMidi(&piece);
        player.play();
        return log;
    }

    VirtualClock clock;
    MidiPlayer player{clock.playerClock()};
    Log log;
};

PracticePlan loop(int32_t fromMs, int32_t toMs, int32_t passes, std::optional<TempoRamp> ramp = {}, int32_t countIn = 0)
{
    return {LoopRange{fromMs, toMs}, passes, ramp, countIn};
}

// A loop of 1000..2500 (events at 1000, 1500 and 2200): each pass starts when the last one's B
// was due, at its own speed, and every due time is rounded from one exact reference. Stop,
// reposition and skip keep working inside the loop and its count-in.
TEST_F(PracticeLoopTest, PassesFollowEachOtherWhereBWasDueAndRequestsStillWork)
{
    const MidiFile piece = notesAt({0, 1000, 1500, 2200, 3000});
    struct Case { const char* name; PracticePlan plan; float speed; std::function<void()> request; Log expected; int32_t stopOffset = 0; };
    const Case cases[] = {
        {"at the chosen speed", loop(1000, 2500, 3), 1.0f, {},
         {"0 chase 1000", "0 pass 0 x1", "0 n61", "500 n62", "1200 n63",
          "1500 chase 1000", "1500 pass 1 x1", "1500 n61", "2000 n62", "2700 n63",
          "3000 chase 1000", "3000 pass 2 x1", "3000 n61", "3500 n62", "4200 n63", "4500 done"}},
        {"a ramp from 50 % by 25 % a pass", loop(1000, 2500, 3, TempoRamp{50, 25, 100}), 1.0f, {},
         {"0 chase 1000", "0 pass 0 x0.5", "0 n61", "1000 n62", "2400 n63",
          "3000 chase 1000", "3000 pass 1 x0.75", "3000 n61", "3667 n62", "4600 n63",
          "5000 chase 1000", "5000 pass 2 x1", "5000 n61", "5500 n62", "6200 n63", "6500 done"}},
        {"a third of a second a pass at speed 3: passes at 333 and 667, not 666", loop(1000, 2000, 3), 3.0f, {},
         {"0 chase 1000", "0 pass 0 x3", "0 n61", "167 n62", "333 chase 1000", "333 pass 1 x3", "333 n61", "500 n62",
          "667 chase 1000", "667 pass 2 x3", "667 n61", "833 n62", "1000 done"}},
        {"a start inside the loop plays the first pass from there", loop(1000, 2500, 2), 1.0f,
         [this] { player.setStartOffsetMSecMidi(1500); },
         {"0 chase 1500", "0 pass 0 x1", "0 n62", "700 n63", "1000 chase 1000", "1000 pass 1 x1", "1000 n61",
          "1500 n62", "2200 n63", "2500 done"}},
        {"no loop: the ramp's start, and a count-in of two 500 ms beats", {std::nullopt, 0, TempoRamp{50, 10, 100}, 2},
         1.0f, [this] { player.setStartOffsetMSecMidi(2200); },
         {"0 chase 2200", "0 pass 0 x0.5", "0 click 2!", "1000 click 1", "2000 n63", "3600 n64", "3600 done"}},
        {"a reposition before A plays up to B, then loops", loop(1000, 2500, 2), 1.0f,
         [this] { clock.at(600, [this] { player.reposition(0); }); },
         {"0 chase 1000", "0 pass 0 x1", "0 n61", "500 n62", "600 chase 0", "600 n60", "1600 n61", "2100 n62", "2800 n63",
          "3100 chase 1000", "3100 pass 1 x1", "3100 n61", "3600 n62", "4300 n63", "4600 done"}},
        {"a reposition past B leaves the loop", loop(1000, 2500, 2), 1.0f,
         [this] { clock.at(600, [this] { player.reposition(2800); }); },
         {"0 chase 1000", "0 pass 0 x1", "0 n61", "500 n62", "600 chase 2800", "800 n64", "800 done"}},
        {"a skip of the silence before B starts the next pass at once", loop(1000, 2500, 2), 1.0f,
         [this] { clock.at(1300, [this] { player.skipSilence(); }); },
         {"0 chase 1000", "0 pass 0 x1", "0 n61", "500 n62", "1200 n63", "1300 chase 1000", "1300 pass 1 x1",
          "1300 n61", "1800 n62", "2500 n63", "2800 done"}},
        {"until stopped: a stop in the count-in leaves the pass's start", loop(1000, 2500, 0, std::nullopt, 2), 1.0f,
         [this] { clock.at(2700, [this] { player.stopPlaying(); }); },
         {"0 chase 1000", "0 pass 0 x1", "0 click 2!", "500 click 1", "1000 n61", "1500 n62", "2200 n63",
          "2500 chase 1000", "2500 pass 1 x1", "2500 click 2!", "2700 done"}, 1000},
        {"a loop set while playing, before its B: B loops back from this pass on", {}, 1.0f,
         [this] { clock.at(1200, [this] { player.setPractice(loop(1000, 2500, 2)); }); },
         {"0 chase 0", "0 pass 0 x1", "0 n60", "1000 n61", "1500 n62", "2200 n63",
          "2500 chase 1000", "2500 pass 1 x1", "2500 n61", "3000 n62", "3700 n63", "4000 done"}},
        {"the loop switched off inside it: the piece plays on; a ramp set goes on from the last note",
         loop(1000, 2500, 0), 1.0f,
         [this] { clock.at(600, [this] { player.setPractice({std::nullopt, 0, TempoRamp{50, 10, 100}, 0}); }); },
         {"0 chase 1000", "0 pass 0 x1", "0 n61", "500 n62", "1900 n63", "3500 n64", "3500 done"}},
        {"a stop with the next piece's plan already set: no refusal on the way out", loop(1000, 2500, 0), 1.0f,
         [this] { clock.at(600, [this] { player.stopPlaying(); player.setPractice(loop(1000, 99000, 0)); }); },
         {"0 chase 1000", "0 pass 0 x1", "0 n61", "500 n62", "600 done"}, 2200},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(play(piece, c.plan, c.speed, c.request), c.expected);
        EXPECT_EQ(player.stopOffsetMSec_midi(), c.stopOffset);
    }
}

// A piece in 3/4 at 120 quarters a minute (division 500: a tick a millisecond) whose tempo halves
// at 1000 ms: the count-in clicks the beat at A at the pass's speed; the metronome clicks every
// beat between the events, the tempo change included.
TEST_F(PracticeLoopTest, CountInAndBeatsFollowThePiecesMetre)
{
    MidiFile piece;
    piece.setMidiHdrDivision(500);
    EventList events;
    events.meta(0, 0, 0x58, std::string{3, 2, 24, 8}).tempo(0, 1000, 1000000);
    for (const auto& [tick, note] : {std::pair{0, 60}, {500, 61}, {1000, 62}, {1250, 63}, {1500, 64}})
        events.channel(1, tick, 0x90, static_cast<uint8_t>(note), 100);
    ASSERT_EQ(piece.setFromList(events.events()), 0);

    struct Case { const char* name; PracticePlan plan; bool everyBeat; Log expected; };
    const Case cases[] = {
        {"every beat, in time order with the notes", {}, true,
         {"0 chase 0", "0 pass 0 x1", "0 down", "0 n60", "500 beat", "500 n61", "1000 beat", "1000 n62", "1500 n63",
          "2000 down", "2000 n64", "2000 done"}},
        {"three clicks before each pass, at 50 % then 100 %", loop(500, 1500, 2, TempoRamp{50, 50, 100}, 3), false,
         {"0 chase 500", "0 pass 0 x0.5", "0 click 3!", "1000 click 2", "2000 click 1", "3000 n61", "4000 n62",
          "5000 chase 500", "5000 pass 1 x1", "5000 click 3!", "5500 click 2", "6000 click 1", "6500 n61", "7000 n62",
          "7500 done"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        player.setClickEveryBeat(c.everyBeat);
        EXPECT_EQ(play(piece, c.plan), c.expected);
    }
}

TEST(PracticePlan, RefusesWhatCannotBePlayedInWordsForTheLearner)
{
    struct Case { PracticePlan plan; const char* problem; };
    const Case cases[] = {
        {loop(0, 60000, 0, TempoRamp{25, 1, 200}, 16), nullptr},
        {{std::nullopt, 0, TempoRamp{100, 5, 100}, 0}, nullptr},
        {loop(5000, 5000, 1), "The loop's end (B) must come after its start (A)."},
        {loop(-1, 5000, 1), "The loop must lie inside the piece, which runs from 0:00.0 to 1:00.0."},
        {loop(1000, 60001, 1), "The loop must lie inside the piece, which runs from 0:00.0 to 1:00.0."},
        {loop(1000, 1099, 1), "The loop must be at least 100 milliseconds long."},
        {loop(1000, 2000, -1), "The number of passes cannot be negative."},
        {loop(1000, 2000, 1, TempoRamp{24, 5, 100}), "The tempo ramp must start between 25 % and 200 % of the chosen speed."},
        {loop(1000, 2000, 1, TempoRamp{100, 5, 201}), "The tempo ramp cannot go above 200 % of the chosen speed."},
        {loop(1000, 2000, 1, TempoRamp{110, 5, 100}), "The tempo ramp starts at 110 %, above the most it may reach (100 %)."},
        {loop(1000, 2000, 1, TempoRamp{50, 0, 100}), "The tempo ramp must speed up by at least 1 % a pass."},
        {{std::nullopt, 0, std::nullopt, 17}, "The count-in must be 0 to 16 beats."},
        {{std::nullopt, 0, std::nullopt, -1}, "The count-in must be 0 to 16 beats."},
    };
    for (const Case& c : cases) {
        const auto problem = practicePlanProblem(c.plan, 60000);
        EXPECT_EQ(problem.value_or("none"), c.problem ? c.problem : "none");
    }
}

}  // namespace
}  // namespace tarabix
