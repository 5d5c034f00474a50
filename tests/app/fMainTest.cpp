// The main window as a learner meets it: start-up with and without its pictures and sample,
// opening good and broken pieces, playing by keyboard and mouse, the instrument's choices and a
// short piece played through to the end. Sound goes to a recorder.
#include "DialogTesting.h"
#include "MainWindowFixture.h"
#include "playback/SoundFontLocator.h"

#include "midi/MzfContainer.h"
#include "app/HandPlayer.h"
#include "app/fNotesOpts.h"
#include "oud/view/UdPictureWidget.h"

#include <QElapsedTimer>

#include <algorithm>

namespace tarabix::test {
namespace {

TEST_F(MainWindowTest, MissingPicturesStopStartUpWithTheFirstMessageOnly)
{
    struct Case {
        std::vector<const char*> removed;
        const char* message;
    };
    const Case cases[] = {
        {{"oud.png", "notefont.png"}, "Cannot find Ud image.\r\n\r\nThe program will terminate."},
        {{"marks.png"}, "Cannot find mark image(s).\r\n\r\nThe program will terminate."},
        {{"notefont.png"}, "Cannot find note-name font.\r\n\r\nThe program will terminate."},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.message);
        freshProgramFolder();
        for (const char* name : c.removed)
            QFile::remove(folder(name));
        m_shown.clear();
        start(false);
        ASSERT_EQ(m_shown.size(), 1u);
        EXPECT_EQ(m_shown[0].icon, QMessageBox::Critical);
        EXPECT_EQ(m_shown[0].text, QString::fromLatin1(c.message));
        EXPECT_FALSE(m_window->isFormLoaded());
    }
}

TEST_F(MainWindowTest, StartsQuietlyWithoutItsSampleAndWithTheRememberedChoices)
{
    {
        QSettings store(m_store.filePath(QStringLiteral("Tarabix.conf")), QSettings::IniFormat);
        store.setValue(QStringLiteral("options/UdOrient"), QStringLiteral("2"));
        store.setValue(QStringLiteral("options/NoteNamesType"), QStringLiteral("1"));
        store.setValue(QStringLiteral("options/TuningICateg"), QStringLiteral("1"));
    }
    fMainProbe& w = start();
    EXPECT_TRUE(m_shown.empty());
    EXPECT_EQ(w.lblFile->text(), QStringLiteral("[No file is opened]"));
    EXPECT_EQ(w.cmbOrient->currentIndex(), 2);
    EXPECT_EQ(w.oud().orientation(), 2);
    EXPECT_EQ(w.optNNames->checkedId(), 1);
    EXPECT_EQ(w.cmbTuning->currentData().toInt(), 1);
    EXPECT_EQ(w.oud().curTuningId(), 1);
    EXPECT_EQ(w.cmbMaqams->itemText(0), QStringLiteral("--None--"));
    EXPECT_FALSE(w.cmbMaqamStarts->isEnabled());
    EXPECT_EQ(w.handPlayer()->rowsDownShift(), 1);
}

// An output that plays but has something to tell, as the built-in synthesizer does when the
// system's SoundFont stands in for the learner's.
class NoticePort final : public MidiOutPort {
public:
    int32_t open() override { return kMidiOutOk; }
    int32_t close() override { return kMidiOutOk; }
    void send(uint32_t) override {}
    std::string notice() const override { return "The SoundFont mine.sf2 cannot be used: it is empty."; }
};

TEST_F(MainWindowTest, TheStoredSoundFontIsWantedAndAnOutputsNoticeIsShownOnce)
{
    {
        QSettings store(m_store.filePath(QStringLiteral("Tarabix.conf")), QSettings::IniFormat);
        store.setValue(QStringLiteral("options/SoundFont"), QStringLiteral("/lessons/my oud.sf2"));
    }
    setMidiOutBackend({[] { return std::vector<std::string>{}; }, [](int32_t) { return std::make_unique<NoticePort>(); }});
    setSoundFontOverride("");
    start();
    EXPECT_EQ(soundFontOverride(), "/lessons/my oud.sf2");
    // The activity timer looks once a second; the window re-opens the output meanwhile.
    QTest::qWait(1200);
    reopenMidiOut();
    QTest::qWait(1200);
    ASSERT_EQ(m_shown.size(), 1u);
    EXPECT_EQ(m_shown[0].icon, QMessageBox::Information);
    EXPECT_EQ(m_shown[0].text, QStringLiteral("The SoundFont mine.sf2 cannot be used: it is empty."));

    // A SoundFont given on the command line wins over the stored one.
    m_window.reset();
    setSoundFontOverride("/tmp/given.sf2");
    start();
    EXPECT_EQ(soundFontOverride(), "/tmp/given.sf2");
    setSoundFontOverride("");
}

TEST_F(MainWindowTest, InstrumentChoicesAreStoredTheMomentTheyChange)
{
    fMainProbe& w = start();
    w.cmbOrient->setCurrentIndex(3);
    EXPECT_EQ(storedOption("UdOrient"), QStringLiteral("3"));
    EXPECT_EQ(w.oud().orientation(), 3);

    w.optNNames->button(1)->click();
    EXPECT_EQ(storedOption("NoteNamesType"), QStringLiteral("1"));
    EXPECT_TRUE(w.cmbTuning->currentText().startsWith(QStringLiteral("Fa")));  // captions refilled in solfège

    const int32_t before = w.oud().curStringPitch()[0];
    w.udTuneOctShift->setValue(1);
    EXPECT_EQ(w.oud().curStringPitch()[0], before + 12);
    EXPECT_TRUE(storedOption("TuningICateg").isEmpty());  // the octave is never stored

    w.cmbTuning->setCurrentIndex(2);
    EXPECT_EQ(storedOption("TuningICateg"), QString::number(w.cmbTuning->currentData().toInt()));
    EXPECT_EQ(w.oud().curTuningId(), w.cmbTuning->currentData().toInt());
}

TEST_F(MainWindowTest, ChoosingAMaqamOffersItsTonicsAndAMarkerSelectsThem)
{
    fMainProbe& w = start();
    const int rast = w.cmbMaqams->findText(QStringLiteral("Rast"));
    ASSERT_GT(rast, 0);
    w.cmbMaqams->setCurrentIndex(rast);
    EXPECT_TRUE(w.cmbMaqamStarts->isEnabled());
    EXPECT_EQ(w.cmbMaqamStarts->count(), 12);
    EXPECT_EQ(w.cmbMaqamStarts->currentIndex(), w.maqams().maqamHomeTonic(rast).pitchClass);
    EXPECT_EQ(w.maqams().curMaqamIndex(), rast);

    w.cmbMaqamStarts->setCurrentIndex(2);
    EXPECT_EQ(w.maqams().curMaqam().ipc[0], 2);  // every degree moved up to D

    w.cmbMaqams->setCurrentIndex(0);
    EXPECT_FALSE(w.cmbMaqamStarts->isEnabled());
    EXPECT_FALSE(w.maqams().isMaqamSelected());
}

TEST_F(MainWindowTest, OpeningPiecesGoodAndBroken)
{
    fMainProbe& w = start();
    const QString good = writePiece("a-rather-long-file-name.mid", 2500);
    w.udMidiOctShift->setValue(1);
    w.openFile(good, false);
    EXPECT_TRUE(m_shown.empty());
    EXPECT_EQ(w.lblFile->text(), QStringLiteral("[ a-rather-long-f... ]"));
    EXPECT_EQ(w.pieceLength(), 2500);
    EXPECT_EQ(w.sldPosition->maximum(), 2);
    EXPECT_EQ(w.lblPieceLength->text(), QStringLiteral("000:02"));
    EXPECT_EQ(w.udMidiOctShift->value(), 0);
    EXPECT_FALSE(w.cmdSheet->isEnabled());

    const QString broken = m_pieces.filePath(QStringLiteral("broken.mid"));
    QFile f(broken);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write("MThd\0\0\0\6\0\1\0\1\0", 13);
    f.close();
    w.openFile(broken, false);
    ASSERT_EQ(m_shown.size(), 1u);
    EXPECT_TRUE(m_shown[0].text.startsWith(QStringLiteral("Could not read the contents of the music file. Error ")));
    EXPECT_EQ(w.lblFile->text(), QStringLiteral("[No file is opened]"));
    EXPECT_TRUE(w.currentFilePath().isEmpty());

    const QString notMzf = m_pieces.filePath(QStringLiteral("piece.Mzf"));
    ASSERT_TRUE(QFile::copy(good, notMzf));  // a MIDI file is no MZF container
    m_shown.clear();
    w.openFile(notMzf, false);
    ASSERT_EQ(m_shown.size(), 1u);
    EXPECT_EQ(m_shown[0].text, QStringLiteral("The file <%1> is not a valid MZF file.").arg(notMzf));

    m_shown.clear();
    w.openFile(notMzf, true);
    EXPECT_TRUE(m_shown.empty());
    EXPECT_EQ(w.lblFile->text(), QStringLiteral("[No file is opened]"));
}

TEST_F(MainWindowTest, AnMzfWithItsSheetEnablesTheSheetButton)
{
    fMainProbe& w = start();
    QFile midi(writePiece("inner.mid"));
    ASSERT_TRUE(midi.open(QIODevice::ReadOnly));
    const std::vector<MzfPart> parts = {{mzf::kMidiPartId, midi.readAll().toStdString()},
                                        {mzf::kSheetPartId, std::string("sheet")}};
    const QString path = m_pieces.filePath(QStringLiteral("with-sheet.mzf"));
    QFile out(path);
    ASSERT_TRUE(out.open(QIODevice::WriteOnly));
    const std::string bytes = makeMultiPart(parts);
    out.write(bytes.data(), static_cast<qint64>(bytes.size()));
    out.close();
    w.openFile(path, false);
    EXPECT_TRUE(m_shown.empty());
    EXPECT_TRUE(w.cmdSheet->isEnabled());
    EXPECT_EQ(w.lblFile->text(), QStringLiteral("[ with-sheet.mzf ]"));
}

// What a press or a key sounds is the hand player's (HandPlayerTest); here the window's mouse and
// keys reach it, at the window's volume.
TEST_F(MainWindowTest, AClickOnTheNutPlaysTheOpenStringAClickBesideTheStringsNothingAGridKeyItsNote)
{
    fMainProbe& w = start();
    UdPictureWidget* board = w.fingerboard();
    board->resize(743, 188);
    const PicPoint nut = w.oud().curStringA()[2];
    const QPoint onNut = board->toWidget(QRect(nut.x, nut.y, 1, 1)).center() - QPoint(1, 1);
    QTest::mousePress(board, Qt::LeftButton, {}, onNut);
    QTest::mouseRelease(board, Qt::LeftButton, {}, onNut);
    std::vector<uint32_t> notes = noteMessages(*m_recording);
    ASSERT_EQ(notes.size(), 2u);
    EXPECT_EQ((notes[0] >> 8) & 0x7F, static_cast<uint32_t>(w.oud().curStringPitch()[2]));

    m_recording->clear();
    QTest::mouseClick(board, Qt::LeftButton, {}, QPoint(2, 2));
    EXPECT_TRUE(noteMessages(*m_recording).empty());

    w.sldVolume->setValue(90);
    QTest::keyPress(board, Qt::Key_Q);  // row 1 at down shift 1: string 2 in the window's view
    QTest::keyRelease(board, Qt::Key_Q);
    notes = noteMessages(*m_recording);
    ASSERT_EQ(notes.size(), 2u);
    EXPECT_EQ(notes[0], 0x90u | (static_cast<uint32_t>(w.oud().curStringPitch()[2]) << 8) | (90u << 16));
    EXPECT_EQ(notes[1] & 0xF0, 0x80u);
}

// The names buttons and the note display dialog change one presentation: stored, drawn by, and
// followed by the lists that spell notes.
TEST_F(MainWindowTest, TheNoteDisplayDialogsChoiceIsStoredAndShown)
{
    fMainProbe& w = start();
    w.mnu_Opts_Notes->trigger();
    auto* dialog = w.findChild<fNotesOpts*>();
    ASSERT_NE(dialog, nullptr);
    click(dialog->optPlayNoMaq->button(1));  // circles
    click(dialog->optNoteNamesType->button(1));  // solfège
    click(dialog->cmdOK);
    EXPECT_EQ(storedOption("NotesPres_Play_NoMaqam"), QStringLiteral("2"));
    EXPECT_EQ(storedOption("NoteNamesType"), QStringLiteral("1"));
    EXPECT_TRUE(storedOption("NotesPres_Rest_Maqam").isEmpty());  // unchanged, so never written
    EXPECT_EQ(w.display()->presentation(), (NotePresentation{.playNoMaqam = kPresCircles, .nameSystem = 1}));
    EXPECT_EQ(w.optNNames->checkedId(), 1);
    EXPECT_TRUE(w.cmbTuning->currentText().startsWith(QStringLiteral("Fa")));

    w.optNNames->button(0)->click();
    EXPECT_EQ(storedOption("NoteNamesType"), QStringLiteral("0"));
    EXPECT_EQ(w.display()->presentation(), (NotePresentation{.playNoMaqam = kPresCircles}));
}

TEST_F(MainWindowTest, PlayWithoutAPieceSaysSo)
{
    fMainProbe& w = start();
    w.cmdPlay->click();
    ASSERT_EQ(m_shown.size(), 1u);
    EXPECT_EQ(m_shown[0].text,
              QStringLiteral("There is no open file to play.\r\nOpen a file first, then press the play button"));
    EXPECT_FALSE(w.cmdPlay->isChecked());
}

TEST_F(MainWindowTest, APiecePlaysThroughItsMarkerAndQuarterToneToTheEnd)
{
    fMainProbe& w = start();
    w.openFile(writePiece("short.mid"), false);
    QElapsedTimer clock;
    clock.start();
    w.cmdPlay->click();  // returns when the piece has ended
    EXPECT_GE(clock.elapsed(), 100);
    EXPECT_FALSE(w.cmdPlay->isChecked());
    EXPECT_EQ(w.sldPosition->value(), 0);
    EXPECT_EQ(w.cmbMaqams->currentText(), QStringLiteral("Rast"));  // "Q:Rast/0"
    EXPECT_EQ(w.cmbMaqamStarts->currentIndex(), 0);

    const std::vector<uint32_t> words = m_recording->words();
    const auto bend = std::find(words.begin(), words.end(), 0x5000E0u);  // channel 0, 10240
    // Velocity 100 at the window's volume of 100: 100 x 100 / 127, to the nearest integer.
    const auto secondNote = std::find(words.begin(), words.end(), 0x00000090u | (64u << 8) | (79u << 16));
    ASSERT_NE(secondNote, words.end());
    ASSERT_NE(bend, words.end());
    EXPECT_LT(bend, secondNote);  // the quarter tone reaches the device before its note
}

TEST_F(MainWindowTest, TransportLabelsAndTheStartDelay)
{
    fMainProbe& w = start();
    const std::pair<int, const char*> speeds[] = {{-2, "0.50"}, {0, "1.00"}, {2, "2.00"}, {-1, "0.71"}};
    for (const auto& [value, text] : speeds) {
        w.sldSpeedR->setValue(value);
        EXPECT_EQ(w.lblSpeed->text(), QString::fromLatin1(text));
    }
    w.sldSpeedR->setValue(0);

    w.openFile(writePiece("delayed.mid", 40), false);
    w.mnu_Opts_Delay_Opt[3]->trigger();
    EXPECT_TRUE(w.mnu_Opts_Delay_Opt[3]->isChecked());
    EXPECT_FALSE(w.mnu_Opts_Delay_Opt[0]->isChecked());
    QElapsedTimer clock;
    clock.start();
    w.cmdPlay->click();
    EXPECT_GE(clock.elapsed(), 3000);
}

TEST_F(MainWindowTest, VolumeAndThePiecesOctaveShapeWhatIsSent)
{
    fMainProbe& w = start();
    w.openFile(writePiece("loud.mid", 40), false);
    w.sldVolume->setValue(127);
    w.cmdPlay->click();
    std::vector<uint32_t> notes = noteMessages(*m_recording);
    ASSERT_FALSE(notes.empty());
    EXPECT_EQ(notes[0], 0x643C90u);  // velocity 100 kept at full volume

    m_recording->clear();
    w.sldVolume->setValue(0);
    w.udMidiOctShift->setValue(1);
    w.cmdPlay->click();
    notes = noteMessages(*m_recording);
    ASSERT_FALSE(notes.empty());
    EXPECT_EQ(notes[0], 0x004890u);  // an octave up, velocity 0
}

TEST_F(MainWindowTest, HelpWithoutItsPageSaysSo)
{
    fMainProbe& w = start();
    w.mnu_Help_Contents->trigger();
    ASSERT_EQ(m_shown.size(), 1u);
    EXPECT_EQ(m_shown[0].icon, QMessageBox::Warning);
    EXPECT_EQ(m_shown[0].text, QStringLiteral("The help topic is not available."));
}

}  // namespace
}  // namespace tarabix::test
