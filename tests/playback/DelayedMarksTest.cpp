#include "base/MonotonicClock.h"
#include "playback/qt/DelayedMarks.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

#include <chrono>
#include <vector>

namespace tarabix {
namespace {

class DelayedMarksTest : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        static int argc = 1;
        static char name[] = "tarabix_player_qt_tests";
        static char* argv[] = {name, nullptr};
        if (!QCoreApplication::instance())
            new QCoreApplication(argc, argv);
    }

    // The marks of one event, due at dueMs.
    void deliver(std::initializer_list<PieceMark> marks, int32_t dueMs)
    {
        for (const PieceMark& m : marks)
            queue.add(m);
        queue.release(dueMs);
    }

    // The virtual clock moves on and the timer, had it fired, shows what is due.
    std::vector<PieceMark> at(int32_t ms)
    {
        nowMs = ms;
        shown.clear();
        queue.showDue();
        return shown;
    }

    int32_t nowMs = 1000;
    std::vector<PieceMark> shown;
    DelayedMarks queue{[this] { return nowMs; }, [this](const PieceMark& m) { shown.push_back(m); }};
};

const PieceMark kOn60 = PieceMark::noteOn(0, 60, 0);
const PieceMark kOff60 = PieceMark::noteOff(0, 60, 0);
const PieceMark kOn64 = PieceMark::noteOn(1, 64, 50);
const PieceMark kOff64 = PieceMark::noteOff(1, 64, 50);
const PieceMark kRast = PieceMark::maqamMarker(3, 0);

using Marks = std::vector<PieceMark>;

// An output heard 50 ms late: each event's marks appear 50 ms after it, together and in the order
// they were added, and the timer is armed for the next batch until nothing waits.
TEST_F(DelayedMarksTest, EachEventsMarksShowWhenItIsHeardInOrder)
{
    deliver({kRast, kOn60}, 1000 + 50);
    EXPECT_TRUE(shown.empty());
    deliver({kOff60, kOn64}, 1020 + 50);
    EXPECT_EQ(queue.nextDueMs(), 1050);
    EXPECT_TRUE(queue.timerArmed());

    EXPECT_EQ(at(1049), Marks{});
    EXPECT_EQ(at(1050), (Marks{kRast, kOn60}));
    EXPECT_EQ(queue.nextDueMs(), 1070);
    EXPECT_EQ(at(1069), Marks{});
    deliver({kOff64}, 1040 + 50);
    EXPECT_EQ(at(1075), (Marks{kOff60, kOn64}));  // a late timer shows all that is due
    EXPECT_EQ(at(1090), Marks{kOff64});
    EXPECT_EQ(queue.waiting(), 0u);
    EXPECT_FALSE(queue.timerArmed());
}

// A system MIDI port sounds what it gets at once: with no delay the marks show before release()
// returns, as the event is delivered, and nothing is left for the timer.
TEST_F(DelayedMarksTest, WithoutADelayMarksShowAtOnce)
{
    deliver({kOn60}, nowMs);
    EXPECT_EQ(shown, Marks{kOn60});
    shown.clear();
    deliver({kOff60, kOn64}, nowMs - 3);  // an event delivered late
    EXPECT_EQ(shown, (Marks{kOff60, kOn64}));
    EXPECT_FALSE(queue.timerArmed());
    EXPECT_EQ(queue.waiting(), 0u);
}

// The output's delay can shrink between two events (its audio restarted, the learner chose a
// system port): the later event's marks then wait for the earlier ones, and a note-off never
// shows before its note-on.
TEST_F(DelayedMarksTest, AShorterDelayLaterNeverOvertakesWhatWaits)
{
    deliver({kOn60}, 1000 + 60);
    nowMs = 1010;
    deliver({kOff60}, 1010 + 0);
    EXPECT_TRUE(shown.empty());
    EXPECT_EQ(at(1060), (Marks{kOn60, kOff60}));
}

// Stop, pause, a jump: what waits is forgotten, released or still being added, and nothing of it
// shows later; marks added afterwards show as usual.
TEST_F(DelayedMarksTest, DropForgetsEverythingWaiting)
{
    deliver({kOn60}, 1050);
    deliver({kOff60}, 1060);
    queue.add(kOn64);  // the event being routed when the learner stopped
    EXPECT_TRUE(queue.drop());
    EXPECT_FALSE(queue.timerArmed());
    EXPECT_EQ(at(5000), Marks{});
    queue.release(5000);  // the interrupted event's release finds nothing
    EXPECT_EQ(shown, Marks{});
    EXPECT_FALSE(queue.drop());

    deliver({kOn64}, 5010);
    EXPECT_EQ(at(5010), Marks{kOn64});
}

// More marks wait than the ring first holds, while its start has moved round: it grows and keeps
// their order.
TEST_F(DelayedMarksTest, TheRingGrowsInOrder)
{
    for (int i = 0; i < 100; ++i)
        deliver({PieceMark::noteOn(0, i, 0)}, 1001 + i);
    EXPECT_EQ(at(1100).size(), 100u);
    for (int i = 0; i < 1000; ++i)
        deliver({PieceMark::noteOn(0, i % 128, i)}, 2000 + i);
    EXPECT_EQ(queue.waiting(), 1000u);
    const Marks all = at(3000);
    ASSERT_EQ(all.size(), 1000u);
    for (int i = 0; i < 1000; ++i)
        EXPECT_EQ(all[static_cast<size_t>(i)].cents, i);
}

// A showing may end what waits (a mark that stops the piece): the rest is not shown.
TEST_F(DelayedMarksTest, AShowingMayDropTheRest)
{
    std::vector<PieceMark> seen;
    DelayedMarks stopping([this] { return nowMs; }, [&](const PieceMark& m) {
        seen.push_back(m);
        if (m.kind == PieceMark::Kind::Clear)
            stopping.drop();
    });
    stopping.add(kOn60);
    stopping.add(PieceMark::clear());
    stopping.add(kOff60);
    stopping.release(nowMs);
    EXPECT_EQ(seen, (Marks{kOn60, PieceMark::clear()}));
    EXPECT_EQ(stopping.waiting(), 0u);
}

// The timer itself: in the event loop the marks show at their moment on the real clock, not
// before (generous on how late, as the suite shares a busy machine).
TEST_F(DelayedMarksTest, TheTimerShowsThemInTheEventLoop)
{
    MonotonicClock clock;
    std::vector<int64_t> shownAtUs;
    DelayedMarks real([&clock] { return clock.millis(); }, [&](const PieceMark&) { shownAtUs.push_back(clock.micros()); });
    const int32_t due = clock.millis() + 30;
    real.add(kOn60);
    real.release(due);
    real.add(kOff60);
    real.release(due + 20);
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    while (shownAtUs.size() < 2 && std::chrono::steady_clock::now() < deadline)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
    ASSERT_EQ(shownAtUs.size(), 2u);
    EXPECT_GE(shownAtUs[0], int64_t{due} * 1000);
    EXPECT_GE(shownAtUs[1], int64_t{due + 20} * 1000);
}

}  // namespace
}  // namespace tarabix
