#pragma once

// The main window under test: its controls reachable, its program folder and settings store
// temporary, its messages collected and its sound recorded.
#include "app/fMain.h"

#include "app/PositionBar.h"
#include "app/SpeedPercentBox.h"

#include "midi/MidiFile.h"
#include "playback/RecorderPort.h"
#include "playback/mMidiMain.h"

#include <QAction>
#include <QButtonGroup>
#include <QComboBox>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QLabel>
#include <QPushButton>
#include <QSettings>
#include <QSlider>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <vector>

namespace tarabix {

// The window's controls, reachable from the tests.
class fMainProbe : public fMain {
public:
    using fMain::fMain;
    using fMain::cmbMaqams;
    using fMain::cmbMaqamStarts;
    using fMain::cmbOrient;
    using fMain::cmbTuning;
    using fMain::cmdPause;
    using fMain::cmdPlay;
    using fMain::cmdSheet;
    using fMain::cmdStop;
    using fMain::lblFile;
    using fMain::lblRangeHigh;
    using fMain::mnu_Help_Contents;
    using fMain::mnu_Opts_Delay_Opt;
    using fMain::mnu_Opts_Devs;
    using fMain::mnu_Opts_Notes;
    using fMain::optNNames;
    using fMain::sldPosition;
    using fMain::sldSpeedR;
    using fMain::sldVolume;
    using fMain::udMidiOctShift;
    using fMain::udSpeedPercent;
    using fMain::udTuneOctShift;
};

namespace test {

inline std::vector<uint32_t> noteMessages(const MidiRecording& recording)
{
    std::vector<uint32_t> notes;
    for (uint32_t w : recording.words())
        if ((w & 0xF0) == 0x80 || (w & 0xF0) == 0x90)
            notes.push_back(w);
    return notes;
}

class MainWindowTest : public ::testing::Test {
protected:
    // The recorder notes when each message was sent, and is heard m_heardDelayMs later.
    void SetUp() override
    {
        if (!m_useRealProgramFolder)
            freshProgramFolder();
        m_clock.start();
        setMidiOutBackend({[] { return std::vector<std::string>{}; }, [this](int32_t) {
                               auto port = std::make_unique<RecorderPort>(m_recording, [this] { return now(); });
                               port->setHeardDelayMs(m_heardDelayMs);
                               return port;
                           }});
    }
    int32_t now() const { return static_cast<int32_t>(m_clock.elapsed()); }

    void TearDown() override
    {
        m_window.reset();
        resetMidiMainState();
    }

    // A program folder with the data the window starts with, and no sample.
    void freshProgramFolder()
    {
        m_program = std::make_unique<QTemporaryDir>();
        const QDir data(QStringLiteral(TARABIX_BIN_DIR));
        for (const char* name : {"tunings.ini", "maqams.ini", "oud.png", "marks.png", "marks.txt", "notefont.png",
                                 "notefont.txt"})
            ASSERT_TRUE(QFile::copy(data.filePath(QString::fromLatin1(name)), m_program->filePath(QString::fromLatin1(name))));
    }

    fMainProbe& start(bool expectLoaded = true)
    {
        fMainEnvironment env;
        env.programFolder = m_program ? m_program->path() : QStringLiteral(TARABIX_BIN_DIR);
        env.settingsStore = std::make_unique<QSettings>(m_store.filePath(QStringLiteral("Tarabix.conf")), QSettings::IniFormat);
        env.showMessage = [this](QMessageBox::Icon, const QString& text) { m_shown.push_back(text); };
        m_window = std::make_unique<fMainProbe>(std::move(env));
        EXPECT_EQ(m_window->load(), expectLoaded);
        if (expectLoaded) {
            m_window->show();
            EXPECT_TRUE(QTest::qWaitForWindowExposed(m_window.get()));
        }
        m_recording->clear();
        return *m_window;
    }

    QString storedOption(const char* key) const
    {
        QSettings store(m_store.filePath(QStringLiteral("Tarabix.conf")), QSettings::IniFormat);
        return store.value(QStringLiteral("options/") + QString::fromLatin1(key)).toString();
    }

    QString writeTrack(const char* name, const std::function<void(MidiTrack&)>& fill)
    {
        MidiFile piece;
        piece.setNTracks(1);
        fill(*piece.tracks(0));
        piece.tracks(0)->c_addEndOfTrack(0);
        piece.setEvtsAbsTicks();
        piece.setEvtsAbsMSecs();
        const QString path = m_pieces.filePath(QString::fromLatin1(name));
        EXPECT_EQ(piece.toFile(QFile::encodeName(path).toStdString()), 0);
        return path;
    }

    // Note 60 for halfMs, then note 64 a quarter tone up (its pitch wheel) for as long; after the
    // text event `text` unless it is empty.
    QString writePiece(const char* name, int32_t halfMs = 60, const char* text = "Q:Rast/0")
    {
        return writeTrack(name, [&](MidiTrack& t) {
            if (*text)
                t.c_addTextE(0, text);
            t.c_addNoteOnE(0, 0, 60, 100);
            t.c_addNoteOffE(halfMs, 0, 60);
            t.c_addPitchWheelE(0, 0, 50.0);
            t.c_addNoteOnE(0, 0, 64, 100);
            t.c_addNoteOffE(halfMs, 0, 64);
        });
    }

    // Runs `what` afterMs into the event loop, e.g. while a piece plays.
    void after(int afterMs, std::function<void()> what) { QTimer::singleShot(afterMs, m_window.get(), std::move(what)); }

    // As the mouse does it: press the thumb, move it, let go.
    void dragPositionTo(int seconds)
    {
        m_window->sldPosition->setSliderDown(true);
        m_window->sldPosition->setSliderPosition(seconds);
        m_window->sldPosition->setSliderDown(false);
    }

    // Whether the displayed fingerboard carries a sounding mark at the place of a pitch: there it
    // differs from the resting picture.
    bool markedAt(int32_t note, int32_t cents) const
    {
        const UdDisplay* display = m_window->display();
        const std::optional<PicPoint> at = display->pointOfPitch(note, cents);
        return at && display->picUd().pixel(at->x, at->y) != display->picUdClone().pixel(at->x, at->y);
    }
    bool boardAtRest() const { return m_window->display()->picUd() == m_window->display()->picUdClone(); }

    QElapsedTimer m_clock;
    int32_t m_heardDelayMs = 0;
    bool m_useRealProgramFolder = false;  // the built program's own folder, samples included
    std::unique_ptr<QTemporaryDir> m_program;
    QTemporaryDir m_store;
    QTemporaryDir m_pieces;
    std::shared_ptr<MidiRecording> m_recording = std::make_shared<MidiRecording>();
    std::vector<QString> m_shown;  // the messages the learner was shown
    std::unique_ptr<fMainProbe> m_window;
};

}  // namespace test
}  // namespace tarabix
