// The device dialog: the output, its test notes, why it is silent, the SoundFont and latency.
#include "app/fMidiDevs.h"

#include "DialogTesting.h"

#include "base/TickSource.h"
#include "playback/AudioDriverSettings.h"
#include "playback/RecorderPort.h"
#include "playback/SoundFontLocator.h"
#include "playback/SystemMidiOut.h"
#include "playback/mMidiMain.h"
#include "tests/playback/SoundFontBytes.h"

#include <gtest/gtest.h>

#include <QComboBox>
#include <QFile>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QTest>

#include <map>
#include <memory>
#include <vector>

namespace tarabix {
namespace {

using Words = std::vector<uint32_t>;

// An output that opens at once but sounds only readyAfterMs later, as the built-in synthesizer
// does while it loads its SoundFont.
class LateReadyPort final : public MidiOutPort {
public:
    LateReadyPort(std::shared_ptr<MidiRecording> recording, int32_t openResult, const int& readyAfterMs)
        : m_port(std::move(recording), [] { return tickMs(); }, openResult), m_readyAfterMs(readyAfterMs)
    {
    }
    int32_t open() override
    {
        m_openedAt = tickMs();
        return m_port.open();
    }
    int32_t close() override { return m_port.close(); }
    void send(uint32_t message) override { m_port.send(message); }
    std::string failureReason() const override { return m_port.failureReason(); }
    bool isReady() const override { return tickMs() - m_openedAt >= m_readyAfterMs; }

private:
    RecorderPort m_port;
    const int& m_readyAfterMs;
    int32_t m_openedAt = 0;
};

// The mapper and device 0 open, device 1 is taken by another program; every output keeps its own
// recording so the shared output and the test output stay apart.
class MidiDevsTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        resetMidiMainState();
        for (int32_t id : {kMidiMapperId, 0, 1})
            m_recordings[id] = std::make_shared<MidiRecording>();
        setMidiOutBackend({[] { return std::vector<std::string>{"Port A", "Port B"}; },
                           [this](int32_t id) -> std::unique_ptr<MidiOutPort> {
                               return std::make_unique<LateReadyPort>(
                                   m_recordings.at(id), id == 1 ? kMidiOutAllocated : kMidiOutOk, m_readyAfterMs);
                           }});
    }
    void TearDown() override { resetMidiMainState(); }

    // The shared output opened on `id`, as the main window holds it, its opening messages forgotten.
    void holdShared(int32_t id)
    {
        setMidiDeviceId(id);
        reopenMidiOut();
        for (auto& [ignored, recording] : m_recordings)
            recording->clear();
    }

    Words words(int32_t id) const { return m_recordings.at(id)->words(); }

    static Words reopenWords()  // each channel's program and its centred pitch wheel
    {
        Words out;
        for (uint32_t ch = 0; ch < 16; ++ch)
            out.insert(out.end(), {0xC0 + ch, 0x400000 + 0xE0 + ch});
        return out;
    }

    std::map<int32_t, std::shared_ptr<MidiRecording>> m_recordings;
    int m_readyAfterMs = 0;
};

// OK sets the device, re-opening it when the window held the old one, and the built-in
// synthesizer's latency, reporting a change for the window to keep; Cancel changes nothing.
TEST_F(MidiDevsTest, OkTakesTheDeviceAndTheLatencyCancelNothing)
{
    constexpr int kLatency = kDefaultSynthLatencyMs;
    struct Case {
        const char* name;
        bool held;
        int32_t startId;
        int shownIndex;  // the list: the mapper first, then the ports
        int pick;
        int latency;
        bool ok;
        int32_t expectedId;
        int expectedLatency;
    };
    const Case cases[] = {
        {"ok on another device and latency", true, kMidiMapperId, 0, 1, 35, true, 0, 35},
        {"ok on the mapper", true, 0, 1, 0, kLatency, true, kMidiMapperId, kLatency},
        {"cancel", true, kMidiMapperId, 0, 1, 50, false, kMidiMapperId, kLatency},
        {"ok while the window does not hold the device: no re-open", false, kMidiMapperId, 0, 1, kLatency, true, 0,
         kLatency},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        SetUp();
        setBuiltInSynthLatencyMs(kLatency);
        holdShared(c.startId);
        fMidiDevs dlg(c.held);
        dlg.show();
        EXPECT_EQ(dlg.cmbMDevs->currentIndex(), c.shownIndex);
        QSignalSpy latencyChosen(&dlg, &fMidiDevs::latencyChosen);
        // A held device is let go while the dialog is open, so notes sent now go nowhere.
        midiNoteOn(0, 60, 0, 100);
        EXPECT_EQ(words(c.startId).size(), c.held ? 0u : 1u);
        m_recordings.at(c.startId)->clear();
        dlg.cmbMDevs->setCurrentIndex(c.pick);
        dlg.spnLatency->setValue(c.latency);
        test::click(c.ok ? dlg.cmdOK : dlg.cmdCancel);
        EXPECT_EQ(getMidiDeviceId(), c.expectedId);
        for (int32_t id : {kMidiMapperId, 0}) {
            SCOPED_TRACE(id);
            EXPECT_EQ(words(id), c.held && id == c.expectedId ? reopenWords() : Words{});
        }
        EXPECT_EQ(builtInSynthLatencyMs(), c.expectedLatency);
        EXPECT_EQ(latencyChosen.count(), c.expectedLatency != kLatency ? 1 : 0);
    }
    setBuiltInSynthLatencyMs(kLatency);
}

// The test notes go to the chosen device, not to the window's: once that output can sound (the
// built-in synthesizer loads its SoundFont first), three notes apart, from the event loop; a
// dialog closed during a test releases the sounding note before the held device re-opens.
TEST_F(MidiDevsTest, TestWaitsUntilItsOutputCanSoundPlaysThreeNotesAndStopsOnClose)
{
    holdShared(kMidiMapperId);
    m_readyAfterMs = 400;
    fMidiDevs dlg(true);
    dlg.show();
    dlg.cmbMDevs->setCurrentIndex(1);
    QSignalSpy finished(&dlg, &fMidiDevs::testFinished);
    const int32_t pressedAt = tickMs();
    test::click(dlg.cmdTest);
    EXPECT_TRUE(dlg.testRunning());
    EXPECT_EQ(words(0), Words{});  // nothing is thrown at an output that cannot sound
    ASSERT_TRUE(finished.wait(5000));
    EXPECT_EQ(words(0), (Words{0xC0, 0x7F4090, 0x4080, 0x7F4390, 0x4380, 0x7F4790, 0x4780}));
    EXPECT_EQ(words(kMidiMapperId), Words{});
    const std::vector<RecordedMessage> sent = m_recordings.at(0)->messages();
    EXPECT_GE(sent[0].timeMs - pressedAt, m_readyAfterMs);
    EXPECT_GE(sent[2].timeMs - sent[1].timeMs, 249);  // the first note keeps its length

    m_recordings.at(0)->clear();
    test::click(dlg.cmdTest);
    ASSERT_TRUE(QTest::qWaitFor([this] { return words(0).size() == 2; }, 5000));
    test::click(dlg.cmdCancel);
    EXPECT_EQ(words(0), (Words{0xC0, 0x7F4090, 0x4080}));
    EXPECT_EQ(words(kMidiMapperId), reopenWords());
    QTest::qWait(300);
    EXPECT_EQ(words(0).size(), 3u);
}

TEST_F(MidiDevsTest, SaysWhyADeviceIsSilent)
{
    fMidiDevs dlg(false);
    dlg.show();
    dlg.cmbMDevs->setCurrentIndex(2);  // device 1, taken by another program
    test::click(dlg.cmdTest);
    ASSERT_NE(dlg.findChild<QMessageBox*>(), nullptr);
    EXPECT_TRUE(dlg.lblStatus->text().contains("the recorder was told to fail"));
    setMidiDeviceId(1);  // the window's output failed before the dialog opened
    ASSERT_NE(reopenMidiOut(), kMidiOutOk);
    EXPECT_TRUE(fMidiDevs(true).lblStatus->text().contains("the recorder was told to fail"));
}

// The SoundFont button's file: a broken one is refused with the reason and changes nothing; a
// good one becomes the built-in synthesizer's and is handed to the window to remember.
TEST_F(MidiDevsTest, AChosenSoundFontIsCheckedBeforeItIsTaken)
{
    QTemporaryDir dir;
    const auto write = [&dir](const char* name, const std::string& bytes) {
        QFile file(dir.filePath(QString::fromLatin1(name)));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes.data(), static_cast<qint64>(bytes.size()));
        return file.fileName();
    };
    setSoundFontOverride("");
    fMidiDevs dlg(false);
    dlg.show();
    QSignalSpy chosen(&dlg, &fMidiDevs::soundFontChosen);
    EXPECT_FALSE(dlg.chooseSoundFontFile(write("notes.sf2", "my lesson notes")));
    EXPECT_EQ(soundFontOverride(), "");
    EXPECT_TRUE(dlg.lblStatus->text().contains(QStringLiteral("it is not a SoundFont")));
    const QString good = write("lesson.sf2", test::soundFontBytes());
    EXPECT_TRUE(dlg.chooseSoundFontFile(good));
    EXPECT_EQ(soundFontOverride(), good.toStdString());
    ASSERT_EQ(chosen.count(), 1);  // the broken one was not handed on
    EXPECT_EQ(chosen.at(0).at(0).toString(), good);
    EXPECT_FALSE(dlg.lblStatus->isVisibleTo(&dlg));
    setSoundFontOverride("");
}

}  // namespace
}  // namespace tarabix
