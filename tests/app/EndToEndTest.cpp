// The program as a learner uses it, from its own folder and its start-up sample: play a few
// seconds, pause, resume, stop, change the maqam, close. Notes must reach the output and marks the
// fingerboard.
#include "MainWindowFixture.h"

#include <QTimer>

namespace tarabix::test {
namespace {

class EndToEndTest : public MainWindowTest {
protected:
    EndToEndTest() { m_useRealProgramFolder = true; }

    // Whether any sounding mark is on the fingerboard now: the displayed picture differs from the
    // resting one only where a sounding note is marked.
    bool marksShown()
    {
        const UdDisplay* display = m_window->display();
        return display && display->picUd() != display->picUdClone();
    }

    int noteOns() const
    {
        int count = 0;
        for (uint32_t w : noteMessages(*m_recording))
            count += (w & 0xF0) == 0x90 && ((w >> 16) & 0x7F) != 0;
        return count;
    }
};

TEST_F(EndToEndTest, PlayPauseResumeStopChangeMaqamAndClose)
{
    fMainProbe& w = start();
    ASSERT_TRUE(m_shown.empty());
    ASSERT_EQ(w.lblFile->text(), QStringLiteral("[ zoroony.mzf ]"));
    w.sldSpeedR->setValue(2);  // twice as fast: more of the piece in less time
    EXPECT_EQ(w.lblSpeed->text(), QStringLiteral("2.00"));

    bool markedWhilePlaying = false;
    QTimer::singleShot(1500, &w, [&] {
        markedWhilePlaying = marksShown();
        w.cmdPause->click();
    });
    w.cmdPlay->click();  // returns when the pause has stopped the player
    EXPECT_TRUE(markedWhilePlaying);
    EXPECT_TRUE(w.cmdPause->isChecked());
    EXPECT_FALSE(w.cmdPlay->isChecked());
    const int afterFirstPart = noteOns();
    EXPECT_GT(afterFirstPart, 3);
    EXPECT_GT(w.sldPosition->value(), 0);  // a pause keeps the place

    QTimer::singleShot(1000, &w, [&] { w.cmdStop->click(); });
    w.cmdPause->click();  // resumes; returns at the stop
    EXPECT_GT(noteOns(), afterFirstPart);
    EXPECT_EQ(w.sldPosition->value(), 0);
    EXPECT_EQ(w.lblPieceTime->text(), QStringLiteral("000:00"));
    EXPECT_FALSE(w.cmdPause->isChecked());

    const QImage before = w.display()->picUdClone();
    const int hijaz = w.cmbMaqams->findText(QStringLiteral("Hijaz"));
    ASSERT_GT(hijaz, 0);
    w.cmbMaqams->setCurrentIndex(hijaz);
    EXPECT_NE(w.display()->picUdClone(), before);  // the resting scale is Hijaz's now

    m_recording->clear();
    w.close();
    EXPECT_FALSE(w.isFormLoaded());
    const std::vector<uint32_t> words = m_recording->words();
    EXPECT_NE(std::find(words.begin(), words.end(), 0x7BB0u), words.end());  // all notes off, channel 0
}

}  // namespace
}  // namespace tarabix::test
