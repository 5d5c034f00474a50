// The player's Qt wait and the marks that wait for a piece's sound.
#include "PieceBuilder.h"
#include "base/MonotonicClock.h"
#include "playback/MidiPlayer.h"
#include "playback/qt/DelayedMarks.h"
#include "playback/qt/QtPlayerWait.h"

#include <QCoreApplication>
#include <QTimer>

#include <gtest/gtest.h>

#include <chrono>
#include <ctime>
#include <vector>

namespace tarabix {
namespace {

using namespace std::chrono_literals;
using Strategy = QtPlayerWait::Strategy;

class QtApp : public ::testing::Environment {
public:
    void SetUp() override
    {
        static int argc = 1;
        static char name[] = "tarabix_player_qt_tests";
        static char* argv[] = {name, nullptr};
        new QCoreApplication(argc, argv);
    }
};
[[maybe_unused]] ::testing::Environment* const kQtApp = ::testing::AddGlobalTestEnvironment(new QtApp);

double threadCpuMs()
{
    timespec t{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) * 1e3 + static_cast<double>(t.tv_nsec) / 1e6;
}

// The sleeping strategies reach the due time and sleep meanwhile (bounds for a busy machine).
TEST(QtPlayerWait, SleepsUntilTheDueTimeWithoutSpinning)
{
    for (Strategy strategy : {Strategy::TimerFd, Strategy::PreciseTimer}) {
        SCOPED_TRACE(static_cast<int>(strategy));
        QtPlayerWait wait(strategy);
        const auto deadline = std::chrono::steady_clock::now() + 60ms;
        const double cpuBefore = threadCpuMs();
        int wakeUps = 0;
        while (std::chrono::steady_clock::now() < deadline) {
            wait.waitUntil(deadline);
            ++wakeUps;
        }
        EXPECT_LT(std::chrono::steady_clock::now() - deadline, 40ms);
        EXPECT_LT(threadCpuMs() - cpuBefore, 15.0);
        EXPECT_LE(wakeUps, 3);
    }
}

// A stop from a timer's handler, run inside the player's wait, ends it before the next event.
TEST(QtPlayerWait, HandlersRunInsideThePlayersWait)
{
    const MidiFile piece = test::pieceOf({{0, 0x90, 60, 1}, {100, 0x90, 61, 1}, {200, 0x90, 62, 1}});
    for (Strategy strategy : {Strategy::TimerFd, Strategy::PreciseTimer, Strategy::BusyPoll}) {
        SCOPED_TRACE(static_cast<int>(strategy));
        MonotonicClock clock;
        QtPlayerWait wait(strategy);
        MidiPlayer player(QtPlayerWait::playerClock(clock, wait));
        player.resetPlayState();
        player.setTheMidi(&piece);
        int delivered = 0, done = 0;
        player.msg = [&](uint8_t, uint8_t, uint8_t, int32_t) { ++delivered; };
        player.donePB = [&] { ++done; };
        QTimer::singleShot(40, [&] { player.stopPlaying(); });
        player.play();
        EXPECT_EQ(delivered, 1);
        EXPECT_EQ(done, 1);
        EXPECT_EQ(player.stopOffsetMSec_midi(), 100);
        EXPECT_LT(clock.millis(), 100);
    }
}

using Marks = std::vector<PieceMark>;

const PieceMark kOn60 = PieceMark::noteOn(0, 60, 0);
const PieceMark kOff60 = PieceMark::noteOff(0, 60, 0);
const PieceMark kOn64 = PieceMark::noteOn(1, 64, 50);
const PieceMark kOff64 = PieceMark::noteOff(1, 64, 50);

class DelayedMarksTest : public ::testing::Test {
protected:
    // The marks of one event, due at dueMs.
    void deliver(std::initializer_list<PieceMark> marks, int32_t dueMs)
    {
        for (const PieceMark& m : marks)
            queue.add(m);
        queue.release(dueMs);
    }

    // The virtual clock moves on and the timer, had it fired, shows what is due.
    Marks at(int32_t ms)
    {
        nowMs = ms;
        shown.clear();
        queue.showDue();
        return shown;
    }

    int32_t nowMs = 1000;
    Marks shown;
    DelayedMarks queue{[this] { return nowMs; }, [this](const PieceMark& m) { shown.push_back(m); }};
};

// Heard 50 ms late: each event's marks show 50 ms after it, in order, the timer armed till none wait.
TEST_F(DelayedMarksTest, EachEventsMarksShowWhenItIsHeardInOrder)
{
    const PieceMark rast = PieceMark::maqamMarker(3, 0);
    deliver({rast, kOn60}, 1000 + 50);
    EXPECT_TRUE(shown.empty());
    deliver({kOff60, kOn64}, 1020 + 50);
    EXPECT_EQ(queue.nextDueMs(), 1050);
    EXPECT_TRUE(queue.timerArmed());

    EXPECT_EQ(at(1049), Marks{});
    EXPECT_EQ(at(1050), (Marks{rast, kOn60}));
    EXPECT_EQ(queue.nextDueMs(), 1070);
    deliver({kOff64}, 1040 + 50);
    EXPECT_EQ(at(1075), (Marks{kOff60, kOn64}));  // a late timer shows all that is due
    EXPECT_EQ(at(1090), Marks{kOff64});
    EXPECT_FALSE(queue.timerArmed());
}

// Marks due show before release() returns; when the delay shrinks, later marks wait for earlier ones.
TEST_F(DelayedMarksTest, MarksDueShowAtOnceAndAShorterDelayNeverOvertakesWhatWaits)
{
    deliver({kOn60}, nowMs - 3);
    EXPECT_EQ(shown, Marks{kOn60});
    shown.clear();
    deliver({kOn64}, 1060);
    deliver({kOff64}, 1000);
    EXPECT_TRUE(shown.empty());
    EXPECT_EQ(at(1060), (Marks{kOn64, kOff64}));
    EXPECT_EQ(queue.waiting(), 0u);
}

// Stop, pause, a jump: what waits, released or still being added, never shows.
TEST_F(DelayedMarksTest, DropForgetsEverythingWaiting)
{
    deliver({kOn60}, 1050);
    queue.add(kOff60);  // the event being routed when the learner stopped
    EXPECT_TRUE(queue.drop());
    EXPECT_FALSE(queue.timerArmed());
    queue.release(5000);  // the interrupted event's release finds nothing
    EXPECT_EQ(at(5000), Marks{});
    EXPECT_FALSE(queue.drop());
    deliver({kOn64}, 5010);
    EXPECT_EQ(at(5010), Marks{kOn64});
}

// More marks than the ring holds, its start moved round: it grows and keeps their order.
TEST_F(DelayedMarksTest, TheRingGrowsInOrder)
{
    for (int i = 0; i < 100; ++i)
        deliver({kOn60}, 1001 + i);
    EXPECT_EQ(at(1100).size(), 100u);
    Marks delivered;
    for (int i = 0; i < 1000; ++i) {
        delivered.push_back(PieceMark::noteOn(0, i % 128, i));
        deliver({delivered.back()}, 2000 + i);
    }
    EXPECT_EQ(at(3000), delivered);
}

// A showing may end what waits (a mark that stops the piece): the rest is not shown.
TEST_F(DelayedMarksTest, AShowingMayDropTheRest)
{
    Marks seen;
    DelayedMarks stopping([this] { return nowMs; }, [&](const PieceMark& m) {
        seen.push_back(m);
        if (m.kind == PieceMark::Kind::Clear)
            stopping.drop();
    });
    for (const PieceMark& m : {kOn60, PieceMark::clear(), kOff60})
        stopping.add(m);
    stopping.release(nowMs);
    EXPECT_EQ(seen, (Marks{kOn60, PieceMark::clear()}));
    EXPECT_EQ(stopping.waiting(), 0u);
}

}  // namespace
}  // namespace tarabix
