#include "app/fMidiDevs.h"

#include "DialogTesting.h"

#include "base/TickSource.h"
#include "playback/AudioDriverSettings.h"
#include "playback/RecorderPort.h"
#include "playback/SoundFontLocator.h"
#include "playback/SystemMidiOut.h"
#include "tests/playback/SoundFontBytes.h"
#include "playback/mMidiMain.h"

#include "TarabixVersion.h"

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

// Recorders as the outputs: the mapper and device 0 open, device 1 is taken by another program,
// every output keeps its own recording so the shared output and the test output stay apart.
class MidiDevsTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        resetMidiMainState();
        for (int32_t id : {kMidiMapperId, 0, 1})
            m_recordings[id] = std::make_shared<MidiRecording>();
        setMidiOutBackend({[] { return std::vector<std::string>{"Port A", "Port B"}; },
                           [recordings = m_recordings](int32_t id) -> std::unique_ptr<MidiOutPort> {
                               return std::make_unique<RecorderPort>(recordings.at(id), nullptr,
                                                                     id == 1 ? kMidiOutAllocated : kMidiOutOk);
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

    // What a re-open sends: each channel's program and its centred pitch wheel.
    static Words reopenWords()
    {
        Words out;
        for (uint32_t ch = 0; ch < 16; ++ch) {
            out.push_back(0xC0 + ch);
            out.push_back(0x400000 + 0xE0 + ch);
        }
        return out;
    }

    std::map<int32_t, std::shared_ptr<MidiRecording>> m_recordings;
};

TEST_F(MidiDevsTest, ListsTheMapperFirstAndSelectsTheCurrentDevice)
{
    for (const auto& [id, index] : {std::pair{kMidiMapperId, 0}, std::pair{0, 1}, std::pair{1, 2}, std::pair{5, -1}}) {
        SCOPED_TRACE(id);
        setMidiDeviceId(id);
        fMidiDevs dlg(false);
        EXPECT_EQ(dlg.cmbMDevs->currentIndex(), index);
    }
    fMidiDevs dlg(false);
    ASSERT_EQ(dlg.cmbMDevs->count(), 3);
    EXPECT_EQ(dlg.cmbMDevs->itemText(0), "MIDI Mapper");
    EXPECT_EQ(dlg.cmbMDevs->itemText(2), "Port B");
    EXPECT_EQ(dlg.windowTitle(), "Midi Devices");
    EXPECT_EQ(dlg.lblHeading->text(), "MIDI Devices");
    EXPECT_EQ(dlg.lblPrompt->text(), "Select a MIDI device for use or for testing");
    EXPECT_FALSE(dlg.lblStatus->isVisibleTo(&dlg)) << "nothing has failed";
}

TEST_F(MidiDevsTest, OkAndCancelSetTheIdAndReopenAHeldDevice)
{
    struct Case {
        const char* name;
        bool held;
        int32_t startId;
        int pick;
        bool ok;
        int32_t expectedId;
    };
    const Case cases[] = {
        {"ok on another device", true, kMidiMapperId, 1, true, 0},
        {"ok on the mapper", true, 0, 0, true, kMidiMapperId},
        {"cancel keeps the old device", true, kMidiMapperId, 1, false, kMidiMapperId},
        {"ok while the window does not hold the device: no re-open", false, kMidiMapperId, 1, true, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        SetUp();
        holdShared(c.startId);
        fMidiDevs dlg(c.held);
        dlg.show();
        QSignalSpy chosen(&dlg, &fMidiDevs::deviceChosen);
        // A held device is let go while the dialog is open, so notes sent now go nowhere.
        midiNoteOn(0, 60, 0, 100);
        EXPECT_EQ(words(c.startId).size(), c.held ? 0u : 1u);
        m_recordings.at(c.startId)->clear();

        dlg.cmbMDevs->setCurrentIndex(c.pick);
        test::click(c.ok ? dlg.cmdOK : dlg.cmdCancel);
        EXPECT_EQ(getMidiDeviceId(), c.expectedId);
        EXPECT_EQ(chosen.count(), c.ok ? 1 : 0);
        for (int32_t id : {kMidiMapperId, 0}) {
            SCOPED_TRACE(id);
            EXPECT_EQ(words(id), c.held && id == c.expectedId ? reopenWords() : Words{});
        }
    }
}

TEST_F(MidiDevsTest, TestPlaysThreeNotesWithoutFreezingTheWindowAndStopsOnClose)
{
    holdShared(kMidiMapperId);
    fMidiDevs dlg(true);
    dlg.show();
    dlg.cmbMDevs->setCurrentIndex(1);
    QSignalSpy finished(&dlg, &fMidiDevs::testFinished);
    test::click(dlg.cmdTest);

    // The click returned with the first note sounding: the rest comes from the event loop.
    EXPECT_TRUE(dlg.testRunning());
    EXPECT_FALSE(dlg.cmdTest->isEnabled());
    EXPECT_EQ(words(0), (Words{0xC0, 0x7F4090}));

    ASSERT_TRUE(finished.wait(5000));
    EXPECT_FALSE(dlg.testRunning());
    EXPECT_TRUE(dlg.cmdTest->isEnabled());
    const Words triad{0xC0, 0x7F4090, 0x4080, 0x7F4390, 0x4380, 0x7F4790, 0x4780};
    EXPECT_EQ(words(0), triad);
    EXPECT_EQ(words(kMidiMapperId), Words{});
    const std::vector<RecordedMessage> sent = m_recordings.at(0)->messages();
    for (const auto& [from, atLeastMs] : {std::pair{1, 250}, std::pair{3, 250}, std::pair{5, 500}}) {
        SCOPED_TRACE(from);
        EXPECT_GE(sent[from + 1].timeMs - sent[from].timeMs, atLeastMs - 1);
    }

    // Closed during a second test: the sounding note is released before the held device re-opens.
    m_recordings.at(0)->clear();
    test::click(dlg.cmdTest);
    test::click(dlg.cmdCancel);
    EXPECT_FALSE(dlg.testRunning());
    EXPECT_EQ(words(0), (Words{0xC0, 0x7F4090, 0x4080}));
    EXPECT_EQ(words(kMidiMapperId), reopenWords());
    QTest::qWait(300);
    EXPECT_EQ(words(0).size(), 3u);
}

// An output that opens at once but sounds only later, as the built-in synthesizer does while it
// loads its SoundFont.
class LateReadyPort final : public MidiOutPort {
public:
    LateReadyPort(std::shared_ptr<MidiRecording> recording, int readyAfterMs)
        : m_port(std::move(recording), [] { return tickMs(); }), m_readyAfterMs(readyAfterMs)
    {
    }
    int32_t open() override
    {
        m_openedAt = tickMs();
        return m_port.open();
    }
    int32_t close() override { return m_port.close(); }
    void send(uint32_t message) override { m_port.send(message); }
    bool isReady() const override { return tickMs() - m_openedAt >= m_readyAfterMs; }

private:
    RecorderPort m_port;
    int m_readyAfterMs;
    int32_t m_openedAt = 0;
};

TEST_F(MidiDevsTest, TestWaitsUntilItsOutputCanSoundAndKeepsTheNotesApart)
{
    static constexpr int kReadyAfterMs = 400;
    auto recording = std::make_shared<MidiRecording>();
    setMidiOutBackend({[] { return std::vector<std::string>{}; },
                       [recording](int32_t) -> std::unique_ptr<MidiOutPort> {
                           return std::make_unique<LateReadyPort>(recording, kReadyAfterMs);
                       }});
    fMidiDevs dlg(false);
    dlg.show();
    dlg.cmbMDevs->setCurrentIndex(0);
    QSignalSpy finished(&dlg, &fMidiDevs::testFinished);
    const int32_t pressedAt = tickMs();
    test::click(dlg.cmdTest);
    EXPECT_TRUE(recording->words().empty());  // nothing is thrown at an output that cannot sound

    ASSERT_TRUE(finished.wait(5000));
    const std::vector<RecordedMessage> sent = recording->messages();
    ASSERT_EQ(sent.size(), 7u);
    EXPECT_GE(sent[0].timeMs - pressedAt, kReadyAfterMs);
    EXPECT_GE(sent[2].timeMs - sent[1].timeMs, 249);  // the first note keeps its length
}

TEST_F(MidiDevsTest, SaysWhyADeviceIsSilent)
{
    {
        fMidiDevs dlg(false);
        dlg.show();
        dlg.cmbMDevs->setCurrentIndex(2);
        test::click(dlg.cmdTest);
        auto* box = dlg.findChild<QMessageBox*>();
        ASSERT_NE(box, nullptr);
        EXPECT_TRUE(box->isVisible());
        EXPECT_EQ(box->text(), "Unable to use this device now.\r\n"
                               "It might be in exclusive use by another program, or it can be unusable.");
        EXPECT_EQ(box->icon(), QMessageBox::Warning);
        EXPECT_EQ(box->windowTitle(), "Tarabix " TARABIX_VERSION);
        EXPECT_TRUE(dlg.lblStatus->isVisibleTo(&dlg));
        EXPECT_TRUE(dlg.lblStatus->text().contains("the recorder was told to fail"));
        EXPECT_FALSE(dlg.testRunning());
        EXPECT_EQ(words(1), Words{});
    }
    // The shared output failed before the dialog opened.
    setMidiDeviceId(1);
    ASSERT_NE(reopenMidiOut(), kMidiOutOk);
    fMidiDevs dlg(true);
    EXPECT_TRUE(dlg.lblStatus->isVisibleTo(&dlg));
    EXPECT_TRUE(dlg.lblStatus->text().contains("the recorder was told to fail"));
}

// The SoundFont button's file: a broken one is refused with the reason and changes nothing; a
// good one becomes the built-in synthesizer's and is handed to the window to remember.
TEST_F(MidiDevsTest, AChosenSoundFontIsCheckedBeforeItIsTaken)
{
    QTemporaryDir dir;
    const auto write = [&dir](const char* name, const std::string& bytes) {
        const QString path = dir.filePath(QString::fromLatin1(name));
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes.data(), static_cast<qint64>(bytes.size()));
        return path;
    };
    const QString good = write("lesson.sf2", test::soundFontBytes());
    const QString text = write("notes.sf2", "my lesson notes");
    setSoundFontOverride("");
    fMidiDevs dlg(false);
    dlg.show();
    QSignalSpy chosen(&dlg, &fMidiDevs::soundFontChosen);

    EXPECT_FALSE(dlg.chooseSoundFontFile(text));
    EXPECT_EQ(chosen.count(), 0);
    EXPECT_EQ(soundFontOverride(), "");
    EXPECT_TRUE(dlg.lblStatus->isVisibleTo(&dlg));
    EXPECT_TRUE(dlg.lblStatus->text().contains(QStringLiteral("it is not a SoundFont")));

    EXPECT_TRUE(dlg.chooseSoundFontFile(good));
    ASSERT_EQ(chosen.count(), 1);
    EXPECT_EQ(chosen.at(0).at(0).toString(), good);
    EXPECT_EQ(soundFontOverride(), good.toStdString());
    EXPECT_TRUE(dlg.lblSoundFont->text().contains(good));
    EXPECT_FALSE(dlg.lblStatus->isVisibleTo(&dlg));
    setSoundFontOverride("");
}

TEST_F(MidiDevsTest, SaysWhyThereAreNoSystemPorts)
{
    for (const std::string problem : {"", "this system has no MIDI sequencer"}) {
        SCOPED_TRACE(problem);
        setMidiOutBackend({[] { return std::vector<std::string>{}; },
                           [](int32_t) { return std::make_unique<RecorderPort>(std::make_shared<MidiRecording>()); },
                           [problem] { return problem; }});
        fMidiDevs dlg(false);
        EXPECT_EQ(dlg.cmbMDevs->count(), 1);
        EXPECT_EQ(dlg.lblPorts->isVisibleTo(&dlg), !problem.empty());
        EXPECT_TRUE(dlg.lblPorts->text().contains(QString::fromStdString(problem)));
    }
}

// The built-in synthesizer's latency changes only on OK, and only a change is reported for the
// window to keep.
TEST_F(MidiDevsTest, TheLatencyIsTakenOnOkOnly)
{
    struct Case {
        int value;
        bool ok;
        int expected;
        bool reported;
    };
    const Case cases[] = {
        {35, true, 35, true},
        {kDefaultSynthLatencyMs, true, kDefaultSynthLatencyMs, false},
        {50, false, kDefaultSynthLatencyMs, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.value);
        setBuiltInSynthLatencyMs(kDefaultSynthLatencyMs);
        fMidiDevs dlg(false);
        dlg.show();
        EXPECT_EQ(dlg.spnLatency->value(), kDefaultSynthLatencyMs);
        QSignalSpy chosen(&dlg, &fMidiDevs::latencyChosen);
        dlg.spnLatency->setValue(c.value);
        test::click(c.ok ? dlg.cmdOK : dlg.cmdCancel);
        EXPECT_EQ(builtInSynthLatencyMs(), c.expected);
        ASSERT_EQ(chosen.count(), c.reported ? 1 : 0);
        if (c.reported) {
            EXPECT_EQ(chosen.at(0).at(0).toInt(), c.value);
        }
    }
    setBuiltInSynthLatencyMs(kDefaultSynthLatencyMs);
}

}  // namespace
}  // namespace tarabix
