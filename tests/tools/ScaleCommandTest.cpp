#include "CliRun.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {


TEST(ScaleCommand, RastOnCOnTheUsualOud)
{
    // The half-flat degrees lie three quarter tones up their strings, a quarter of the drawn zone
    // from the nut: E on the D string, B on the A string; B half-flat on the top F string is five
    // and a half semitones up. Mirrored views turn the same places round.
    struct Case { std::string options; std::vector<std::string> lines; };
    const Case cases[] = {
        {"", {"50,0,D,2,59,111,0", "52,-50,E -,2,213,111,1", "47,-50,B -,1,213,136,1", "71,-50,B -,5,566,27,4"}},
        {"--view 3 --names solfege", {"52,-50,Mi -,2,529,76,1", "72,0,Do,5,64,164,4"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.options);
        const CliRun run = runCli("scale rast 0 --tuning 0 " + c.options);
        ASSERT_EQ(run.exitCode, 0);
        for (const std::string& line : c.lines)
            EXPECT_NE(std::find(run.lines.begin(), run.lines.end(), line), run.lines.end()) << line;
        // Every degree from F2 to C5 once, lowest first.
        EXPECT_EQ(run.lines.size(), 19u);
        EXPECT_EQ(run.lines.front().substr(0, 5), "41,0,");
    }
    EXPECT_EQ(runCli("scale 1 0").lines, runCli("scale RAST 0 --view 0").lines);  // index, defaults
}

TEST(ScaleCommand, BadArgumentsExitWithAMessage)
{
    for (const char* arguments : {"scale nosuch 0", "scale rast 12", "scale rast x", "scale 0 0", "scale rast 0 --tuning 99",
                                  "scale rast 0 --view 4", "scale rast 0 --names greek", "scale rast"}) {
        SCOPED_TRACE(arguments);
        EXPECT_TRUE(runCli(arguments).lines.empty());
        const CliRun run = runCli(arguments, true);
        EXPECT_EQ(run.exitCode, 2);
        ASSERT_FALSE(run.lines.empty());
        EXPECT_NE(run.lines.front().find("tarabix-cli scale"), std::string::npos);
    }
}

}  // namespace
