// A piece on its way to the device: the router, the chase of a start inside it, and its render.
#include "PieceBuilder.h"
#include "PitchEstimator.h"
#include "TestFiles.h"
#include "playback/Metronome.h"
#include "playback/MidiPlayer.h"
#include "playback/PieceChase.h"
#include "playback/PieceRender.h"
#include "playback/PieceRouter.h"
#include "playback/RecorderPort.h"
#include "playback/SoundFontLocator.h"
#include "playback/VirtualClock.h"
#include "playback/WavWriter.h"
#include "playback/mMidiMain.h"

#include <gtest/gtest.h>

#include <vector>

namespace tarabix {
namespace {

using test::pieceOf;
using Messages = std::vector<ChannelMessage>;
using Sent = std::vector<RecordedMessage>;
using Words = std::vector<uint32_t>;

// The player and the router joined as every owner does, on a virtual clock, into a recorder.
struct PlayerRig {
    PlayerRig()
    {
        resetMidiMainState();
        setMidiOutBackend({[] { return std::vector<std::string>{}; }, [this](int32_t) {
                               return std::make_unique<RecorderPort>(recording, [this] { return clock.now(); });
                           }});
        EXPECT_EQ(reopenMidiOut(), kMidiOutOk);
        recording->clear();
        player.resetPlayState();
        router.setVolume(127);  // velocities pass unscaled, so the piece's own bytes are expected
        player.msg = [this](uint8_t status, uint8_t c1, uint8_t c2, int32_t) { router.route(status, c1, c2); };
        player.chase = [this](int32_t fromMs) { router.startFrom(player.theMidi(), fromMs); };
    }
    ~PlayerRig() { resetMidiMainState(); }

    Sent play(const MidiFile& piece, int32_t fromMs)
    {
        player.setTheMidi(&piece);
        player.setStartOffsetMSecMidi(fromMs);
        player.play();
        return recording->messages();
    }
    void route(const Messages& messages)
    {
        for (const ChannelMessage& m : messages)
            router.route(m.status, m.c1, m.c2);
    }

    std::shared_ptr<MidiRecording> recording = std::make_shared<MidiRecording>();
    VirtualClock clock;
    MidiPlayer player{clock.playerClock()};
    PieceRouter router;
};

// The exact words the device receives, and the notes left sounding on channel 0.
TEST(PieceRouter, SendsExactlyTheseWords)
{
    struct Case { const char* name; int32_t octaveShift, volume; Messages in; Words out; int32_t sounding; };
    const Case cases[] = {
        {"a note-on without velocity is a note-off", 0, 127, {{0x90, 60, 100}, {0x90, 60, 0}, {0x80, 60, 64}},
         {0x643C90, 0x003C80, 0x003C80}, 0},
        {"an octave up drops 115 and plays 114", 1, 127, {{0x90, 115, 100}, {0x90, 114, 100}, {0x80, 115, 0}}, {0x647E90}, 1},
        {"octaves down drop notes at or below 0", -5, 127, {{0x90, 60, 100}, {0x90, 61, 100}, {0x80, 60, 0}}, {0x640190}, 1},
        {"the volume scales velocities to the nearest", 0, 64, {{0x90, 60, 100}, {0x90, 62, 127}, {0x90, 64, 1}},
         {0x323C90, 0x403E90, 0x014090}, 3},
        {"a wheel during a held note changes nothing", 0, 127,
         {{0x90, 60, 100}, {0xE0, 0x00, 0x50}, {0x90, 62, 100}, {0x80, 60, 0}, {0x80, 62, 0}, {0x90, 64, 100}},
         {0x643C90, 0x643E90, 0x003C80, 0x003E80, 0x644090}, 1},
        // +30 cents goes up to +50; then -20 cents falls back to 0.
        {"wheels are quantised to quarter tones", 0, 127,
         {{0xE0, 0x4D, 0x49}, {0x90, 60, 100}, {0x80, 60, 0}, {0xE0, 0x4D, 0x39}, {0x90, 60, 100}},
         {0x5000E0, 0x643C90, 0x003C80, 0x4000E0, 0x643C90}, 1},
        {"other messages pass unchanged", 3, 10, {{0xC0, 5, 0}, {0xB0, 7, 100}, {0xD2, 40, 0}, {0xA0, 60, 30}},
         {0x0005C0, 0x6407B0, 0x0028D2, 0x1E3CA0}, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        PlayerRig rig;
        rig.router.setMidiOctShift(c.octaveShift);
        rig.router.setVolume(c.volume);
        rig.route(c.in);
        EXPECT_EQ(rig.recording->words(), c.out);
        EXPECT_EQ(rig.router.soundingNotes(0), c.sounding);
    }
}

TEST(PieceRouter, MutedChannelsAreDroppedWholeAndShownChannelsMarked)
{
    PlayerRig rig;
    std::vector<std::tuple<int, int, int32_t>> marks;  // a note-on's channel, note and cents; -1 for a note-off
    rig.router.markNote = [&](int ch, int note, int32_t cents) { marks.emplace_back(ch, note, cents); };
    rig.router.unmarkNote = [&](int ch, int note, int32_t) { marks.emplace_back(ch, note, -1); };
    rig.router.setChannelEnabled(1, false);
    rig.router.setChannelShown(2, false);
    rig.router.setMidiOctShift(-1);
    rig.route({{0xE0, 0x00, 0x50}, {0x90, 69, 90}, {0x80, 69, 0}, {0xE1, 0x00, 0x50}, {0xC1, 4, 0}, {0x91, 60, 90},
               {0x92, 62, 90}, {0x82, 62, 0}});
    EXPECT_EQ(rig.recording->words(), (Words{0x5000E0, 0x5A3990, 0x003980, 0x5A3292, 0x003282}));
    EXPECT_EQ(marks, (std::vector<std::tuple<int, int, int32_t>>{{0, 57, 50}, {0, 57, -1}}));
    EXPECT_EQ(rig.router.channelCents(1), 0);
    EXPECT_EQ(rig.router.soundingNotes(1), 0);
}

TEST(PieceChase, TheStateAtAMomentComesFromTheMessagesBeforeIt)
{
    struct Case { const char* name; MidiFile piece; int32_t atMs; Messages expected; };
    const Case cases[] = {
        {"controllers in the order of their last change, then the program and the wheel",
         pieceOf({{0, 0xB2, 7, 90}, {0, 0xB2, 0, 1}, {0, 0xB2, 32, 2}, {0, 0xC2, 24}, {100, 0xB2, 10, 30},
                  {200, 0xB2, 7, 80}, {300, 0xE2, 0x00, 0x50}, {350, 0xB2, 11, 70}, {400, 0x92, 60, 100}}),
         1000,
         {{0xB2, 0, 1}, {0xB2, 32, 2}, {0xB2, 10, 30}, {0xB2, 7, 80}, {0xB2, 11, 70}, {0xC2, 24, 0}, {0xE2, 0x00, 0x50}}},
        {"an event at the moment itself is played, not chased",
         pieceOf({{0, 0xC0, 5}, {500, 0xC0, 6}, {500, 0xE0, 0, 0x50}}), 500, {{0xC0, 5, 0}, {0xE0, 0x00, 0x40}}},
        {"held pedals are released, whatever the piece left them at",
         pieceOf({{0, 0xB1, 64, 127}, {0, 0xB1, 66, 127}, {900, 0xB1, 69, 127}}), 500,
         {{0xB1, 64, 0}, {0xB1, 66, 0}, {0xB1, 69, 0}}},
        {"settings made only later go back to where a device starts; unknown starts are left",
         pieceOf({{600, 0xC3, 40}, {600, 0xB3, 7, 50}, {600, 0xB3, 11, 20}, {600, 0xB3, 10, 0}, {600, 0xB3, 91, 100},
                  {600, 0xE3, 0x00, 0x30}}),
         500, {{0xB3, 7, 100}, {0xB3, 10, 64}, {0xB3, 11, 127}, {0xC3, 0, 0}, {0xE3, 0x00, 0x40}}},
        {"steps and channel mode messages are not settings",
         pieceOf({{0, 0xB0, 96, 1}, {0, 0xB0, 97, 1}, {0, 0xB0, 123, 0}, {0, 0xB0, 121, 0}}), 500, {}},
        {"parameters are selected before their data, then the piece's last selection stands",
         pieceOf({{0, 0xB0, 101, 0}, {0, 0xB0, 100, 0}, {0, 0xB0, 6, 12}, {0, 0xB0, 99, 1}, {0, 0xB0, 98, 8},
                  {0, 0xB0, 6, 70}, {0, 0xB0, 38, 3}, {0, 0xB0, 101, 0}, {0, 0xB0, 100, 0}, {0, 0xB0, 6, 1},
                  {0, 0xB0, 101, 127}, {0, 0xB0, 100, 127}, {0, 0xB0, 6, 9}}),
         500,
         {{0xB0, 101, 0}, {0xB0, 100, 0}, {0xB0, 6, 1}, {0xB0, 99, 1}, {0xB0, 98, 8}, {0xB0, 6, 70}, {0xB0, 38, 3},
          {0xB0, 99, 1}, {0xB0, 98, 8}, {0xB0, 101, 127}, {0xB0, 100, 127}}},
        {"simultaneous settings in two tracks: the higher track's is played last and stands",
         pieceOf({{100, 0xC0, 9, 0, 1}, {100, 0xC0, 8}, {100, 0xE0, 0, 0x30, 1}, {100, 0xE0, 0, 0x50}}), 500,
         {{0xC0, 9, 0}, {0xE0, 0, 0x30}}},
        {"channels each with their own state, in channel order",
         pieceOf({{0, 0xC9, 1}, {0, 0xC0, 2}, {10, 0xB9, 7, 1}}), 500, {{0xC0, 2, 0}, {0xB9, 7, 1}, {0xC9, 1, 0}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(chasePiece(c.piece, c.atMs).messages(), c.expected);
    }
}

// Program 24 with bank 1, volume 90, sustain down, a quarter tone up, note 57; then note 60 at 1000.
MidiFile setUpThenANote()
{
    return pieceOf({{0, 0xB0, 0, 1}, {0, 0xC0, 24}, {0, 0xB0, 7, 90}, {0, 0xB0, 64, 127}, {0, 0xE0, 0x00, 0x50},
                    {0, 0x90, 57, 100}, {500, 0x80, 57}, {1000, 0x90, 60, 100}, {1500, 0x80, 60}});
}

TEST(PieceChase, AStartInsideThePieceRestoresItsChannelsBeforeTheFirstNote)
{
    const MidiFile piece = setUpThenANote();
    for (const int32_t jumpAtMs : {-1, 200}) {  // a start at 1000; a jump there while note 57 sounds
        SCOPED_TRACE(jumpAtMs);
        PlayerRig rig;
        if (jumpAtMs >= 0)
            rig.clock.at(jumpAtMs, [&rig] { rig.player.reposition(1000); });
        const Sent sent = rig.play(piece, jumpAtMs >= 0 ? 0 : 1000);
        const int32_t t = std::max(jumpAtMs, 0);
        // Bank, volume, sustain off, program; the wheel with the note unless sent for note 57.
        Sent chased{{t, 0x0100B0}, {t, 0x5A07B0}, {t, 0x0040B0}, {t, 0x0018C0}};
        if (jumpAtMs < 0)
            chased.push_back({t, 0x5000E0});
        chased.insert(chased.end(), {{t, 0x643C90}, {t + 500, 0x003C80}});
        ASSERT_GE(sent.size(), chased.size());
        EXPECT_EQ(Sent(sent.end() - static_cast<long>(chased.size()), sent.end()), chased);
        EXPECT_EQ(rig.router.channelCents(0), 50);
    }
}

// A jump back to 0 while note 62 (+50 cents) sounds: the wheel met again sets -50 for note 60.
TEST(PieceChase, AJumpBackAcrossASoundingNoteLetsTheReplayedWheelCount)
{
    const MidiFile piece = pieceOf({{0, 0xE0, 0x00, 0x30}, {0, 0x90, 60, 100}, {100, 0x80, 60}, {500, 0xE0, 0x00, 0x50},
                                    {600, 0x90, 62, 100}, {3000, 0x80, 62}});
    PlayerRig rig;
    bool jumped = false;
    rig.clock.at(1000, [&] {
        EXPECT_EQ(rig.router.soundingNotes(0), 1);
        rig.player.reposition(0);
        jumped = true;
    });
    rig.player.msg = [&](uint8_t status, uint8_t c1, uint8_t c2, int32_t) {
        rig.router.route(status, c1, c2);
        if (jumped && status == 0x90)
            rig.player.stopPlaying();
    };
    const Sent sent = rig.play(piece, 0);
    ASSERT_GE(sent.size(), 2u);
    EXPECT_EQ(Sent(sent.end() - 2, sent.end()), (Sent{{1000, 0x3000E0}, {1000, 0x643C90}}));
    EXPECT_EQ(rig.router.channelCents(0), -50);
}

// A loop 1000..2000 counted in by one 500 ms click: at the jump, when B is due (1500), the notes
// still sounding are cut and program 5 and the centred wheel of A come back, not program 7 and
// the quarter tone set inside the loop.
TEST(PieceChase, ALoopsJumpCutsWhatSoundsAndRestoresTheChannelsAsTheyStandAtA)
{
    const MidiFile piece = pieceOf({{0, 0xC0, 5}, {1000, 0x90, 60, 100}, {1100, 0x80, 60}, {1200, 0xC0, 7},
                                    {1300, 0xE0, 0x00, 0x50}, {1400, 0x90, 62, 100}, {2500, 0x80, 62}});
    PlayerRig rig;
    std::vector<std::pair<int32_t, int32_t>> chases;  // where from, and the due time meanwhile
    rig.player.chase = [&](int32_t fromMs) {
        chases.emplace_back(fromMs, rig.player.currentDueMs());
        rig.router.startFrom(&piece, fromMs);
    };
    rig.player.setPractice({LoopRange{1000, 2000}, 2, std::nullopt, 1});
    Sent atJump;
    for (const RecordedMessage& m : rig.play(piece, 0))
        if (m.timeMs >= 1500 && m.timeMs <= 2000)
            atJump.push_back(m);
    EXPECT_EQ(chases, (std::vector<std::pair<int32_t, int32_t>>{{1000, 0}, {1000, 1500}}));
    EXPECT_EQ(atJump, (Sent{{1500, 0x0040B0}, {1500, 0x007BB0}, {1500, 0x0005C0}, {2000, 0x4000E0}, {2000, 0x643C90}}));
}

// The wood blocks on channel 10 at the set velocity, each click ending the one before; at volume
// 0 a click only ends the last one.
TEST(Metronome, ClicksAWoodBlockOnChannel10AndEndsTheLastClickFirst)
{
    PlayerRig rig;
    Metronome metronome;
    metronome.setVolume(90);
    metronome.click(true);
    metronome.click(false);
    metronome.setVolume(0);
    metronome.click(true);
    metronome.click(false);
    metronome.setVolume(200);
    metronome.click(false);
    EXPECT_EQ(rig.recording->words(), (Words{0x5A4C99, 0x004C89, 0x5A4D99, 0x004D89, 0x7F4D99}));
}

// The same piece rendered from inside: the learner hears note 60 a quarter tone up.
TEST(PieceChase, ARenderFromInsideThePieceKeepsItsQuarterTone)
{
    if (findSoundFont().empty())
        GTEST_SKIP() << "no General MIDI SoundFont installed";
    PieceRenderOptions options;
    options.fromMs = 1000;
    options.lengthMs = 500;
    options.tailMs = 0;
    const std::string path = test::scratchPath("render-from.wav");
    const PieceRenderResult result = renderPieceToWav(setUpThenANote(), path, options);
    ASSERT_TRUE(result.ok) << result.error;
    const double hz = test::stereoFundamentalHz(test::wavSamples16(test::readBytes(path)), 44100, 0.1, 0.45);
    std::filesystem::remove(path);
    EXPECT_NEAR(test::centsBetween(hz, 261.6256), 50.0, 3.0) << hz << " Hz";
}

// A4 a quarter tone up, then A4 with a wheel moved while held, at double speed an octave down with
// the learner's SoundFont missing: A3 a quarter tone up, then A3, on the system's SoundFont.
TEST(MidiPlayerRender, QuarterTonesOfThePiecesPitchWheelsAreHeard)
{
    if (findSoundFont().empty())
        GTEST_SKIP() << "no General MIDI SoundFont installed";
    const MidiFile piece = pieceOf({{0, 0xE0, 0x00, 0x50}, {0, 0x90, 69, 100}, {1500, 0x80, 69},
                                    {1600, 0xE0, 0x00, 0x40}, {1600, 0x90, 69, 100}, {2000, 0xE0, 0x00, 0x50},
                                    {3100, 0x80, 69}});
    const std::string path = test::scratchPath("render.wav");
    PieceRenderOptions options;
    options.speed = 2.0f;
    options.midiOctShift = -1;
    options.tailMs = 500;
    options.soundFontPath = "/nonexistent/tarabix.sf2";
    const PieceRenderResult result = renderPieceToWav(piece, path, options);
    ASSERT_TRUE(result.ok) << result.error;
    EXPECT_NE(result.notice.find(options.soundFontPath), std::string::npos) << result.notice;
    EXPECT_EQ(result.events, 7);
    EXPECT_EQ(result.audioMs, 3100 / 2 + 500);

    const std::vector<float> stereo = test::wavSamples16(test::readBytes(path));
    std::filesystem::remove(path);
    EXPECT_NEAR(static_cast<double>(stereo.size()) / 88.2, result.audioMs, 1.0);
    const double first = test::stereoFundamentalHz(stereo, 44100, 0.15, 0.7);
    const double second = test::stereoFundamentalHz(stereo, 44100, 0.95, 1.5);
    EXPECT_NEAR(test::centsBetween(first, 226.45), 0.0, 3.0) << first << " Hz";
    EXPECT_NEAR(test::centsBetween(second, 220.0), 0.0, 3.0) << second << " Hz";
}

// Written in two pieces, the header's sizes filled at the close.
TEST(WavWriter, WritesA16BitPcmFileByteForByte)
{
    const std::string path = test::scratchPath("exact.wav");
    WavWriter writer;
    ASSERT_TRUE(writer.open(path, 44100, 2));
    ASSERT_TRUE(writer.write(std::vector<float>{0.0f, 1.0f, -1.0f, 0.5f}));
    ASSERT_TRUE(writer.write(std::vector<float>{2.0f, -0.25f}));
    ASSERT_TRUE(writer.close());
    const std::string expected = std::string("RIFF\x30\0\0\0WAVEfmt \x10\0\0\0\x01\0\x02\0", 24) +
                                 std::string("\x44\xAC\0\0\x10\xB1\x02\0\x04\0\x10\0data\x0C\0\0\0", 20) +
                                 // 0, 32767, -32767, 16384 (half to even), 32767 (clipped), -8192
                                 std::string("\0\0\xFF\x7F\x01\x80\0\x40\xFF\x7F\0\xE0", 12);
    EXPECT_EQ(test::readBytes(path), expected);

    ASSERT_TRUE(writer.open(path, 44100, 2));
    EXPECT_FALSE(writer.write(std::vector<float>{0.0f, 0.0f, 0.0f}));
    EXPECT_EQ(writer.error(), "a partial frame of samples");
    EXPECT_TRUE(writer.close());
    std::filesystem::remove(path);
    EXPECT_FALSE(writer.open("/nonexistent-folder/out.wav", 44100, 2));
    EXPECT_NE(writer.error().find("/nonexistent-folder/out.wav"), std::string::npos);
}

}  // namespace
}  // namespace tarabix
