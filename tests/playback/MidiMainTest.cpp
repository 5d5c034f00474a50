#include "playback/RecorderPort.h"
#include "playback/mMidiMain.h"

#include <gtest/gtest.h>

#include <map>
#include <utility>

namespace tarabix {
namespace {

using Words = std::vector<uint32_t>;

// An output whose open gives its device's code of the moment, so a device can be unplugged in the
// middle of a piece; what is sent to it while it is gone is lost. Each message keeps the due time
// it came with (-1: none).
class TestPort final : public MidiOutPort {
public:
    TestPort(std::shared_ptr<MidiRecording> recording, std::shared_ptr<int32_t> code)
        : m_recording(std::move(recording)), m_code(std::move(code))
    {
    }
    int32_t open() override
    {
        m_open = *m_code == kMidiOutOk;
        return *m_code;
    }
    int32_t close() override { return std::exchange(m_open, false) ? kMidiOutOk : kMidiOutInvalidHandle; }
    void send(uint32_t message) override { sendAt(message, -1); }
    void sendAt(uint32_t message, int32_t dueMs) override
    {
        if (m_open && *m_code == kMidiOutOk)
            m_recording->add({dueMs, message});
    }
    std::string failureReason() const override { return *m_code == kMidiOutOk ? "" : "the device is gone"; }

private:
    std::shared_ptr<MidiRecording> m_recording;
    std::shared_ptr<int32_t> m_code;
    bool m_open = false;
};

class MidiMainTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        resetMidiMainState();
        setMidiOutBackend({[] { return std::vector<std::string>{"Port A", "Port B"}; },
                           [this](int32_t id) -> std::unique_ptr<MidiOutPort> {
                               const auto it = m_codes.find(id);
                               if (it == m_codes.end())
                                   return nullptr;
                               return std::make_unique<TestPort>(m_recording, it->second);
                           }});
    }
    void TearDown() override { resetMidiMainState(); }

    // Opens the current device and forgets what the re-open itself sent.
    void openQuietly()
    {
        ASSERT_EQ(reopenMidiOut(), kMidiOutOk);
        m_recording->clear();
    }
    // The words sent since the last call.
    Words take()
    {
        const Words words = m_recording->words();
        m_recording->clear();
        return words;
    }

    std::shared_ptr<MidiRecording> m_recording = std::make_shared<MidiRecording>();
    // The open code of every device; any other id is no device at all.
    std::map<int32_t, std::shared_ptr<int32_t>> m_codes{{kMidiMapperId, std::make_shared<int32_t>(kMidiOutOk)},
                                                        {0, std::make_shared<int32_t>(kMidiOutOk)},
                                                        {1, std::make_shared<int32_t>(kMidiOutAllocated)}};
};

TEST_F(MidiMainTest, NoteOnSendsThePitchWheelOnlyWhenTheChannelsShiftChanges)
{
    openQuietly();
    midiNoteOn(0, 60, 50, 100);
    EXPECT_EQ(take(), (Words{0x5000E0, 0x643C90}));
    midiNoteOn(0, 60, 50, 100);
    EXPECT_EQ(take(), (Words{0x643C90}));
    // The shift belongs to the channel: another channel still starts from 0 cents. A note-off
    // has velocity 0 and leaves the wheel alone.
    midiNoteOn(3, 62, 0, 90);
    midiNoteOff(3, 62);
    EXPECT_EQ(take(), (Words{0x5A3E93, 0x003E83}));
}

TEST_F(MidiMainTest, PitchWheelWordsForShiftsInCents)
{
    struct Case { int ch; int32_t cents; uint32_t word; };
    const Case cases[] = {
        {0, 50, 0x5000E0}, {0, -50, 0x3000E0}, {0, 0, 0x4000E0}, {15, 100, 0x6000EF}, {2, -200, 0x0000E2},
        {1, 199, 0x7F57E1}, {0, 150, 0x7000E0}, {0, -150, 0x1000E0},
        {4, 200, 0x7F7FE4},  // a piece's wheel at its top: still a wheel message, not a data byte 0x80
    };
    openQuietly();
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "ch " << c.ch << ", cents " << c.cents);
        setChannelBendCents(c.ch, c.cents);
        EXPECT_EQ(take(), (Words{c.word}));
    }
}

TEST_F(MidiMainTest, ReopenGivesEveryChannelItsProgramAndWheelInOrderAndCloseSilencesIt)
{
    setMidiDeviceId(0);
    openQuietly();
    setChannelBendCents(5, -50);
    take();
    ASSERT_EQ(reopenMidiOut(), kMidiOutOk);
    const Words sent = take();
    ASSERT_EQ(sent.size(), 32u);
    for (uint32_t ch = 0; ch < 16; ++ch) {
        SCOPED_TRACE(testing::Message() << "channel " << ch);
        EXPECT_EQ(sent[2 * ch], 0xC0 + ch);
        EXPECT_EQ(sent[2 * ch + 1], (ch == 5 ? 0x300000u : 0x400000u) + 0xE0 + ch);
    }
    // A reset lifts the sustain pedal before all notes off, or held notes ring on.
    midiOutReset();
    const Words reset = take();
    ASSERT_EQ(reset.size(), 32u);
    EXPECT_EQ(std::make_pair(reset[0], reset[1]), std::make_pair(0x40B0u, 0x7BB0u));
    EXPECT_EQ(std::make_pair(reset[30], reset[31]), std::make_pair(0x40BFu, 0x7BBFu));

    EXPECT_EQ(closeMidiOut(), kMidiOutOk);
    EXPECT_EQ(closeMidiOut(), kMidiOutInvalidHandle);
    midiNoteOn(0, 60, 50, 100);
    EXPECT_TRUE(take().empty());
}

TEST_F(MidiMainTest, UnusableDeviceReturnsItsCodeAndSendsNothing)
{
    for (const auto& [id, code] : {std::pair{1, kMidiOutAllocated}, std::pair{7, kMidiOutBadDeviceId}}) {
        SCOPED_TRACE(testing::Message() << "device " << id);
        setMidiDeviceId(id);
        EXPECT_EQ(reopenMidiOut(), code);
        EXPECT_FALSE(midiOutFailureReason().empty());
        midiNoteOn(0, 60, 50, 100);
        midiOutReset();
        EXPECT_TRUE(take().empty());
    }
    setMidiDeviceId(kMidiMapperId);
    EXPECT_EQ(reopenMidiOut(), kMidiOutOk);
    EXPECT_TRUE(midiOutFailureReason().empty());
}

// The device goes away in the middle of a piece and comes back: playing on does no harm, the
// learner can read why it is silent, and once it is back every channel gets the shift it had
// reached meanwhile, so the next quarter tone sounds right.
TEST_F(MidiMainTest, DeviceLostWhilePlayingComesBackWithTheShiftsReachedMeanwhile)
{
    setMidiDeviceId(0);
    openQuietly();
    midiNoteOn(0, 60, 0, 100);
    ASSERT_EQ(take(), (Words{0x643C90}));

    *m_codes[0] = kMidiOutNoDevice;
    midiNoteOff(0, 60);
    midiNoteOn(0, 64, -50, 100);
    midiNoteOn(3, 67, 50, 90);
    midiOutShortMsg(0x0407C0);
    midiOutReset();
    EXPECT_TRUE(take().empty());
    EXPECT_EQ(reopenMidiOut(), kMidiOutNoDevice);
    EXPECT_EQ(midiOutFailureReason(), "the device is gone");
    midiNoteOff(0, 64);

    *m_codes[0] = kMidiOutOk;
    ASSERT_EQ(reopenMidiOut(), kMidiOutOk);
    EXPECT_TRUE(midiOutFailureReason().empty());
    const Words words = take();
    ASSERT_EQ(words.size(), 32u);
    EXPECT_EQ(words[1], pitchWheelMessage(0, -50));
    EXPECT_EQ(words[7], pitchWheelMessage(3, 50));
    midiNoteOn(0, 64, -50, 100);
    EXPECT_EQ(take(), (Words{0x644090}));
}

TEST_F(MidiMainTest, APiecesDueTimeTravelsWithEveryMessageOfItsEvent)
{
    openQuietly();
    {
        const MidiOutDueTime due(1234);
        midiNoteOn(0, 60, 50, 100);
        {
            const MidiOutDueTime inner(1300);
            midiOutShortMsg(0x10C0);
        }
        midiNoteOff(0, 60);
    }
    midiNoteOn(1, 62, 0, 90);  // by hand: no due time
    EXPECT_EQ(m_recording->messages(),
              (std::vector<RecordedMessage>{{1234, 0x5000E0}, {1234, 0x643C90}, {1300, 0x10C0}, {1234, 0x3C80}, {-1, 0x5A3E91}}));
}

TEST(NearestQuarterTone, TakesCentsToMultiplesOf50WithPlus25GoingUp)
{
    const std::pair<int32_t, int32_t> cases[] = {
        {0, 0},     {25, 50},   {-25, 0},  {24, 0},     {26, 50},   {-26, -50}, {-24, 0},   {50, 50},  {-50, -50},
        {-200, -200}, {200, 200}, {100, 100}, {75, 100}, {-75, -50}, {-76, -100}, {1, 0},   {-1, 0},   {175, 200},
    };
    for (const auto& [cents, quarterTone] : cases)
        EXPECT_EQ(nearestQuarterTone(cents), quarterTone) << cents;
}

// The window delays a piece's marks by what the open output says: the built-in synthesizer's
// delay while it is open, a system port's none, nothing while nothing is open.
TEST(MidiMain, TheHeardDelayIsTheOpenOutputs)
{
    resetMidiMainState();
    EXPECT_EQ(midiOutHeardDelayMs(), 0);
    auto recording = std::make_shared<MidiRecording>();
    setMidiOutBackend({[] { return std::vector<std::string>{"Port A"}; }, [recording](int32_t id) {
                           auto port = std::make_unique<RecorderPort>(recording);
                           if (id == kMidiMapperId)
                               port->setHeardDelayMs(45);
                           return port;
                       }});
    EXPECT_EQ(midiOutHeardDelayMs(), 0);
    ASSERT_EQ(reopenMidiOut(), kMidiOutOk);
    EXPECT_EQ(midiOutHeardDelayMs(), 45);
    setMidiDeviceId(0);
    ASSERT_EQ(reopenMidiOut(), kMidiOutOk);
    EXPECT_EQ(midiOutHeardDelayMs(), 0);
    setMidiDeviceId(kMidiMapperId);
    ASSERT_EQ(reopenMidiOut(), kMidiOutOk);
    closeMidiOut();
    EXPECT_EQ(midiOutHeardDelayMs(), 0);
    resetMidiMainState();
}

}  // namespace
}  // namespace tarabix
