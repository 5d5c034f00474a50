#include "base/CheckedInt32.h"
#include "base/TickSource.h"

#include <gtest/gtest.h>

#include <limits>

namespace tarabix {
namespace {

constexpr int32_t kMax = std::numeric_limits<int32_t>::max();
constexpr int32_t kMin = std::numeric_limits<int32_t>::min();

TEST(CheckedInt32, OverflowIsAnOutcomeNotUndefinedBehaviour)
{
    EXPECT_EQ(checkedAdd(kMax - 1, 1), kMax);
    EXPECT_FALSE(checkedAdd(kMax, 1));
    EXPECT_FALSE(checkedSub(kMin, 1));
    EXPECT_EQ(checkedMul(2147483, 1000), 2147483000);
    EXPECT_FALSE(checkedMul(2147484, 1000));  // absTick x 1000 beyond 32 bits
    EXPECT_FALSE(checkedMul(kMin, -1));
}

TEST(TickSource, StartsNearZeroAndNeverRunsBackwards)
{
    const int32_t first = tickMs();
    EXPECT_GE(first, 0);
    EXPECT_LT(first, 60'000);
    EXPECT_GE(tickMs(), first);
}

}  // namespace
}  // namespace tarabix
