#include "app/ScopedFlag.h"

#include <gtest/gtest.h>

namespace tarabix {
namespace {

// The window fills a list inside a longer fill (the tuning list during start-up): the flag must
// stay set until the outermost scope ends, and a scope opened while it was already set by hand
// must leave it set.
TEST(ScopedFlag, NestedScopesKeepTheFlagUntilTheOutermostEnds)
{
    for (const bool before : {false, true}) {
        SCOPED_TRACE(before ? "already set" : "clear");
        bool flag = before;
        {
            const ScopedFlag outer(flag);
            {
                const ScopedFlag inner(flag);
                EXPECT_TRUE(flag);
            }
            EXPECT_TRUE(flag);
        }
        EXPECT_EQ(flag, before);
    }
}

}  // namespace
}  // namespace tarabix
