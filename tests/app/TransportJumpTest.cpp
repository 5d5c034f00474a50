// Jumps in the piece as a learner makes them: the position slider dragged while playing or while
// paused. The notes after the jump sound and are marked with the piece's state at that point.
#include "MainWindowFixture.h"

#include <QTimer>

#include <algorithm>

namespace tarabix::test {
namespace {

class TransportJumpTest : public MainWindowTest {
protected:
    // Program 24; note 64 plain at 0; the wheel goes a quarter tone up at 500 and stays there for
    // notes 65 (at 1000) and 67 (at 2000, held for two seconds).
    QString writeQuarterTonePiece()
    {
        MidiFile piece;
        piece.setNTracks(1);
        MidiTrack* t = piece.tracks(0);
        t->c_addProgChangeE(0, 0, 24);
        t->c_addNoteOnE(0, 0, 64, 100);
        t->c_addNoteOffE(300, 0, 64);
        t->c_addPitchWheelE(200, 0, 50.0);
        t->c_addNoteOnE(500, 0, 65, 100);
        t->c_addNoteOffE(300, 0, 65);
        t->c_addNoteOnE(700, 0, 67, 100);
        t->c_addNoteOffE(2000, 0, 67);
        t->c_addEndOfTrack(0);
        piece.setEvtsAbsTicks();
        piece.setEvtsAbsMSecs();
        const QString path = m_pieces.filePath(QStringLiteral("jumps.mid"));
        EXPECT_EQ(piece.toFile(QFile::encodeName(path).toStdString()), 0);
        return path;
    }

    // As the mouse does it: press the thumb, move it, let go.
    static void dragPositionTo(fMainProbe& w, int seconds)
    {
        w.sldPosition->setSliderDown(true);
        w.sldPosition->setSliderPosition(seconds);
        w.sldPosition->setSliderDown(false);
    }

    // Whether the displayed fingerboard carries a sounding mark at the place of a pitch: there it
    // differs from the resting picture.
    bool markedAt(int32_t note, int32_t cents)
    {
        const UdDisplay* display = m_window->display();
        const std::optional<PicPoint> at = display->pointOfPitch(note, cents);
        EXPECT_TRUE(at.has_value());
        return at && display->picUd().pixel(at->x, at->y) != display->picUdClone().pixel(at->x, at->y);
    }
};

TEST_F(TransportJumpTest, ResumeStartsWhereTheSliderWasMovedWhilePausedWithThePiecesState)
{
    fMainProbe& w = start();
    w.openFile(writeQuarterTonePiece(), false);
    QTimer::singleShot(150, &w, [&] { w.cmdPause->click(); });
    w.cmdPlay->click();  // returns when the pause has stopped the player, during note 64
    ASSERT_TRUE(w.cmdPause->isChecked());

    dragPositionTo(w, 2);
    m_recording->clear();
    w.cmdPause->click();  // resumes, to the end of the piece

    const std::vector<uint32_t> words = m_recording->words();
    const auto firstNoteOn = std::find_if(words.begin(), words.end(), [](uint32_t word) {
        return (word & 0xF0) == 0x90 && (word >> 16) != 0;
    });
    ASSERT_NE(firstNoteOn, words.end());
    EXPECT_EQ(*firstNoteOn, 0x4F4390u);  // note 67 first, velocity 100 at the window's volume of 100
    ASSERT_NE(firstNoteOn, words.begin());
    EXPECT_EQ(*(firstNoteOn - 1), 0x5000E0u);  // with the quarter tone the piece has there
    EXPECT_NE(std::find(words.begin(), firstNoteOn, 0x0018C0u), firstNoteOn);  // and its program
}

TEST_F(TransportJumpTest, TheFirstNoteAfterAJumpIsMarkedAtItsQuarterTone)
{
    fMainProbe& w = start();
    w.openFile(writeQuarterTonePiece(), false);
    bool quarterToneMarked = false;
    bool semitoneMarked = true;
    QTimer::singleShot(150, &w, [&] { dragPositionTo(w, 2); });  // during note 64, before any wheel
    QTimer::singleShot(900, &w, [&] {                              // note 67 sounds
        quarterToneMarked = markedAt(67, 50);
        semitoneMarked = markedAt(67, 0);
        w.cmdStop->click();
    });
    w.cmdPlay->click();
    EXPECT_TRUE(quarterToneMarked);
    EXPECT_FALSE(semitoneMarked);
}

}  // namespace
}  // namespace tarabix::test
