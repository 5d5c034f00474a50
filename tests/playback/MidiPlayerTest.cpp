#include "PieceBuilder.h"
#include "midi/MidiError.h"
#include "playback/MidiPlayer.h"
#include "playback/VirtualClock.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tarabix {
namespace {

using testing::PieceBuilder;
using Log = std::vector<std::string>;

// A piece of single notes on track 0: note n + 60 at times[n].
MidiFile notesAt(const std::vector<int32_t>& times)
{
    PieceBuilder b;
    for (size_t i = 0; i < times.size(); ++i)
        b.noteOn(0, times[i], static_cast<uint8_t>(60 + i));
    return b.build();
}

// Every event the owner hears, with the clock time it heard it at: "120 n61@100" is note 61
// (absMS 100) delivered at clock time 120.
class MidiPlayerTest : public ::testing::Test {
protected:
    MidiPlayerTest()
    {
        player.msg = [this](uint8_t status, uint8_t c1, uint8_t, int32_t absMSec) {
            log.push_back(std::to_string(clock.now()) + (status == 0x90 ? " n" : " s") + std::to_string(c1) + "@" +
                          std::to_string(absMSec));
            if (onMsg)
                onMsg(absMSec);
        };
        player.meta = [this](int16_t track, uint8_t type, const std::string& txt, int32_t absMSec) {
            log.push_back(std::to_string(clock.now()) + " meta" + std::to_string(track) + "." + std::to_string(type) +
                          " " + txt + "@" + std::to_string(absMSec));
        };
        player.silenceAlert = [this](int32_t ms) { log.push_back("silence " + std::to_string(ms)); };
        player.donePB = [this] { log.push_back("done"); };
        player.resetPlayState();
    }

    void play(const MidiFile& piece)
    {
        player.setTheMidi(&piece);
        player.play();
    }

    // Only the deliveries, without the silence alerts.
    Log deliveries() const
    {
        Log out;
        for (const std::string& line : log) {
            if (line.rfind("silence", 0) != 0)
                out.push_back(line);
        }
        return out;
    }

    VirtualClock clock;
    MidiPlayer player{clock.playerClock()};
    std::function<void(int32_t absMSec)> onMsg;
    Log log;
};

TEST_F(MidiPlayerTest, MergesTracksByTimeWithTheLowerTrackFirstOnEqualTimes)
{
    const MidiFile piece = PieceBuilder()
                               .noteOn(2, 100, 72)
                               .noteOn(1, 50, 71)
                               .noteOn(1, 100, 73)
                               .noteOn(0, 100, 70)
                               .noteOn(0, 150, 74)
                               .build();
    play(piece);
    EXPECT_EQ(deliveries(), (Log{"50 n71@50", "100 n70@100", "100 n73@100", "100 n72@100", "150 n74@150", "done"}));
}

TEST_F(MidiPlayerTest, NothingButDonePBWhenThereIsNothingToPlay)
{
    const MidiFile piece = notesAt({0, 100, 200});
    const MidiFile oneEmptyTrack;
    struct Case {
        const char* name;
        const MidiFile* file;
        int32_t start;
    } cases[] = {
        {"start past the last event", &piece, 201},
        {"a file with one empty track", &oneEmptyTrack, 0},
        {"no file", nullptr, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        log.clear();
        player.setStartOffsetMSecMidi(c.start);
        player.setTheMidi(c.file);
        player.play();
        EXPECT_EQ(log, Log{"done"});
    }
}

TEST_F(MidiPlayerTest, StartsAtTheOffsetWithTheFirstEventDueAtOnce)
{
    clock.advanceTo(1000);
    player.setStartOffsetMSecMidi(100);
    play(notesAt({0, 100, 250}));
    EXPECT_EQ(deliveries(), (Log{"1000 n61@100", "1150 n62@250", "done"}));
}

TEST_F(MidiPlayerTest, StopDuringAWaitLeavesTheEventForTheResume)
{
    const MidiFile piece = notesAt({0, 100, 200});
    clock.at(50, [this] { player.stopPlaying(); });
    play(piece);
    EXPECT_EQ(log, (Log{"0 n60@0", "silence 100", "done"}));
    EXPECT_EQ(player.stopOffsetMSec_midi(), 100);

    log.clear();
    player.setStartOffsetMSecMidi(player.stopOffsetMSec_midi());
    player.play();
    EXPECT_EQ(deliveries(), (Log{"50 n61@100", "150 n62@200", "done"}));
}

TEST_F(MidiPlayerTest, StopFromAHandlerTakesEffectAtTheNextEvent)
{
    onMsg = [this](int32_t absMSec) {
        if (absMSec == 100)
            player.stopPlaying();
    };
    play(notesAt({0, 100, 100, 200}));
    EXPECT_EQ(deliveries(), (Log{"0 n60@0", "100 n61@100", "done"}));
    EXPECT_EQ(player.stopOffsetMSec_midi(), 100);
}

TEST_F(MidiPlayerTest, SpeedSetHalfwayHalvesTheIntervalsFromTheLastDeliveredEvent)
{
    onMsg = [this](int32_t absMSec) {
        if (absMSec == 400)
            player.setPlaySpeedRatio(2.0f);
    };
    clock.at(230, [] {});  // the user interface handles something mid-wait: no effect on time
    play(notesAt({0, 100, 200, 300, 400, 500, 600, 800}));
    EXPECT_EQ(deliveries(), (Log{"0 n60@0", "100 n61@100", "200 n62@200", "300 n63@300", "400 n64@400",
                                 "450 n65@500", "500 n66@600", "600 n67@800", "done"}));
}

TEST_F(MidiPlayerTest, SlowerSpeedFromAnOffsetStretchesTheWholeSchedule)
{
    player.setPlaySpeedRatio(0.5f);
    player.setStartOffsetMSecMidi(100);
    play(notesAt({0, 100, 150, 300}));
    EXPECT_EQ(deliveries(), (Log{"0 n61@100", "100 n62@150", "400 n63@300", "done"}));
}

TEST_F(MidiPlayerTest, CatchUpMovesTheScheduleOnlyBeyondTwentyMsLate)
{
    struct Case {
        int32_t lateMs;
        float tolerance;
        int32_t lastDeliveredAt;  // the event at 300 ms
    } cases[] = {
        {21, 1.0f, 321},
        {20, 1.0f, 300},
        {40, 0.5f, 320},
        {30, 0.0f, 300},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE("late " + std::to_string(c.lateMs) + " ms, tolerance " + std::to_string(c.tolerance));
        VirtualClock lateClock;
        MidiPlayer p(lateClock.playerClock());
        p.resetPlayState();
        p.setCatchUpTolerance(c.tolerance);
        Log heard;
        p.msg = [&](uint8_t, uint8_t, uint8_t, int32_t absMSec) {
            heard.push_back(std::to_string(lateClock.now()) + "@" + std::to_string(absMSec));
            if (absMSec == 100)  // a slow handler: the event at 200 is found late
                lateClock.advanceTo(200 + c.lateMs);
        };
        const MidiFile piece = notesAt({0, 100, 200, 300});
        p.setTheMidi(&piece);
        p.play();
        const std::string late = std::to_string(200 + c.lateMs) + "@200";
        EXPECT_EQ(heard, (Log{"0@0", "100@100", late, std::to_string(c.lastDeliveredAt) + "@300"}));
    }
}

TEST_F(MidiPlayerTest, SilenceAlertsBeforeEveryWaitOfAtLeastTheMinimum)
{
    struct Case {
        int32_t minimum;
        Log expected;
    } cases[] = {
        {0, {"0 n60@0", "silence 100", "100 n61@100", "100 n62@100", "silence 150", "250 n63@250", "done"}},
        {120, {"0 n60@0", "100 n61@100", "100 n62@100", "silence 150", "250 n63@250", "done"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE("minimum " + std::to_string(c.minimum));
        VirtualClock fresh;
        clock = fresh;
        log.clear();
        player.resetPlayState();
        player.setMinSilenceAlertMS(c.minimum);
        play(notesAt({0, 100, 100, 250}));
        EXPECT_EQ(log, c.expected);
    }
}

TEST_F(MidiPlayerTest, RepositionWhilePlayingGoesOnFromTheTargetWithoutDonePB)
{
    const MidiFile piece = notesAt({0, 100, 200, 300, 400, 500});
    clock.at(150, [this] { player.reposition(400); });
    play(piece);
    EXPECT_EQ(deliveries(), (Log{"0 n60@0", "100 n61@100", "150 n64@400", "250 n65@500", "done"}));

    log.clear();
    player.setStartOffsetMSecMidi(0);
    clock.at(clock.now() + 50, [this] { player.reposition(150); });
    play(piece);
    EXPECT_EQ(deliveries(), (Log{"250 n60@0", "350 n62@200", "450 n63@300", "550 n64@400", "650 n65@500", "done"}));
}

TEST_F(MidiPlayerTest, SkipDropsTheRestOfOneSilence)
{
    clock.at(300, [this] { player.skipSilence(); });
    play(notesAt({0, 1000, 1100, 2100}));
    EXPECT_EQ(deliveries(), (Log{"0 n60@0", "300 n61@1000", "400 n62@1100", "1400 n63@2100", "done"}));
}

TEST_F(MidiPlayerTest, RequestsMadeWhileIdleAreLost)
{
    player.stopPlaying();
    player.skipSilence();
    player.reposition(150);
    play(notesAt({0, 100, 200}));
    EXPECT_EQ(deliveries(), (Log{"0 n60@0", "100 n61@100", "200 n62@200", "done"}));
}

TEST_F(MidiPlayerTest, TextLikeMetaEventsAreRaisedAndTheRestConsumedSilently)
{
    const MidiFile piece = PieceBuilder()
                               .meta(0, 0, 0x03, "Oud")
                               .meta(1, 0, 0x51, std::string("\x07\xA1\x20", 3))
                               .meta(1, 10, 0x01, "Q:Rast/0")
                               .sysEx(1, 10, std::string("\xF0\x7E\x7F\x09\x01\xF7", 6))
                               .meta(1, 20, 0x07, "cue")
                               .meta(1, 20, 0x08, "not text-like")
                               .channel(1, 30, 0xC0, 5, 0)
                               .build();
    play(piece);
    EXPECT_EQ(log, (Log{"0 meta0.3 Oud@0", "silence 10", "10 meta1.1 Q:Rast/0@10", "silence 10",
                        "20 meta1.7 cue@20", "silence 10", "30 s5@30", "done"}));
}

TEST_F(MidiPlayerTest, TimeArithmeticFaultsRaiseTheirErrors)
{
    const MidiFile piece = notesAt({0, 1000000});
    struct Case {
        float speed;
        int32_t error;
    } cases[] = {{0.0f, midierr::kDivisionByZero}, {0.0001f, midierr::kOverflow}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.speed);
        player.setPlaySpeedRatio(c.speed);
        player.setTheMidi(&piece);
        try {
            player.play();
            ADD_FAILURE() << "no error raised";
        } catch (const MidiError& e) {
            EXPECT_EQ(e.number(), c.error);
        }
    }
}

TEST(MidiPlayerState, ANewPlayerTakesNoDelayAsCaughtUpUntilReset)
{
    VirtualClock clock;
    MidiPlayer player(clock.playerClock());
    EXPECT_EQ(player.catchUpTolerance(), 0.0f);
    EXPECT_EQ(player.playSpeedRatio(), 1.0f);
    player.setCatchUpTolerance(0.5f);
    player.clear();
    EXPECT_EQ(player.catchUpTolerance(), 0.5f);
    player.resetPlayState();
    EXPECT_EQ(player.catchUpTolerance(), 1.0f);
}

}  // namespace
}  // namespace tarabix
