#include "app/WindowTexts.h"

#include <gtest/gtest.h>

namespace tarabix {
namespace {

TEST(WindowTexts, TimesLabelsAndRanges)
{
    EXPECT_EQ(pieceTimeText(75'400), QStringLiteral("001:15"));
    EXPECT_EQ(pieceTimeText(0), QStringLiteral("000:00"));
    EXPECT_EQ(pieceTimeText(2'500), QStringLiteral("000:02"));  // halves to even
    EXPECT_EQ(pieceTimeText(3'500), QStringLiteral("000:04"));
    EXPECT_EQ(pieceTimeText(6'000'000), QStringLiteral("100:00"));

    // The window test opens a long name; here the edge: 16 characters stay whole, and '\' cuts too.
    EXPECT_EQ(fileLabelText(QStringLiteral("/home/l/sixteen-chars.mz")), QStringLiteral("[ sixteen-chars.mz ]"));
    EXPECT_EQ(fileLabelText(QStringLiteral("C:\\music\\plain.mid")), QStringLiteral("[ plain.mid ]"));
}

}  // namespace
}  // namespace tarabix
