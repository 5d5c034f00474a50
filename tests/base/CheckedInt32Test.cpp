#include "base/CheckedInt32.h"
#include "base/ReadWholeFile.h"
#include "base/Rounding.h"
#include "base/TickSource.h"
#include "tests/common/TempFolder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <utility>

namespace tarabix {
namespace {

constexpr int32_t kMax = std::numeric_limits<int32_t>::max();
constexpr int32_t kMin = std::numeric_limits<int32_t>::min();

TEST(CheckedInt32, OverflowIsAnOutcomeNotUndefinedBehaviour)
{
    EXPECT_EQ(checkedAdd(kMax - 1, 1), kMax);
    EXPECT_EQ(checkedMul(2147483, 1000), 2147483000);
    EXPECT_FALSE(checkedAdd(kMax, 1) || checkedSub(kMin, 1) || checkedMul(2147484, 1000) || checkedMul(kMin, -1));
}

TEST(TickSource, StartsNearZeroAndNeverRunsBackwards)
{
    const int32_t first = tickMs();
    EXPECT_TRUE(first >= 0 && first < 60'000 && tickMs() >= first) << first;
}

TEST(Rounding, HalvesGoToTheEvenNeighbourAndInt32sSaturateOrReportOverflow)
{
    const std::pair<double, double> cases[] = {
        {0.5, 0}, {1.5, 2}, {2.5, 2}, {-0.5, -0}, {-1.5, -2}, {-2.5, -2}, {2.4999, 2}, {-2.5001, -3}, {1e15 + 0.5, 1e15}};
    for (const auto& [in, out] : cases)
        EXPECT_EQ(roundHalfEven(in), out) << in;
    EXPECT_EQ(roundHalfEvenToInt32(2147483647.4), kMax);
    EXPECT_EQ(roundHalfEvenToInt32(-2147483648.5), kMin);  // ties to even stays in range
    EXPECT_FALSE(roundHalfEvenToInt32(2147483647.5) || roundHalfEvenToInt32(std::nan("")));
    EXPECT_EQ(std::make_pair(roundHalfEvenInt(1e12), roundHalfEvenInt(-1e12)), std::make_pair(kMax, kMin));
}

TEST(ReadWholeFile, ReadsBinaryBytesAndReportsMissingFilesAndFolders)
{
    const test::TempFolder dir("read_whole_file");
    const std::string binary("MThd\0\r\n\xff", 8);
    std::string bytes = "stale";
    EXPECT_EQ(readWholeFile(dir.write("piece.mid", binary), bytes), 0);
    EXPECT_EQ(bytes, binary);
    EXPECT_EQ(readWholeFile(dir.path("absent.mid"), bytes), kFileNotFound);
    EXPECT_TRUE(bytes.empty());
    EXPECT_EQ(readWholeFile("", bytes), kFileNotFound);
    EXPECT_EQ(readWholeFile(dir.path(""), bytes), kPathAccessError);
}

}  // namespace
}  // namespace tarabix
