#include "base/CheckedInt32.h"
#include "base/Rounding.h"
#include "base/TickSource.h"

#include <gtest/gtest.h>

#include <cmath>
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

TEST(Rounding, HalvesGoToTheEvenNeighbour)
{
    struct Case { double in; double out; };
    const Case cases[] = {
        {0.5, 0}, {1.5, 2}, {2.5, 2}, {3.5, 4}, {-0.5, -0}, {-1.5, -2}, {-2.5, -2},
        {2.4999, 2}, {2.5001, 3}, {-2.5001, -3}, {1e15 + 0.5, 1e15}, {7, 7},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.in);
        EXPECT_EQ(roundHalfEven(c.in), c.out);
    }
}

TEST(Rounding, Int32ConversionReportsValuesThatDoNotFit)
{
    EXPECT_EQ(roundHalfEvenToInt32(2147483647.4), 2147483647);
    EXPECT_EQ(roundHalfEvenToInt32(-2147483648.5), -2147483648);  // ties to even stays in range
    EXPECT_FALSE(roundHalfEvenToInt32(2147483647.5).has_value());
    EXPECT_FALSE(roundHalfEvenToInt32(std::nan("")).has_value());
    EXPECT_EQ(roundHalfEvenInt(1e12), std::numeric_limits<int32_t>::max());
    EXPECT_EQ(roundHalfEvenInt(-1e12), std::numeric_limits<int32_t>::min());
}

}  // namespace
}  // namespace tarabix
