// The main window as a learner meets it: start-up, remembered choices, opening pieces, the mouse,
// the row keys, drums heard but not drawn, a fingerboard that stays put, a piece played through.
#include "DialogTesting.h"
#include "MainWindowFixture.h"

#include "app/HandPlayer.h"
#include "app/fNotesOpts.h"
#include "oud/view/UdPictureWidget.h"
#include "playback/SoundFontLocator.h"

#include <QElapsedTimer>
#include <QMenu>
#include <QMenuBar>

#include <algorithm>

namespace tarabix::test {
namespace {

TEST_F(MainWindowTest, AMissingPictureStopsStartUpWithOneMessage)
{
    const std::pair<std::vector<const char*>, const char*> cases[] = {
        {{"oud.png", "notefont.png"}, "Cannot find Ud image."},  // the first only
        {{"marks.png"}, "Cannot find mark image(s)."},
        {{"notefont.png"}, "Cannot find note-name font."}};
    for (const auto& [removed, message] : cases) {
        SCOPED_TRACE(message);
        freshProgramFolder();
        for (const char* name : removed)
            QFile::remove(m_program->filePath(QString::fromLatin1(name)));
        m_shown.clear();
        start(false);
        ASSERT_EQ(m_shown.size(), 1u);
        EXPECT_TRUE(m_shown[0].startsWith(QLatin1String(message)));
        EXPECT_FALSE(m_window->isFormLoaded());
    }
}

// The instrument and the note display chosen are stored at once and come back at the next start;
// the tuning's octave is not remembered.
TEST_F(MainWindowTest, TheLearnersChoicesComeBackAtTheNextStart)
{
    fMainProbe& w = start();
    EXPECT_TRUE(m_shown.empty());  // no sample in the folder: a quiet start
    w.cmbOrient->setCurrentIndex(2);
    const int tuning = 2;  // D2 G2 A2 D3 G3 C4
    w.cmbTuning->setCurrentIndex(w.cmbTuning->findData(tuning));
    const int32_t lowest = w.oud().curStringPitch()[0];
    w.udTuneOctShift->setValue(1);
    EXPECT_EQ(w.oud().curStringPitch()[0], lowest + 12);
    w.mnu_Opts_Notes->trigger();
    auto* dialog = w.findChild<fNotesOpts*>();
    ASSERT_NE(dialog, nullptr);
    click(dialog->optPlayNoMaq->button(1));  // circles
    click(dialog->optNoteNamesType->button(1));  // solfège
    click(dialog->cmdOK);
    const NotePresentation chosen{.playNoMaqam = kPresCircles, .nameSystem = 1};
    EXPECT_EQ(w.display()->presentation(), chosen);
    EXPECT_EQ(w.optNNames->checkedId(), 1);
    EXPECT_EQ(storedOption("UdOrient"), QStringLiteral("2"));

    m_window.reset();
    fMainProbe& again = start();
    EXPECT_EQ(again.cmbOrient->currentIndex(), 2);
    EXPECT_EQ(again.oud().orientation(), 2);
    EXPECT_EQ(again.display()->presentation(), chosen);
    EXPECT_EQ(again.optNNames->checkedId(), 1);
    EXPECT_TRUE(again.cmbTuning->currentText().startsWith(QStringLiteral("Re - Sol")));  // captions in solfège
    EXPECT_EQ(again.cmbTuning->currentData().toInt(), tuning);
    EXPECT_EQ(again.oud().curStringPitch()[0], lowest);  // without the octave shift
}

// An output that plays but has something to tell, as the built-in synthesizer does when the
// system's SoundFont stands in for the learner's broken one.
class NoticePort final : public MidiOutPort {
public:
    int32_t open() override { return kMidiOutOk; }
    int32_t close() override { return kMidiOutOk; }
    void send(uint32_t) override {}
    std::string notice() const override { return "The SoundFont mine.sf2 cannot be used: it is empty."; }
};

TEST_F(MainWindowTest, TheStoredSoundFontIsWantedAndAnOutputsNoticeIsShownOnce)
{
    QSettings(m_store.filePath(QStringLiteral("Tarabix.conf")), QSettings::IniFormat)
        .setValue(QStringLiteral("options/SoundFont"), QStringLiteral("/lessons/my oud.sf2"));
    setMidiOutBackend({[] { return std::vector<std::string>{}; }, [](int32_t) { return std::make_unique<NoticePort>(); }});
    setSoundFontOverride("");
    start();
    EXPECT_EQ(soundFontOverride(), "/lessons/my oud.sf2");
    // The activity timer looks once a second; the window re-opens the output meanwhile.
    QTest::qWait(1200);
    reopenMidiOut();
    QTest::qWait(1200);
    ASSERT_EQ(m_shown.size(), 1u);
    EXPECT_EQ(m_shown[0], QStringLiteral("The SoundFont mine.sf2 cannot be used: it is empty."));
    setSoundFontOverride("");
}

// A piece that cannot be opened is reported (unless at start-up), leaves no piece open and no
// file behind; a good one sets the length and puts the piece's octave back.
TEST_F(MainWindowTest, OpeningGoodMissingAndBrokenPieces)
{
    fMainProbe& w = start();
    const QString good = writePiece("good.mid", 1250);
    w.udMidiOctShift->setValue(1);
    w.openFile(good, false);
    EXPECT_TRUE(m_shown.empty());
    EXPECT_EQ(w.pieceLength(), 2500);
    EXPECT_EQ(w.sldPosition->maximum(), 2);
    EXPECT_EQ(w.udMidiOctShift->value(), 0);
    EXPECT_FALSE(w.cmdSheet->isEnabled());

    const QString missing = m_pieces.filePath(QStringLiteral("gone.mid"));
    const QString broken = m_pieces.filePath(QStringLiteral("broken.mid"));
    QFile f(broken);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write("MThd\0\0\0\6\0\1\0\1\0", 13);
    f.close();
    const QString notMzf = m_pieces.filePath(QStringLiteral("piece.Mzf"));
    ASSERT_TRUE(QFile::copy(good, notMzf));  // a MIDI file is no MZF container
    const std::pair<QString, QString> cases[] = {
        {missing, QStringLiteral("The file <%1> does not exist.").arg(missing)},
        {broken, QStringLiteral("Could not read the contents of the music file. Error ")},
        {notMzf, QStringLiteral("The file <%1> is not a valid MZF file.").arg(notMzf)},
    };
    for (const auto& [path, message] : cases) {
        SCOPED_TRACE(path.toStdString());
        for (bool quiet : {false, true}) {
            w.openFile(good, false);
            m_shown.clear();
            w.openFile(path, quiet);
            ASSERT_EQ(m_shown.size(), quiet ? 0u : 1u);
            EXPECT_TRUE(quiet || m_shown[0].startsWith(message)) << m_shown[0].toStdString();
            EXPECT_TRUE(w.currentFilePath().isEmpty());
            EXPECT_EQ(w.lblFile->text(), QStringLiteral("[No file is opened]"));
        }
    }
    EXPECT_FALSE(QFile::exists(missing));
}

// What a press sounds is the hand player's (HandPlayerTest); here the window's mouse reaches it.
TEST_F(MainWindowTest, AClickOnTheNutPlaysTheOpenStringAtTheWindowsVolume)
{
    fMainProbe& w = start();
    UdPictureWidget* board = w.fingerboard();
    board->resize(743, 188);
    w.sldVolume->setValue(90);
    const PicPoint nut = w.oud().curStringA()[2];
    const QPoint onNut = board->toWidget(QRect(nut.x, nut.y, 1, 1)).center() - QPoint(1, 1);
    QTest::mousePress(board, Qt::LeftButton, {}, onNut);
    QTest::mouseRelease(board, Qt::LeftButton, {}, onNut);
    const std::vector<uint32_t> notes = noteMessages(*m_recording);
    ASSERT_EQ(notes.size(), 2u);
    EXPECT_EQ(notes[0], 0x90u | (static_cast<uint32_t>(w.oud().curStringPitch()[2]) << 8) | (90u << 16));
    EXPECT_EQ(notes[1] & 0xF0, 0x80u);
}

TEST_F(MainWindowTest, APiecePlaysThroughItsMarkerAndQuarterToneToTheEnd)
{
    fMainProbe& w = start();
    w.openFile(writePiece("short.mid"), false);
    w.mnu_Opts_Delay_Opt[1]->trigger();  // a second to get ready
    QElapsedTimer clock;
    clock.start();
    w.cmdPlay->click();  // returns when the piece has ended
    EXPECT_GE(clock.elapsed(), 1100);
    EXPECT_FALSE(w.cmdPlay->isChecked());
    EXPECT_EQ(w.sldPosition->value(), 0);
    EXPECT_EQ(w.cmbMaqams->currentText(), QStringLiteral("Rast"));  // "Q:Rast/0"

    const std::vector<uint32_t> words = m_recording->words();
    const auto bend = std::find(words.begin(), words.end(), 0x5000E0u);  // channel 0, 10240
    // Velocity 100 at the window's volume of 100: 100 x 100 / 127, to the nearest integer.
    const auto secondNote = std::find(words.begin(), words.end(), 0x4F4090u);
    ASSERT_NE(secondNote, words.end());
    EXPECT_LT(bend, secondNote);  // the quarter tone reaches the device before its note
}

TEST_F(MainWindowTest, RowKeysMoveTheRowsOneStringWhateverHasTheFocus)
{
    fMainProbe& w = start();
    const auto rows = [&w] { return w.handPlayer()->rowsDownShift(); };
    QTest::keyClick(w.fingerboard(), Qt::Key_Up);
    EXPECT_EQ(rows(), 0);

    // The speed slider focused: Down moves the rows, once, and leaves the speed alone.
    w.sldSpeedR->setFocus();
    const int speed = w.sldSpeedR->value();
    QTest::keyClick(w.sldSpeedR, Qt::Key_Down);
    EXPECT_EQ(rows(), 1);
    EXPECT_EQ(w.sldSpeedR->value(), speed);

    // Esc that closes a menu, and the one that then leaves the menu bar, are the menus'.
    QMenu* menu = w.menuBar()->actions().at(1)->menu();
    menu->popup(w.mapToGlobal(QPoint(20, 20)));
    ASSERT_TRUE(QTest::qWaitForWindowExposed(menu));
    QTest::keyClick(menu, Qt::Key_Escape);
    EXPECT_FALSE(menu->isVisible());
    QTest::keyClick(w.menuBar(), Qt::Key_Escape);
    EXPECT_EQ(rows(), 1);
}

TEST_F(MainWindowTest, DrumsAreHeardNotShownAndTheFingerboardStaysPutForTheRangeArrow)
{
    fMainProbe& w = start();
    // Channel 10 strikes a drum at once; half a second later channel 1 plays far above the oud.
    w.openFile(writeTrack("drums.mid", [](MidiTrack& t) {
        t.c_addNoteOnE(0, 9, 100, 100);
        t.c_addNoteOnE(500, 0, 120, 100);
        t.c_addNoteOffE(1500, 0, 120);
        t.c_addNoteOffE(0, 9, 100);
    }), false);
    const QRect board = w.fingerboard()->geometry();
    bool drumShown = true, arrowShown = false;
    QRect boardWithArrow;
    after(250, [&] { drumShown = w.lblRangeHigh->isVisible() || !boardAtRest(); });
    after(900, [&] {
        arrowShown = w.lblRangeHigh->isVisible();
        boardWithArrow = w.fingerboard()->geometry();
        w.cmdStop->click();
    });
    w.cmdPlay->click();
    EXPECT_FALSE(drumShown);
    EXPECT_TRUE(arrowShown);
    EXPECT_EQ(boardWithArrow, board);
    ASSERT_FALSE(m_recording->words().empty());
    EXPECT_EQ(noteMessages(*m_recording).front() & 0xFFFF, 0x6499u);  // the drum was heard
}

TEST_F(MainWindowTest, OpeningAPieceShowsItsFirstValidMaqamAtOnce)
{
    fMainProbe& w = start();
    w.openFile(writeTrack("modulating.mid", [](MidiTrack& t) {
        t.c_addTextE(0, "Q:NoSuchMaqam/0");
        t.c_addTextE(0, "Q:Rast/12");
        t.c_addTextE(100, "Q:Bayati/2");
        t.c_addNoteOnE(0, 0, 62, 100);
        t.c_addTextE(100, "Q:Hijaz/7");
        t.c_addNoteOffE(100, 0, 62);
    }), false);
    ASSERT_TRUE(m_shown.empty());
    EXPECT_EQ(w.cmbMaqams->currentText().toLower(), QStringLiteral("bayati"));
    EXPECT_EQ(w.cmbMaqamStarts->currentIndex(), 2);
    EXPECT_EQ(w.maqams().curMaqamIndex(), w.cmbMaqams->currentIndex());
}

// The device dialog lets the output go while it is up and opens it again as it closes, as a fresh
// output on a piano: a piece playing meanwhile goes on with its own instrument.
TEST_F(MainWindowTest, APlayingPieceKeepsItsInstrumentAcrossTheDeviceDialog)
{
    fMainProbe& w = start();
    w.openFile(writeTrack("sitar.mid",
                          [](MidiTrack& t) {
                              t.c_addProgChangeE(0, 0, 104);
                              t.c_addNoteOnE(0, 0, 60, 100);
                              t.c_addNoteOffE(1500, 0, 60);
                          }),
               false);
    bool dialogShown = false;
    after(300, [&] {
        w.mnu_Opts_Devs->trigger();
        auto* dialog = w.findChild<QDialog*>();
        dialogShown = dialog != nullptr;
        m_recording->clear();
        if (dialog)
            dialog->reject();
    });
    w.cmdPlay->click();
    ASSERT_TRUE(dialogShown);
    const std::vector<uint32_t> words = m_recording->words();
    const auto piano = std::find(words.begin(), words.end(), 0x00C0u);  // the re-opened output's program 0
    ASSERT_NE(piano, words.end());
    EXPECT_NE(std::find(piano, words.end(), 0x68C0u), words.end());  // and the piece's 104 after it
}

}  // namespace
}  // namespace tarabix::test
