#pragma once

// The main window under test: its controls reachable, its program folder and settings store
// temporary, its messages collected and its sound recorded.
#include "app/fMain.h"

#include "midi/MidiFile.h"
#include "playback/RecorderPort.h"
#include "playback/mMidiMain.h"

#include <QAction>
#include <QButtonGroup>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QPushButton>
#include <QSettings>
#include <QSlider>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

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
    using fMain::cmdStop;
    using fMain::lblPieceTime;
    using fMain::lblRangeHigh;
    using fMain::lblSpeed;
    using fMain::mnu_Help_Contents;
    using fMain::mnu_Opts_Delay_Opt;
    using fMain::mnu_Opts_Notes;
    using fMain::sldSpeedR;
    using fMain::sldVolume;
    using fMain::cmdSheet;
    using fMain::lblFile;
    using fMain::lblPieceLength;
    using fMain::optNNames;
    using fMain::sldPosition;
    using fMain::udMidiOctShift;
    using fMain::udTuneOctShift;
};

namespace test {

struct Shown {
    QMessageBox::Icon icon;
    QString text;
};

inline std::vector<uint32_t> noteMessages(const MidiRecording& recording)
{
    std::vector<uint32_t> notes;
    for (uint32_t w : recording.words()) {
        const uint32_t kind = w & 0xF0;
        if (kind == 0x80 || kind == 0x90)
            notes.push_back(w);
    }
    return notes;
}

class MainWindowTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        if (m_useRealProgramFolder)
            m_program.reset();
        else
            freshProgramFolder();
        m_recording = std::make_shared<MidiRecording>();
        setMidiOutBackend({[] { return std::vector<std::string>{}; },
                           [this](int32_t) { return std::make_unique<RecorderPort>(m_recording); }});
    }

    void TearDown() override
    {
        m_window.reset();
        resetMidiMainState();
    }

    // A program folder with the data the window starts with, and no sample.
    void freshProgramFolder()
    {
        m_program = std::make_unique<QTemporaryDir>();
        ASSERT_TRUE(m_program->isValid());
        const QDir data(QStringLiteral(TARABIX_BIN_DIR));
        for (const char* name : {"tunings.ini", "maqams.ini", "oud.png", "marks.png", "marks.txt", "notefont.png",
                                 "notefont.txt"})
            ASSERT_TRUE(QFile::copy(data.filePath(QString::fromLatin1(name)), folder(name)));
    }

    QString folder(const char* name) const { return m_program->filePath(QString::fromLatin1(name)); }
    QString programFolder() const { return m_program ? m_program->path() : QStringLiteral(TARABIX_BIN_DIR); }

    fMainProbe& start(bool expectLoaded = true)
    {
        fMainEnvironment env;
        env.programFolder = programFolder();
        env.settingsStore = std::make_unique<QSettings>(m_store.filePath(QStringLiteral("Tarabix.conf")), QSettings::IniFormat);
        env.showMessage = [this](QMessageBox::Icon icon, const QString& text) { m_shown.push_back({icon, text}); };
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

    // A short piece: a text marker and two notes, the second a quarter tone up by its pitch wheel.
    QString writePiece(const char* name, int32_t lengthMs = 120)
    {
        MidiFile piece;
        piece.setNTracks(1);
        MidiTrack* t = piece.tracks(0);
        t->c_addTextE(0, "Q:Rast/0");
        t->c_addNoteOnE(0, 0, 60, 100);
        t->c_addNoteOffE(lengthMs / 2, 0, 60);
        t->c_addPitchWheelE(0, 0, 50.0);  // a quarter tone up
        t->c_addNoteOnE(0, 0, 64, 100);
        t->c_addNoteOffE(lengthMs / 2, 0, 64);
        t->c_addEndOfTrack(0);
        piece.setEvtsAbsTicks();
        piece.setEvtsAbsMSecs();
        const QString path = m_pieces.filePath(QString::fromLatin1(name));
        EXPECT_EQ(piece.toFile(QFile::encodeName(path).toStdString()), 0);
        return path;
    }

    bool m_useRealProgramFolder = false;  // the built program's own folder, samples included
    std::unique_ptr<QTemporaryDir> m_program;
    QTemporaryDir m_store;
    QTemporaryDir m_pieces;
    std::shared_ptr<MidiRecording> m_recording;
    std::vector<Shown> m_shown;
    std::unique_ptr<fMainProbe> m_window;
};

}  // namespace test
}  // namespace tarabix
