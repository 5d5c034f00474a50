#include "PieceBuilder.h"
#include "playback/MidiPlayer.h"
#include "playback/PieceChase.h"
#include "playback/PieceRouter.h"
#include "playback/RecorderPort.h"
#include "playback/VirtualClock.h"
#include "playback/mMidiMain.h"

#include <gtest/gtest.h>

#include <vector>

namespace tarabix {
namespace {

using test::PieceBuilder;
using Messages = std::vector<ChannelMessage>;

TEST(PieceChase, TheStateAtAMomentComesFromTheMessagesBeforeIt)
{
    struct Case {
        const char* name;
        MidiFile piece;
        int32_t atMs;
        Messages expected;
    };
    const Case cases[] = {
        {"nothing before and nothing after: nothing to restore",
         PieceBuilder().noteOn(0, 0, 60).channel(0, 500, 0x80, 60, 0).build(), 400, {}},
        {"colour controllers in the order of their last change, then the program and the wheel",
         PieceBuilder()
             .channel(0, 0, 0xB2, 7, 90)
             .channel(0, 0, 0xB2, 0, 1)
             .channel(0, 0, 0xB2, 32, 2)
             .channel(0, 0, 0xC2, 24, 0)
             .channel(0, 100, 0xB2, 10, 30)
             .channel(0, 200, 0xB2, 7, 80)
             .channel(0, 250, 0xB2, 91, 40)
             .channel(0, 300, 0xE2, 0x00, 0x50)
             .channel(0, 350, 0xB2, 11, 70)
             .noteOn(0, 400, 60, 100, 2)
             .build(),
         1000,
         {{0xB2, 0, 1}, {0xB2, 32, 2}, {0xB2, 10, 30}, {0xB2, 7, 80}, {0xB2, 91, 40}, {0xB2, 11, 70}, {0xC2, 24, 0},
          {0xE2, 0x00, 0x50}}},
        {"an event at the moment itself is played, not chased",
         PieceBuilder().channel(0, 0, 0xC0, 5, 0).channel(0, 500, 0xC0, 6, 0).channel(0, 500, 0xE0, 0, 0x50).build(),
         500, {{0xC0, 5, 0}, {0xE0, 0x00, 0x40}}},
        {"held pedals are released, whatever the piece left them at",
         PieceBuilder().channel(0, 0, 0xB1, 64, 127).channel(0, 0, 0xB1, 66, 127).channel(0, 900, 0xB1, 69, 127)
             .build(),
         500, {{0xB1, 64, 0}, {0xB1, 66, 0}, {0xB1, 69, 0}}},
        {"settings made only later go back to where a device starts; unknown starts are left",
         PieceBuilder()
             .channel(0, 600, 0xC3, 40, 0)
             .channel(0, 600, 0xB3, 7, 50)
             .channel(0, 600, 0xB3, 11, 20)
             .channel(0, 600, 0xB3, 10, 0)
             .channel(0, 600, 0xB3, 91, 100)
             .channel(0, 600, 0xE3, 0x00, 0x30)
             .build(),
         500, {{0xB3, 7, 100}, {0xB3, 10, 64}, {0xB3, 11, 127}, {0xC3, 0, 0}, {0xE3, 0x00, 0x40}}},
        {"steps and channel mode messages are not settings",
         PieceBuilder().channel(0, 0, 0xB0, 96, 1).channel(0, 0, 0xB0, 97, 1).channel(0, 0, 0xB0, 123, 0)
             .channel(0, 0, 0xB0, 121, 0).build(),
         500, {}},
        {"parameters are selected before their data, then the piece's last selection stands",
         PieceBuilder()
             .channel(0, 0, 0xB0, 101, 0).channel(0, 0, 0xB0, 100, 0).channel(0, 0, 0xB0, 6, 12)
             .channel(0, 0, 0xB0, 99, 1).channel(0, 0, 0xB0, 98, 8).channel(0, 0, 0xB0, 6, 70)
             .channel(0, 0, 0xB0, 38, 3)
             .channel(0, 0, 0xB0, 101, 0).channel(0, 0, 0xB0, 100, 0).channel(0, 0, 0xB0, 6, 1)
             .channel(0, 0, 0xB0, 101, 127).channel(0, 0, 0xB0, 100, 127).channel(0, 0, 0xB0, 6, 9)
             .build(),
         500,
         {{0xB0, 101, 0}, {0xB0, 100, 0}, {0xB0, 6, 1},
          {0xB0, 99, 1}, {0xB0, 98, 8}, {0xB0, 6, 70}, {0xB0, 38, 3},
          {0xB0, 99, 1}, {0xB0, 98, 8}, {0xB0, 101, 127}, {0xB0, 100, 127}}},
        {"simultaneous settings in two tracks: the higher track's is played last and stands",
         PieceBuilder().channel(1, 100, 0xC0, 9, 0).channel(0, 100, 0xC0, 8, 0).channel(1, 100, 0xE0, 0, 0x30)
             .channel(0, 100, 0xE0, 0, 0x50).build(),
         500, {{0xC0, 9, 0}, {0xE0, 0, 0x30}}},
        {"channels each with their own state, in channel order",
         PieceBuilder().channel(0, 0, 0xC9, 1, 0).channel(0, 0, 0xC0, 2, 0).channel(0, 10, 0xB9, 7, 1).build(),
         500, {{0xC0, 2, 0}, {0xB9, 7, 1}, {0xC9, 1, 0}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(chasePiece(c.piece, c.atMs).messages(), c.expected);
    }
}

// The player and the router as every owner joins them, on the virtual clock, into a recorder:
// each message with the clock time the device got it.
class ChaseOnThePlayerTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        resetMidiMainState();
        auto recording = m_recording;
        setMidiOutBackend({[] { return std::vector<std::string>{}; },
                           [this, recording](int32_t) {
                               return std::make_unique<RecorderPort>(recording, [this] { return clock.now(); });
                           }});
        ASSERT_EQ(reopenMidiOut(), kMidiOutOk);
        m_recording->clear();
        player.resetPlayState();
        router.setVolume(127);  // velocities pass unscaled, so the piece's own bytes are expected
        player.msg = [this](uint8_t status, uint8_t c1, uint8_t c2, int32_t) { router.route(status, c1, c2); };
        player.chase = [this](int32_t fromMs) { router.startFrom(player.theMidi(), fromMs); };
    }
    void TearDown() override { resetMidiMainState(); }

    std::vector<RecordedMessage> play(const MidiFile& piece, int32_t fromMs)
    {
        player.setTheMidi(&piece);
        player.setStartOffsetMSecMidi(fromMs);
        player.play();
        return m_recording->messages();
    }

    VirtualClock clock;
    MidiPlayer player{clock.playerClock()};
    PieceRouter router;
    std::shared_ptr<MidiRecording> m_recording = std::make_shared<MidiRecording>();
};

// Program 24 with bank 1, volume 90, sustain down, a quarter tone up; then a note at 1000.
MidiFile setUpThenANote()
{
    return PieceBuilder()
        .channel(0, 0, 0xB0, 0, 1)
        .channel(0, 0, 0xC0, 24, 0)
        .channel(0, 0, 0xB0, 7, 90)
        .channel(0, 0, 0xB0, 64, 127)
        .channel(0, 0, 0xE0, 0x00, 0x50)
        .noteOn(0, 0, 57)
        .channel(0, 500, 0x80, 57, 0)
        .noteOn(0, 1000, 60)
        .channel(0, 1500, 0x80, 60, 0)
        .build();
}

TEST_F(ChaseOnThePlayerTest, AStartInsideThePieceRestoresItsChannelsBeforeTheFirstNote)
{
    struct Case {
        const char* name;
        int32_t fromMs;
        int32_t jumpAtMs;  // a reposition to fromMs at this clock time; -1 none
        int32_t chaseAtMs;
        bool wheelAlreadySent;  // the device has the quarter tone from the first note
    };
    const Case cases[] = {
        {"a start at 1000", 1000, -1, 0, false},
        {"a jump to 1000 while the first note sounds", 0, 200, 200, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        clock = VirtualClock();
        m_recording->clear();
        const MidiFile piece = setUpThenANote();
        if (c.jumpAtMs >= 0)
            clock.at(c.jumpAtMs, [this] { player.reposition(1000); });
        const std::vector<RecordedMessage> sent = play(piece, c.fromMs);
        const int32_t t = c.chaseAtMs;
        // Bank, volume, sustain off, program; the quarter tone reaches the device with the note.
        std::vector<RecordedMessage> chased{{t, 0x0100B0}, {t, 0x5A07B0}, {t, 0x0040B0}, {t, 0x0018C0}};
        if (!c.wheelAlreadySent)
            chased.push_back({t, 0x5000E0});
        chased.insert(chased.end(), {{t, 0x643C90}, {t + 500, 0x003C80}});
        ASSERT_GE(sent.size(), chased.size());
        EXPECT_EQ(std::vector<RecordedMessage>(sent.end() - static_cast<long>(chased.size()), sent.end()), chased);
        EXPECT_EQ(router.channelCents(0), 50);
    }
}

TEST_F(ChaseOnThePlayerTest, AStartAtZeroSendsThePieceAsItIs)
{
    const std::vector<RecordedMessage> sent = play(setUpThenANote(), 0);
    const std::vector<RecordedMessage> expected{{0, 0x0100B0}, {0, 0x0018C0}, {0, 0x5A07B0}, {0, 0x7F40B0},
                                                {0, 0x5000E0}, {0, 0x643990}, {500, 0x003980},
                                                {1000, 0x643C90}, {1500, 0x003C80}};
    EXPECT_EQ(sent, expected);
}

// A wheel of -50 before note 60, +50 before note 62, which is still held when the learner jumps
// back to the start: the wheel met again must set the channel back to -50 for note 60.
TEST_F(ChaseOnThePlayerTest, AJumpBackAcrossASoundingNoteLetsTheReplayedWheelCount)
{
    const MidiFile piece = PieceBuilder()
                               .channel(0, 0, 0xE0, 0x00, 0x30)
                               .noteOn(0, 0, 60)
                               .channel(0, 100, 0x80, 60, 0)
                               .channel(0, 500, 0xE0, 0x00, 0x50)
                               .noteOn(0, 600, 62)
                               .channel(0, 3000, 0x80, 62, 0)
                               .build();
    bool jumped = false;
    clock.at(1000, [&] {
        EXPECT_EQ(router.soundingNotes(0), 1);
        player.reposition(0);
        jumped = true;
    });
    player.msg = [&](uint8_t status, uint8_t c1, uint8_t c2, int32_t) {
        router.route(status, c1, c2);
        if (jumped && status == 0x90)
            player.stopPlaying();
    };
    const std::vector<RecordedMessage> sent = play(piece, 0);
    ASSERT_GE(sent.size(), 2u);
    EXPECT_EQ(sent[sent.size() - 2], (RecordedMessage{1000, 0x3000E0}));
    EXPECT_EQ(sent.back(), (RecordedMessage{1000, 0x643C90}));
    EXPECT_EQ(router.channelCents(0), -50);
}

}  // namespace
}  // namespace tarabix
