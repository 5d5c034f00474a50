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

struct RouteCase {
    const char* name;
    int32_t octaveShift;
    int32_t volume;
    std::vector<Msg> in;
    Words out;  // exact words the device receives
    int32_t soundingOnChannel0;
};

class PieceRouterTest : public ::testing::TestWithParam<RouteCase> {
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

    void routeAll(const std::vector<Msg>& messages)
    {
        for (const Msg& m : messages)
            router.route(m.status, m.c1, m.c2);
    }

    std::shared_ptr<MidiRecording> m_recording = std::make_shared<MidiRecording>();
    PieceRouter router;
};

TEST_P(PieceRouterTest, SendsExactlyTheseWords)
{
    const RouteCase& c = GetParam();
    router.setMidiOctShift(c.octaveShift);
    router.setVolume(c.volume);
    routeAll(c.in);
    EXPECT_EQ(m_recording->words(), c.out);
    EXPECT_EQ(router.soundingNotes(0), c.soundingOnChannel0);
}

INSTANTIATE_TEST_SUITE_P(
    Routing, PieceRouterTest,
    ::testing::Values(
        RouteCase{"NoteOnWithoutVelocityIsANoteOff", 0, 127,
                  {{0x90, 60, 100}, {0x90, 60, 0}, {0x80, 60, 64}},
                  {0x643C90, 0x003C80, 0x003C80}, 0},
        RouteCase{"OctaveUpDrops115AndPlays114", 1, 127,
                  {{0x90, 115, 100}, {0x90, 114, 100}, {0x80, 115, 0}},
                  {0x647E90}, 1},
        RouteCase{"OctavesDownDropNotesAtOrBelowZero", -5, 127,
                  {{0x90, 60, 100}, {0x90, 61, 100}, {0x80, 60, 0}},
                  {0x640190}, 1},
        RouteCase{"VolumeScalesVelocityToTheNearest", 0, 64,
                  {{0x90, 60, 100}, {0x90, 62, 127}, {0x90, 64, 1}},
                  {0x323C90, 0x403E90, 0x014090}, 3},
        RouteCase{"VolumeZeroSendsNoteOnsWithVelocityZero", 0, 0,
                  {{0x90, 60, 100}},
                  {0x003C90}, 1},
        RouteCase{"VolumeFullLeavesVelocitiesAlone", 0, 127,
                  {{0x91, 60, 1}, {0x91, 62, 126}},
                  {0x013C91, 0x7E3E91}, 0},
        RouteCase{"BendBeforeANoteSoundsItAQuarterToneUp", 0, 127,
                  {{0xE0, 0x00, 0x50}, {0x90, 60, 100}},
                  {0x5000E0, 0x643C90}, 1},
        RouteCase{"BendDuringAHeldNoteChangesNothing", 0, 127,
                  {{0x90, 60, 100}, {0xE0, 0x00, 0x50}, {0x90, 62, 100}, {0x80, 60, 0}, {0x80, 62, 0}, {0x90, 64, 100}},
                  {0x643C90, 0x643E90, 0x003C80, 0x003E80, 0x644090}, 1},
        RouteCase{"BendsAreQuantisedToQuarterTones", 0, 127,
                  // +30 cents goes up to +50; then -20 cents falls back to 0
                  {{0xE0, 0x4D, 0x49}, {0x90, 60, 100}, {0x80, 60, 0}, {0xE0, 0x4D, 0x39}, {0x90, 60, 100}},
                  {0x5000E0, 0x643C90, 0x003C80, 0x4000E0, 0x643C90}, 1},
        RouteCase{"OtherMessagesPassUnchanged", 3, 10,
                  {{0xC0, 5, 0}, {0xB0, 7, 100}, {0xD2, 40, 0}, {0xA0, 60, 30}},
                  {0x0005C0, 0x6407B0, 0x0028D2, 0x1E3CA0}, 0}),
    [](const ::testing::TestParamInfo<RouteCase>& info) { return std::string(info.param.name); });

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
    routeAll({{0xE0, 0x00, 0x50}, {0x90, 69, 90}, {0x80, 69, 0},
              {0xE1, 0x00, 0x50}, {0xC1, 4, 0}, {0x91, 60, 90},
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
