// The output layer every part of the program sends through, and its system MIDI ports.
#include "playback/RecorderPort.h"
#include "playback/RtMidiPort.h"
#include "playback/SystemMidiOut.h"
#include "playback/mMidiMain.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <utility>

namespace tarabix {
namespace {

using Words = std::vector<uint32_t>;

// An output whose device can be unplugged mid-piece: open() gives the code of the moment, and what
// is sent while it is gone is lost. Each message keeps its due time (-1: none).
class TestPort final : public MidiOutPort {
public:
    TestPort(std::shared_ptr<MidiRecording> recording, std::shared_ptr<int32_t> code, int32_t heardDelayMs)
        : m_recording(std::move(recording)), m_code(std::move(code)), m_heardDelayMs(heardDelayMs)
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
    int32_t heardDelayMs() const override { return m_open ? m_heardDelayMs : 0; }

private:
    std::shared_ptr<MidiRecording> m_recording;
    std::shared_ptr<int32_t> m_code;
    int32_t m_heardDelayMs;
    bool m_open = false;
};

class MidiMainTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        resetMidiMainState();
        // The mapper stands for the built-in synthesizer, heard 45 ms late; device 0 can be unplugged.
        setMidiOutBackend({[] { return std::vector<std::string>{"Port A"}; },
                           [this](int32_t id) -> std::unique_ptr<MidiOutPort> {
                               if (id == 0)
                                   return std::make_unique<TestPort>(m_recording, m_device0, 0);
                               if (id == kMidiMapperId)
                                   return std::make_unique<TestPort>(m_recording, std::make_shared<int32_t>(kMidiOutOk), 45);
                               return nullptr;
                           }});
    }
    void TearDown() override { resetMidiMainState(); }

    // Opens the device and forgets what the open itself sent.
    void openQuietly(int32_t id)
    {
        setMidiDeviceId(id);
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
    std::shared_ptr<int32_t> m_device0 = std::make_shared<int32_t>(kMidiOutOk);  // its open code
};

TEST_F(MidiMainTest, NoteOnSendsThePitchWheelOnlyWhenTheChannelsShiftChanges)
{
    openQuietly(kMidiMapperId);
    midiNoteOn(0, 60, 50, 100);
    midiNoteOn(0, 60, 50, 100);
    // The shift belongs to the channel: another starts from 0 cents. A note-off leaves the wheel.
    midiNoteOn(3, 62, 0, 90);
    midiNoteOff(3, 62);
    EXPECT_EQ(take(), (Words{0x5000E0, 0x643C90, 0x643C90, 0x5A3E93, 0x003E83}));

    const std::tuple<int, int32_t, uint32_t> wheels[] = {
        {0, -50, 0x3000E0}, {15, 100, 0x6000EF}, {2, -200, 0x0000E2}, {1, 199, 0x7F57E1},
        {4, 200, 0x7F7FE4},  // a piece's wheel at its top: still a wheel message, not a data byte 0x80
    };
    for (const auto& [ch, cents, word] : wheels) {
        setChannelBendCents(ch, cents);
        EXPECT_EQ(take(), (Words{word})) << cents << " cents";
    }
}

TEST(NearestQuarterTone, TakesCentsToMultiplesOf50WithPlus25GoingUp)
{
    const std::pair<int32_t, int32_t> cases[] = {{25, 50},    {24, 0},   {-25, 0},     {-26, -50}, {75, 100},
                                                 {-75, -50}, {-76, -100}, {175, 200}, {-200, -200}};
    for (const auto& [cents, quarterTone] : cases)
        EXPECT_EQ(nearestQuarterTone(cents), quarterTone) << cents;
}

// A reset lifts the sustain pedal before all notes off, or held notes ring on.
TEST_F(MidiMainTest, ResetLiftsThePedalsFirstAndAClosedOutputSendsNothing)
{
    openQuietly(0);
    midiOutReset();
    const Words reset = take();
    ASSERT_EQ(reset.size(), 32u);
    EXPECT_EQ(Words(reset.end() - 2, reset.end()), (Words{0x40BF, 0x7BBF}));
    EXPECT_EQ(closeMidiOut(), kMidiOutOk);
    EXPECT_EQ(closeMidiOut(), kMidiOutInvalidHandle);
    midiNoteOn(0, 60, 50, 100);
    EXPECT_TRUE(take().empty());
}

// The device goes away mid-piece and comes back: playing on does no harm, the reason can be read,
// and once back every channel gets the shift it reached meanwhile.
TEST_F(MidiMainTest, DeviceLostWhilePlayingComesBackWithTheShiftsReachedMeanwhile)
{
    openQuietly(0);
    *m_device0 = kMidiOutNoDevice;
    midiNoteOn(0, 64, -50, 100);
    midiNoteOn(3, 67, 50, 90);
    midiOutReset();
    EXPECT_TRUE(take().empty());
    EXPECT_EQ(reopenMidiOut(), kMidiOutNoDevice);
    EXPECT_EQ(midiOutFailureReason(), "the device is gone");
    midiNoteOff(0, 64);

    *m_device0 = kMidiOutOk;
    ASSERT_EQ(reopenMidiOut(), kMidiOutOk);
    EXPECT_TRUE(midiOutFailureReason().empty());
    // Every channel's program and wheel, in channel order.
    const Words words = take();
    ASSERT_EQ(words.size(), 32u);
    for (uint32_t ch = 0; ch < 16; ++ch) {
        EXPECT_EQ(words[2 * ch], 0xC0 + ch);
        EXPECT_EQ(words[2 * ch + 1], pitchWheelMessage(static_cast<int>(ch), ch == 0 ? -50 : ch == 3 ? 50 : 0));
    }
    midiNoteOn(0, 64, -50, 100);
    EXPECT_EQ(take(), (Words{0x644090}));

    setMidiDeviceId(7);  // no such device
    EXPECT_EQ(reopenMidiOut(), kMidiOutBadDeviceId);
    EXPECT_FALSE(midiOutFailureReason().empty());
    midiNoteOn(0, 60, 50, 100);
    EXPECT_TRUE(take().empty());
}

TEST_F(MidiMainTest, APiecesDueTimeTravelsWithEveryMessageOfItsEvent)
{
    openQuietly(kMidiMapperId);
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

// The delay of the open output: the built-in synthesizer's, a system port's none, none when closed.
TEST_F(MidiMainTest, TheHeardDelayIsTheOpenOutputs)
{
    EXPECT_EQ(midiOutHeardDelayMs(), 0);
    ASSERT_EQ(reopenMidiOut(), kMidiOutOk);
    EXPECT_EQ(midiOutHeardDelayMs(), 45);
    setMidiDeviceId(0);
    ASSERT_EQ(reopenMidiOut(), kMidiOutOk);
    EXPECT_EQ(midiOutHeardDelayMs(), 0);
}

// Without the kernel's sequencer: no ports but a reason, and nothing on the terminal.
TEST(RtMidiPort, WithoutASequencerThereAreNoPortsAndTheReasonIsGiven)
{
    if (std::error_code ec; std::filesystem::exists("/dev/snd/seq", ec))
        GTEST_SKIP() << "this machine has a MIDI sequencer";
    testing::internal::CaptureStderr();
    EXPECT_TRUE(listSystemMidiPorts().empty());
    EXPECT_NE(systemMidiPortsProblem().find("no MIDI sequencer"), std::string::npos);
    EXPECT_EQ(systemMidiOutBackend().devicesProblem(), systemMidiPortsProblem());

    RtMidiPort port(0);
    EXPECT_NE(port.open(), kMidiOutOk);
    EXPECT_FALSE(port.failureReason().empty());
    port.send(0x643C90);
    EXPECT_EQ(port.close(), kMidiOutInvalidHandle);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_NE(systemMidiOutBackend().makePort(-1), nullptr);
}

}  // namespace
}  // namespace tarabix
