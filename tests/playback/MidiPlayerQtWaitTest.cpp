#include "PieceBuilder.h"
#include "playback/MidiPlayer.h"
#include "playback/qt/QtPlayerWait.h"

#include <QCoreApplication>
#include <QTimer>

#include <gtest/gtest.h>

#include <chrono>
#include <ctime>

namespace tarabix {
namespace {

using namespace std::chrono_literals;
using Strategy = QtPlayerWait::Strategy;

double threadCpuMs()
{
    timespec t{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) * 1e3 + static_cast<double>(t.tv_nsec) / 1e6;
}

class QtPlayerWaitTest : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        static int argc = 1;
        static char name[] = "tarabix_player_qt_tests";
        static char* argv[] = {name, nullptr};
        if (!QCoreApplication::instance())
            new QCoreApplication(argc, argv);
    }
};

// The sleeping strategies reach the due time and sleep meanwhile; generous bounds, as the suite
// shares a busy machine.
TEST_F(QtPlayerWaitTest, SleepsUntilTheDueTimeWithoutSpinning)
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

// Buttons work while a piece plays: a stop from a timer's handler, nested in the player's wait,
// ends that wait at once and the event it waited for is not delivered.
TEST_F(QtPlayerWaitTest, HandlersRunInsideThePlayersWait)
{
    const MidiFile piece = test::PieceBuilder().noteOn(0, 0, 60).noteOn(0, 100, 61).noteOn(0, 200, 62).build();
    for (Strategy strategy : {Strategy::TimerFd, Strategy::PreciseTimer, Strategy::BusyPoll}) {
        SCOPED_TRACE(static_cast<int>(strategy));
        MonotonicClock clock;
        QtPlayerWait wait(strategy);
        MidiPlayer player(QtPlayerWait::playerClock(clock, wait));
        player.resetPlayState();
        player.setTheMidi(&piece);
        int delivered = 0;
        int done = 0;
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

}  // namespace
}  // namespace tarabix
