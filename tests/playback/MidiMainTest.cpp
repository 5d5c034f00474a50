#include "playback/RecorderPort.h"
#include "playback/mMidiMain.h"

#include <gtest/gtest.h>

#include <map>

namespace tarabix {
namespace {

// Installs recorders as the outputs: every id in openResults gets one that opens with that code;
// any other id is no device at all.
class MidiMainTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        resetMidiMainState();
        install({{kMidiMapperId, kMidiOutOk}, {0, kMidiOutOk}, {1, kMidiOutAllocated}});
    }
    void TearDown() override { resetMidiMainState(); }

    void install(std::map<int32_t, int32_t> openResults)
    {
        auto recording = m_recording;
        auto clock = [this] { return m_now; };
        setMidiOutBackend({[] { return std::vector<std::string>{"Port A", "Port B"}; },
                           [recording, clock, openResults](int32_t id) -> std::unique_ptr<MidiOutPort> {
                               const auto it = openResults.find(id);
                               if (it == openResults.end())
                                   return nullptr;
                               return std::make_unique<RecorderPort>(recording, clock, it->second);
                           }});
    }

    // Opens the current device and forgets what the re-open itself sent.
    void openQuietly()
    {
        ASSERT_EQ(reopenMidiOut(), kMidiOutOk);
        m_recording->clear();
    }

    std::shared_ptr<MidiRecording> m_recording = std::make_shared<MidiRecording>();
    int32_t m_now = 0;
};

TEST_F(MidiMainTest, NoteOnSendsThePitchWheelOnlyWhenTheChannelsShiftChanges)
{
    openQuietly();
    midiNoteOn(0, 60, 50, 100);
    EXPECT_EQ(m_recording->words(), (std::vector<uint32_t>{0x5000E0, 0x643C90}));

    m_recording->clear();
    midiNoteOn(0, 60, 50, 100);
    EXPECT_EQ(m_recording->words(), (std::vector<uint32_t>{0x643C90}));

    // The shift belongs to the channel: another channel still starts from 0 cents.
    m_recording->clear();
    midiNoteOn(3, 62, 0, 90);
    EXPECT_EQ(m_recording->words(), (std::vector<uint32_t>{0x5A3E93}));
}

TEST_F(MidiMainTest, PitchWheelWordsForShiftsInCents)
{
    struct Case {
        int ch;
        int32_t cents;
        uint32_t word;
    };
    const Case cases[] = {
        {0, 50, 0x5000E0},   {0, -50, 0x3000E0}, {0, 0, 0x4000E0},   {15, 100, 0x6000EF},
        {2, -200, 0x0000E2}, {1, 199, 0x7F57E1}, {0, 150, 0x7000E0}, {0, -150, 0x1000E0},
    };
    openQuietly();
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "ch " << c.ch << ", cents " << c.cents);
        m_recording->clear();
        setChannelBendCents(c.ch, c.cents);
        EXPECT_EQ(m_recording->words(), (std::vector<uint32_t>{c.word}));
    }
}

TEST_F(MidiMainTest, NoteOffHasVelocityZeroAndLeavesTheWheel)
{
    openQuietly();
    midiNoteOn(4, 64, -50, 127);
    midiNoteOff(4, 64);
    EXPECT_EQ(m_recording->words(), (std::vector<uint32_t>{0x3000E4, 0x7F4094, 0x004084}));
}

TEST_F(MidiMainTest, ReopenGivesEveryChannelItsProgramAndWheelInOrder)
{
    setMidiDeviceId(0);
    openQuietly();
    setChannelBendCents(5, -50);
    m_now = 1234;
    m_recording->clear();

    ASSERT_EQ(reopenMidiOut(), kMidiOutOk);
    const std::vector<RecordedMessage> sent = m_recording->messages();
    ASSERT_EQ(sent.size(), 32u);
    for (uint32_t ch = 0; ch < 16; ++ch) {
        SCOPED_TRACE(testing::Message() << "channel " << ch);
        EXPECT_EQ(sent[2 * ch].message, 0xC0 + ch);
        EXPECT_EQ(sent[2 * ch + 1].message, (ch == 5 ? 0x300000u : 0x400000u) + 0xE0 + ch);
        EXPECT_EQ(sent[2 * ch].timeMs, 1234);
    }
}

TEST_F(MidiMainTest, UnusableDeviceReturnsItsCodeAndSendsNothing)
{
    struct Case {
        int32_t id;
        int32_t code;
    };
    for (const Case c : {Case{1, kMidiOutAllocated}, Case{7, kMidiOutBadDeviceId}}) {
        SCOPED_TRACE(testing::Message() << "device " << c.id);
        m_recording->clear();
        setMidiDeviceId(c.id);
        EXPECT_EQ(reopenMidiOut(), c.code);
        EXPECT_FALSE(midiOutFailureReason().empty());
        midiNoteOn(0, 60, 50, 100);
        midiOutReset();
        EXPECT_TRUE(m_recording->words().empty());
    }
    setMidiDeviceId(kMidiMapperId);
    EXPECT_EQ(reopenMidiOut(), kMidiOutOk);
    EXPECT_TRUE(midiOutFailureReason().empty());
}

TEST_F(MidiMainTest, ClosedOutputSendsNothingAndReopenRestoresTheShifts)
{
    openQuietly();
    EXPECT_EQ(closeMidiOut(), kMidiOutOk);
    EXPECT_EQ(closeMidiOut(), kMidiOutInvalidHandle);
    midiNoteOn(0, 60, 50, 100);
    EXPECT_TRUE(m_recording->words().empty());

    ASSERT_EQ(reopenMidiOut(), kMidiOutOk);
    const std::vector<uint32_t> words = m_recording->words();
    ASSERT_EQ(words.size(), 32u);
    EXPECT_EQ(words[1], 0x5000E0u);
}

TEST_F(MidiMainTest, ResetSendsSustainOffThenAllNotesOffOnEveryChannel)
{
    openQuietly();
    midiOutReset();
    const std::vector<uint32_t> words = m_recording->words();
    ASSERT_EQ(words.size(), 32u);
    for (uint32_t ch = 0; ch < 16; ++ch) {
        EXPECT_EQ(words[2 * ch], 0x40B0 + ch);
        EXPECT_EQ(words[2 * ch + 1], 0x7BB0 + ch);
    }
}

TEST_F(MidiMainTest, DeviceListStartsWithTheMapper)
{
    EXPECT_EQ(listMidiOutDevices(),
              (std::vector<MidiOutDevice>{{-1, "MIDI Mapper"}, {0, "Port A"}, {1, "Port B"}}));
}

TEST_F(MidiMainTest, OwnOutputForTheDeviceDialogLeavesTheSharedOneAlone)
{
    openQuietly();
    int32_t result = -1;
    std::string reason;
    EXPECT_EQ(openMidiOutDevice(1, result, &reason), nullptr);
    EXPECT_EQ(result, kMidiOutAllocated);
    EXPECT_FALSE(reason.empty());

    std::unique_ptr<MidiOutPort> own = openMidiOutDevice(0, result);
    ASSERT_NE(own, nullptr);
    EXPECT_EQ(result, kMidiOutOk);
    own->send(0xC0);
    midiNoteOff(0, 60);
    EXPECT_EQ(m_recording->words(), (std::vector<uint32_t>{0xC0, 0x3C80}));
}

// A device that can be unplugged: while gone, what is sent to it is lost and it cannot be opened.
class UnpluggablePort final : public MidiOutPort {
public:
    UnpluggablePort(std::shared_ptr<MidiRecording> recording, std::shared_ptr<bool> plugged)
        : m_recording(std::move(recording)), m_plugged(std::move(plugged))
    {
    }
    int32_t open() override
    {
        m_open = *m_plugged;
        return m_open ? kMidiOutOk : kMidiOutNoDevice;
    }
    int32_t close() override
    {
        const bool was = m_open;
        m_open = false;
        return was ? kMidiOutOk : kMidiOutInvalidHandle;
    }
    void send(uint32_t message) override
    {
        if (m_open && *m_plugged)
            m_recording->add({0, message});
    }
    std::string failureReason() const override { return *m_plugged ? "" : "the device is gone"; }

private:
    std::shared_ptr<MidiRecording> m_recording;
    std::shared_ptr<bool> m_plugged;
    bool m_open = false;
};

// The device goes away in the middle of a piece and comes back: playing on does no harm, the
// learner can read why it is silent, and once it is back every channel gets the shift it had
// reached meanwhile, so the next quarter tone sounds right.
TEST_F(MidiMainTest, DeviceLostWhilePlayingComesBackWithTheShiftsReachedMeanwhile)
{
    auto plugged = std::make_shared<bool>(true);
    auto recording = m_recording;
    setMidiOutBackend({[] { return std::vector<std::string>{"USB cable"}; },
                       [recording, plugged](int32_t) -> std::unique_ptr<MidiOutPort> {
                           return std::make_unique<UnpluggablePort>(recording, plugged);
                       }});
    setMidiDeviceId(0);
    openQuietly();
    midiNoteOn(0, 60, 0, 100);
    ASSERT_EQ(m_recording->words(), (std::vector<uint32_t>{0x643C90}));

    *plugged = false;
    m_recording->clear();
    midiNoteOff(0, 60);
    midiNoteOn(0, 64, -50, 100);
    midiNoteOn(3, 67, 50, 90);
    midiOutShortMsg(0x0407C0);
    midiOutReset();
    EXPECT_TRUE(m_recording->words().empty());
    EXPECT_EQ(reopenMidiOut(), kMidiOutNoDevice);
    EXPECT_EQ(midiOutFailureReason(), "the device is gone");
    midiNoteOff(0, 64);

    *plugged = true;
    ASSERT_EQ(reopenMidiOut(), kMidiOutOk);
    EXPECT_TRUE(midiOutFailureReason().empty());
    const std::vector<uint32_t> words = m_recording->words();
    ASSERT_EQ(words.size(), 32u);
    EXPECT_EQ(words[1], pitchWheelMessage(0, -50));
    EXPECT_EQ(words[7], pitchWheelMessage(3, 50));
    m_recording->clear();
    midiNoteOn(0, 64, -50, 100);
    EXPECT_EQ(m_recording->words(), (std::vector<uint32_t>{0x644090}));
}

TEST(BendToCents, RoundsAndQuantisesToQuarterTones)
{
    struct Case {
        int32_t bend;
        int32_t exact;
        int32_t quantised;
    };
    const Case cases[] = {
        {8192, 0, 0},       {9216, 25, 50},      {7168, -25, 0},      {9175, 24, 0},
        {9257, 26, 50},     {7127, -26, -50},    {7209, -24, 0},      {10240, 50, 50},
        {6144, -50, -50},   {0, -200, -200},     {16383, 200, 200},   {12288, 100, 100},
        {11264, 75, 100},   {5120, -75, -50},    {5079, -76, -100},   {8212, 0, 0},
        {8213, 1, 0},       {8171, -1, 0},       {8233, 1, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "bend " << c.bend);
        EXPECT_EQ(bendToCents(c.bend, false), c.exact);
        EXPECT_EQ(bendToCents(c.bend, true), c.quantised);
    }
}

TEST(BendToCents, QuarterToneShiftsSurviveTheRoundTrip)
{
    for (int32_t cents = -200; cents <= 150; cents += 50) {
        SCOPED_TRACE(cents);
        EXPECT_EQ(bendToCents(centsToBend(cents), true), cents);
    }
}

}  // namespace
}  // namespace tarabix
