#include "playback/PieceRouter.h"
#include "playback/RecorderPort.h"
#include "playback/mMidiMain.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tarabix {
namespace {

using Words = std::vector<uint32_t>;

struct Msg {
    uint8_t status, c1, c2;
};

class PieceRouterTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        resetMidiMainState();
        auto recording = m_recording;
        setMidiOutBackend({[] { return std::vector<std::string>{}; },
                           [recording](int32_t) { return std::make_unique<RecorderPort>(recording); }});
        ASSERT_EQ(reopenMidiOut(), kMidiOutOk);
        m_recording->clear();
    }
    void TearDown() override { resetMidiMainState(); }

    void routeAll(PieceRouter& to, const std::vector<Msg>& messages)
    {
        for (const Msg& m : messages)
            to.route(m.status, m.c1, m.c2);
    }

    std::shared_ptr<MidiRecording> m_recording = std::make_shared<MidiRecording>();
    PieceRouter router;
};

// The exact words the device receives, and the notes left sounding on channel 0.
TEST_F(PieceRouterTest, SendsExactlyTheseWords)
{
    struct Case { const char* name; int32_t octaveShift, volume; std::vector<Msg> in; Words out; int32_t sounding; };
    const Case cases[] = {
        {"a note-on without velocity is a note-off", 0, 127, {{0x90, 60, 100}, {0x90, 60, 0}, {0x80, 60, 64}},
         {0x643C90, 0x003C80, 0x003C80}, 0},
        {"an octave up drops 115 and plays 114", 1, 127, {{0x90, 115, 100}, {0x90, 114, 100}, {0x80, 115, 0}}, {0x647E90}, 1},
        {"octaves down drop notes at or below 0", -5, 127, {{0x90, 60, 100}, {0x90, 61, 100}, {0x80, 60, 0}}, {0x640190}, 1},
        {"the volume scales velocities to the nearest", 0, 64, {{0x90, 60, 100}, {0x90, 62, 127}, {0x90, 64, 1}},
         {0x323C90, 0x403E90, 0x014090}, 3},
        {"a wheel before a note sounds it a quarter tone up", 0, 127, {{0xE0, 0x00, 0x50}, {0x90, 60, 100}}, {0x5000E0, 0x643C90}, 1},
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
        SetUp();  // the output layer's channel state afresh
        PieceRouter fresh;
        fresh.setMidiOctShift(c.octaveShift);
        fresh.setVolume(c.volume);
        routeAll(fresh, c.in);
        EXPECT_EQ(m_recording->words(), c.out);
        EXPECT_EQ(fresh.soundingNotes(0), c.sounding);
    }
}

TEST_F(PieceRouterTest, MutedChannelsAreDroppedWholeAndShownChannelsMarked)
{
    std::vector<std::string> marks;
    router.markNote = [&](int ch, int note, int32_t cents) {
        marks.push_back("on " + std::to_string(ch) + ":" + std::to_string(note) + "+" + std::to_string(cents));
    };
    router.unmarkNote = [&](int ch, int note, int32_t) {
        marks.push_back("off " + std::to_string(ch) + ":" + std::to_string(note));
    };
    router.setVolume(127);  // velocities pass unchanged
    router.setChannelEnabled(1, false);
    router.setChannelShown(2, false);
    router.setMidiOctShift(-1);
    routeAll(router, {{0xE0, 0x00, 0x50}, {0x90, 69, 90}, {0x80, 69, 0}, {0xE1, 0x00, 0x50}, {0xC1, 4, 0}, {0x91, 60, 90},
                      {0x92, 62, 90}, {0x82, 62, 0}});
    EXPECT_EQ(m_recording->words(), (Words{0x5000E0, 0x5A3990, 0x003980, 0x5A3292, 0x003282}));
    EXPECT_EQ(marks, (std::vector<std::string>{"on 0:57+50", "off 0:57"}));
    EXPECT_EQ(router.channelCents(1), 0);
    EXPECT_EQ(router.soundingNotes(1), 0);

    router.resetChannelState();
    EXPECT_EQ(router.channelCents(0), 0);
}

}  // namespace
}  // namespace tarabix
