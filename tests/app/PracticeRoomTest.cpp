// The practice room in the window: the loop set by keys and by a drag on the position bar, bad
// ends refused, the two speed controls kept together, a piece's practice remembered, the start
// delay counted down without freezing the window, and a loop played with nothing left behind.
#include "MainWindowFixture.h"

#include "app/CountdownOverlay.h"

namespace tarabix::test {

namespace {

// The first point of the bar at or after a piece time.
int barPointOf(const PositionBar& bar, int32_t ms)
{
    for (int x = 0; x < bar.width(); ++x)
        if (bar.msAt(x) >= ms)
            return x;
    return bar.width() - 1;
}

}  // namespace

TEST_F(MainWindowTest, TheLoopIsSetByKeysAndByDraggingAndABadEndIsRefused)
{
    fMainProbe& w = start();
    w.openFile(writePiece("eight-seconds.mid", 4000), false);
    dragPositionTo(1);
    QTest::keyClick(&w, Qt::Key_F5);
    dragPositionTo(5);
    QTest::keyClick(&w, Qt::Key_F6);
    ASSERT_TRUE(w.sldPosition->loopRange());
    EXPECT_EQ(w.sldPosition->loopRange()->fromMs, 1000);
    EXPECT_EQ(w.sldPosition->loopRange()->toMs, 5000);
    EXPECT_TRUE(w.practice().loopReady());
    EXPECT_TRUE(m_shown.empty());

    // An end at or before the start: the learner is told, and the loop stays as it was.
    dragPositionTo(1);
    QTest::keyClick(&w, Qt::Key_F6);
    ASSERT_EQ(m_shown.size(), 1u);
    EXPECT_EQ(*w.practice().bMs, 5000);

    // A start past the end begins the next phrase's loop: its end is still to come.
    dragPositionTo(6);
    QTest::keyClick(&w, Qt::Key_F5);
    EXPECT_EQ(*w.practice().aMs, 6000);
    EXPECT_FALSE(w.practice().bMs);
    EXPECT_FALSE(w.sldPosition->loopRange());

    // Shift-drag on the bar: the range between press and release, from right to left too; the
    // position stays where it was.
    PositionBar& bar = *w.sldPosition;
    const int y = bar.height() / 2;
    QTest::mousePress(&bar, Qt::LeftButton, Qt::ShiftModifier, QPoint(barPointOf(bar, 6500), y));
    QTest::mouseMove(&bar, QPoint(barPointOf(bar, 4000), y));
    QTest::mouseRelease(&bar, Qt::LeftButton, Qt::ShiftModifier, QPoint(barPointOf(bar, 2000), y));
    ASSERT_TRUE(bar.loopRange());
    const int32_t msPerPixel = 8000 / bar.width() + 1;
    EXPECT_NEAR(bar.loopRange()->fromMs, 2000, msPerPixel);
    EXPECT_NEAR(bar.loopRange()->toMs, 6500, msPerPixel);
    EXPECT_TRUE(w.practice().loopReady());
    EXPECT_EQ(bar.value(), 6);
    EXPECT_EQ(m_shown.size(), 1u);
}

TEST_F(MainWindowTest, TheSpeedSliderAndThePercentBoxShowOneSpeedAndAPiecesPracticeComesBack)
{
    fMainProbe& w = start();
    const QString first = writePiece("first.mid", 4000);
    w.openFile(first, false);
    w.sldSpeedR->setValue(-1);
    EXPECT_EQ(w.udSpeedPercent->value(), 71);
    w.udSpeedPercent->stepBy(1);  // from the slider's 71 % to the next multiple of 5
    EXPECT_EQ(w.udSpeedPercent->value(), 75);
    w.udSpeedPercent->stepBy(-1);
    w.udSpeedPercent->stepBy(-1);
    EXPECT_EQ(w.udSpeedPercent->value(), 65);
    w.udSpeedPercent->setValue(50);
    EXPECT_EQ(w.sldSpeedR->value(), -2);

    dragPositionTo(2);
    QTest::keyClick(&w, Qt::Key_F5);
    dragPositionTo(3);
    QTest::keyClick(&w, Qt::Key_F6);

    // Another piece starts fresh; the first one's loop and speed come back with it.
    w.openFile(writePiece("second.mid", 4000), false);
    EXPECT_FALSE(w.sldPosition->loopRange());
    EXPECT_EQ(w.udSpeedPercent->value(), 100);
    w.openFile(first, false);
    ASSERT_TRUE(w.sldPosition->loopRange());
    EXPECT_EQ(w.sldPosition->loopRange()->fromMs, 2000);
    EXPECT_EQ(w.sldPosition->loopRange()->toMs, 3000);
    EXPECT_EQ(w.udSpeedPercent->value(), 50);

    // The same path, now a shorter piece: a loop past its end is not offered again.
    w.closeFile();
    QFile::remove(first);
    EXPECT_EQ(writePiece("first.mid", 500), first);
    w.openFile(first, false);
    EXPECT_FALSE(w.sldPosition->loopRange());
    EXPECT_TRUE(m_shown.empty());
}

TEST_F(MainWindowTest, TheStartDelayCountsDownAndAStopDuringItPlaysNothing)
{
    fMainProbe& w = start();
    w.openFile(writePiece("short.mid"), false);
    w.mnu_Opts_Delay_Opt[2]->trigger();
    const auto* countdown = w.findChild<CountdownOverlay*>();
    ASSERT_NE(countdown, nullptr);
    QString shownEarly;
    after(300, [&] { shownEarly = countdown->isVisible() ? countdown->text() : QString(); });
    after(1300, [&] { w.cmdStop->click(); });
    QElapsedTimer clock;
    clock.start();
    w.cmdPlay->click();
    EXPECT_EQ(shownEarly, QStringLiteral("2"));
    EXPECT_LT(clock.elapsed(), 2000);
    EXPECT_FALSE(countdown->isVisible());
    EXPECT_TRUE(noteMessages(*m_recording).empty());
    EXPECT_FALSE(w.cmdPlay->isChecked());
}

TEST_F(MainWindowTest, ALoopPlaysAgainFromItsStartAndLeavesNoMarkOfItsEnd)
{
    fMainProbe& w = start();
    // Note 60 for 300 ms, then 64 a quarter tone up: the loop ends inside the quarter tone.
    w.openFile(writePiece("phrase.mid", 300), false);
    dragPositionTo(0);
    QTest::keyClick(&w, Qt::Key_F5);
    PositionBar& bar = *w.sldPosition;
    const int y = bar.height() / 2;
    QTest::mousePress(&bar, Qt::LeftButton, Qt::ShiftModifier, QPoint(barPointOf(bar, 0), y));
    QTest::mouseRelease(&bar, Qt::LeftButton, Qt::ShiftModifier, QPoint(barPointOf(bar, 450), y));
    ASSERT_TRUE(w.practice().loopReady());
    const int32_t loopMs = *w.practice().bMs - *w.practice().aMs;

    // Early in the second pass: the first note shows again, the cut quarter tone does not.
    bool firstShown = false;
    bool cutShown = true;
    after(loopMs + 150, [&] {
        firstShown = markedAt(60, 0);
        cutShown = markedAt(64, 50);
    });
    after(3 * loopMs + 100, [&] { w.cmdStop->click(); });
    w.cmdPlay->click();
    EXPECT_TRUE(firstShown);
    EXPECT_FALSE(cutShown);
    EXPECT_TRUE(boardAtRest());

    int firstNotes = 0;
    for (uint32_t m : noteMessages(*m_recording))
        firstNotes += (m & 0xFFFF) == 0x3C90 && (m >> 16) != 0;
    EXPECT_GE(firstNotes, 3);  // one a pass
}

}  // namespace tarabix::test
