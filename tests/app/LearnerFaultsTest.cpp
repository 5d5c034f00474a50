// What a learner meets around the fingerboard and the files: keys that move the key rows once,
// a fingerboard that stays put, drums heard but not drawn, a piece's maqam shown on opening, a
// missing file reported without leaving anything behind, help inside the program, a built-in
// synthesizer that keeps playing in the background.
#include "MainWindowFixture.h"

#include "app/HandPlayer.h"
#include "app/fHelp.h"
#include "oud/view/UdPictureWidget.h"

#include <QAbstractItemView>
#include <QMenu>
#include <QMenuBar>
#include <QTextBrowser>
#include <QTimer>

#include <functional>

namespace tarabix::test {
namespace {

class LearnerFaultsTest : public MainWindowTest {
protected:
    // Runs `during` `afterMs` into playing the piece from its start, then stops it; play() returns
    // only once the piece has stopped.
    void whilePlaying(fMainProbe& w, int afterMs, const std::function<void()>& during)
    {
        QTimer::singleShot(afterMs, &w, [&] {
            during();
            w.cmdStop->click();
        });
        w.cmdPlay->click();
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
};

TEST_F(LearnerFaultsTest, RowKeysMoveTheRowsOneStringWhateverHasTheFocus)
{
    fMainProbe& w = start();
    ASSERT_EQ(w.handPlayer()->rowsDownShift(), 1);
    QTest::keyClick(w.fingerboard(), Qt::Key_Up);
    EXPECT_EQ(w.handPlayer()->rowsDownShift(), 0);
    QTest::keyClick(w.fingerboard(), Qt::Key_Down);
    EXPECT_EQ(w.handPlayer()->rowsDownShift(), 1);

    // The speed slider focused: Down moves the rows and leaves the speed alone.
    w.sldSpeedR->setFocus();
    const int speed = w.sldSpeedR->value();
    QTest::keyClick(w.sldSpeedR, Qt::Key_Down);
    EXPECT_EQ(w.handPlayer()->rowsDownShift(), 2);
    EXPECT_EQ(w.sldSpeedR->value(), speed);

    // Esc that closes a menu, and the one that then leaves the menu bar, are the menus'.
    QMenu* menu = w.menuBar()->actions().at(1)->menu();
    menu->popup(w.mapToGlobal(QPoint(20, 20)));
    ASSERT_TRUE(QTest::qWaitForWindowExposed(menu));
    QTest::keyClick(menu, Qt::Key_Escape);
    EXPECT_FALSE(menu->isVisible());
    QTest::keyClick(w.menuBar(), Qt::Key_Escape);
    EXPECT_EQ(w.handPlayer()->rowsDownShift(), 2);
}

TEST_F(LearnerFaultsTest, DrumsAreHeardNotShownAndTheFingerboardStaysPutForTheRangeArrow)
{
    fMainProbe& w = start();
    // Channel 10 strikes a drum at once; half a second later channel 1 plays far above the oud.
    const QString piece = writeTrack("drums.mid", [](MidiTrack& t) {
        t.c_addNoteOnE(0, 9, 100, 100);
        t.c_addNoteOnE(500, 0, 120, 100);
        t.c_addNoteOffE(1500, 0, 120);
        t.c_addNoteOffE(0, 9, 100);
    });
    w.openFile(piece, false);
    const QRect board = w.fingerboard()->geometry();
    bool drumArrow = true;
    QImage drumPicture;
    QTimer::singleShot(250, &w, [&] {
        drumArrow = w.lblRangeHigh->isVisible();
        drumPicture = w.display()->picUd();
    });
    QRect boardWithArrow;
    whilePlaying(w, 900, [&] {
        EXPECT_TRUE(w.lblRangeHigh->isVisible());
        boardWithArrow = w.fingerboard()->geometry();
    });
    EXPECT_FALSE(drumArrow);
    EXPECT_EQ(drumPicture, w.display()->picUdClone());  // no mark while only the drum sounds
    EXPECT_EQ(boardWithArrow, board);
    const std::vector<uint32_t> notes = noteMessages(*m_recording);
    ASSERT_FALSE(notes.empty());
    EXPECT_EQ(notes.front() & 0xFFFF, 0x6499u);  // the drum was heard
}

TEST_F(LearnerFaultsTest, OpeningAPieceShowsItsFirstValidMaqamAtOnce)
{
    fMainProbe& w = start();
    const QString piece = writeTrack("modulating.mid", [](MidiTrack& t) {
        t.c_addTextE(0, "Q:NoSuchMaqam/0");
        t.c_addTextE(0, "Q:Rast/12");
        t.c_addTextE(100, "Q:Bayati/2");
        t.c_addNoteOnE(0, 0, 62, 100);
        t.c_addTextE(100, "Q:Hijaz/7");
        t.c_addNoteOffE(100, 0, 62);
    });
    w.openFile(piece, false);
    ASSERT_TRUE(m_shown.empty());
    EXPECT_EQ(w.cmbMaqams->currentText().toLower(), QStringLiteral("bayati"));
    EXPECT_EQ(w.cmbMaqamStarts->currentIndex(), 2);
    EXPECT_EQ(w.maqams().curMaqamIndex(), w.cmbMaqams->currentIndex());
}

TEST_F(LearnerFaultsTest, AMissingPieceIsReportedAndNothingIsWritten)
{
    fMainProbe& w = start();
    w.openFile(writeTrack("first.mid", [](MidiTrack& t) { t.c_addNoteOnE(0, 0, 60, 100); }), false);
    const QString missing = m_pieces.filePath(QStringLiteral("gone.mid"));
    w.openFile(missing, false);
    ASSERT_EQ(m_shown.size(), 1u);
    EXPECT_EQ(m_shown[0].text, QStringLiteral("The file <%1> does not exist.").arg(missing));
    EXPECT_FALSE(QFile::exists(missing));
    EXPECT_TRUE(w.currentFilePath().isEmpty());
    EXPECT_EQ(w.lblFile->text(), QStringLiteral("[No file is opened]"));
}

TEST_F(LearnerFaultsTest, TheBuiltInSynthesizerKeepsPlayingWhileAnotherWindowIsInFront)
{
    fMainProbe& w = start();
    QWidget other;
    other.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&other));
    QApplication::setActiveWindow(&other);
    QTest::qWait(1200);  // the activity timer ticks once a second
    QApplication::setActiveWindow(&w);
    QTest::qWait(1200);
    // Let go and taken back, the device would have been given every channel's program again.
    EXPECT_TRUE(m_recording->words().empty());
}

TEST_F(LearnerFaultsTest, TheMaqamListOpensTwentyTwoRowsHigh)
{
    fMainProbe& w = start();
    ASSERT_GT(w.cmbMaqams->count(), 22);
    w.cmbMaqams->showPopup();
    QAbstractItemView* list = w.cmbMaqams->view();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(list->window()));
    const int rowHeight = list->sizeHintForRow(0);
    EXPECT_LE(list->viewport()->height(), 22 * rowHeight + 2);
    EXPECT_GE(list->viewport()->height(), 20 * rowHeight);
    w.cmbMaqams->hidePopup();
}

class HelpTest : public MainWindowTest {
protected:
    HelpTest() { m_useRealProgramFolder = true; }
};

TEST_F(HelpTest, F1OpensTheHelpPageInAWindowOfTheProgramWithItsPictures)
{
    fMainProbe& w = start();
    QTest::keyClick(&w, Qt::Key_F1);
    fHelp* help = fHelp::instance();
    ASSERT_NE(help, nullptr);
    EXPECT_TRUE(help->isVisible());
    EXPECT_TRUE(help->txtPage->toPlainText().contains(QStringLiteral("Maqams and quarter tones")));
    const QUrl picture = help->txtPage->source().resolved(QUrl(QStringLiteral("../oud.png")));
    EXPECT_FALSE(help->txtPage->loadResource(QTextDocument::ImageResource, picture).isNull());
    // Asked again, the same window comes to the front.
    w.mnu_Help_Contents->trigger();
    EXPECT_EQ(fHelp::instance(), help);
}

}  // namespace
}  // namespace tarabix::test
