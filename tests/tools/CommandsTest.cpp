// The commands a teacher scripts: what they print, read and write, and what they refuse. The
// binary runs as a user runs it, from the build's program folder with its data beside it.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

const std::string kSamai = TARABIX_BIN_DIR "/samples/rast/samai-rast.mzf";

std::string scratch(const std::string& name)
{
    return (std::filesystem::temp_directory_path() / ("tarabix-cli-" + std::to_string(getpid()) + "-" + name)).string();
}

struct CliRun {
    int exitCode = -1;
    std::vector<std::string> lines;
};

// Runs tarabix-cli with `arguments`; keeps the lines of stdout, or of stderr when `errors` is set.
CliRun runCli(const std::string& arguments, bool errors = false)
{
    const std::string out = scratch("output.txt");
    const int status = std::system((TARABIX_BIN_DIR "/tarabix-cli " + arguments + (errors ? " >/dev/null 2>" : " 2>/dev/null >") + out).c_str());
    CliRun run{WIFEXITED(status) ? WEXITSTATUS(status) : -1, {}};
    std::ifstream in(out);
    for (std::string line; std::getline(in, line);)
        run.lines.push_back(line);
    std::filesystem::remove(out);
    return run;
}

// Rast on C on the usual oud: the half-flat degrees lie three quarter tones up their strings, a
// quarter of the drawn zone from the nut; B half-flat on the top F string is five and a half
// semitones up. Mirrored views turn the same places round.
TEST(CliCommands, ScaleListsEveryDegreeInRangeAtItsPlace)
{
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
            EXPECT_TRUE(std::ranges::count(run.lines, line) == 1) << line;
        EXPECT_EQ(run.lines.size(), 19u);  // every degree from F2 to C5 once, lowest first
        EXPECT_EQ(run.lines.front().substr(0, 5), "41,0,");
    }
    EXPECT_EQ(runCli("scale 1 0").lines, runCli("scale RAST 0 --view 0").lines);  // index, defaults

    for (const char* arguments : {"scale nosuch 0", "scale rast 12", "scale rast 0 --tuning 99", "scale rast 0 --view 4", "scale rast"}) {
        const CliRun run = runCli(arguments, true);
        EXPECT_EQ(run.exitCode, 2) << arguments;
        EXPECT_TRUE(!run.lines.empty() && run.lines.front().find("tarabix-cli scale") != std::string::npos) << arguments;
    }
}

// An MZF is dumped as its MIDI part; a missing piece is reported and never created.
TEST(CliCommands, DumpReadsAnMzfsMidiPartAndCreatesNoMissingFile)
{
    const CliRun dump = runCli("dump " + kSamai);
    ASSERT_EQ(dump.exitCode, 0);
    EXPECT_EQ(dump.lines.at(0), "HEADER:\r");  // the dump keeps CR LF line ends
    EXPECT_TRUE(std::ranges::any_of(dump.lines, [](const std::string& l) { return l.ends_with("Text: Q:Rast/0\r"); }));

    const std::string missing = scratch("missing.mid");
    EXPECT_EQ(runCli("dump " + missing).exitCode, 1);
    EXPECT_FALSE(std::filesystem::exists(missing));
}

// A passage renders exactly its length plus the ringing tail; a start past the end, an empty
// length or an unwritable file are refused without a file.
TEST(CliCommands, RenderFromAndLengthWriteThePassageAndRefuseWhatCannotBe)
{
    const std::string wav = scratch("passage.wav");
    ASSERT_EQ(runCli("render " + kSamai + " --from 10 --length 1.5 -o " + wav).exitCode, 0);
    EXPECT_EQ(std::filesystem::file_size(wav), 44u + (1500 + 2000) * 441u / 10u * 4u);  // 16-bit stereo
    std::filesystem::remove(wav);

    for (const std::string arguments : {"--from 9999", "--length 0", "--from -1", "--from ten"}) {
        EXPECT_EQ(runCli("render " + kSamai + " " + arguments + " -o " + wav).exitCode, 2) << arguments;
        EXPECT_FALSE(std::filesystem::exists(wav));
    }
    EXPECT_EQ(runCli("render " + kSamai + " -o /nonexistent-folder/x.wav").exitCode, 1);
}

// play --from starts there: the timing log's events begin at the start, none before it.
TEST(CliCommands, PlayFromStartsThereAndRefusesBadOptions)
{
    const std::string log = scratch("timing.csv");
    ASSERT_EQ(runCli("play " + kSamai + " --device null --speed 100 --from 70 --timing-log " + log).exitCode, 0);
    std::ifstream in(log);
    std::string line;
    ASSERT_TRUE(std::getline(in, line) && line == "absMS,due_ms,sent_ms") << line;
    int events = 0, earliest = 1 << 30;
    for (; std::getline(in, line); ++events)
        earliest = std::min(earliest, std::stoi(line));
    std::filesystem::remove(log);
    EXPECT_TRUE(events > 10 && earliest >= 70000) << events << " events from " << earliest << " ms";

    for (const std::string arguments : {"--latency 0", "--speed 0", "--device x", "--from"})
        EXPECT_EQ(runCli("play " + kSamai + " --device null " + arguments).exitCode, 2) << arguments;
}

// play --loop: the timing log holds the passes one after the other, each event due exactly
// (B - A) / speed = 200 ms after its turn in the pass before; a plan that cannot be played exits
// with its sentence (or the usage) and writes no log.
TEST(CliCommands, PlayLoopLogsItsPassesInTimeAndRefusesBadPlans)
{
    const std::string log = scratch("loop.csv");
    ASSERT_EQ(runCli("play " + kSamai + " --device null --speed 20 --loop 10:14 --passes 3 --timing-log " + log).exitCode, 0);
    std::ifstream in(log);
    std::string line;
    ASSERT_TRUE(std::getline(in, line) && line == "absMS,due_ms,sent_ms") << line;
    std::vector<std::vector<std::pair<int, double>>> passes;  // absMS and due time of each event
    for (int previous = INT_MAX; std::getline(in, line);) {
        std::pair<int, double> event;
        ASSERT_EQ(std::sscanf(line.c_str(), "%d,%lf", &event.first, &event.second), 2) << line;
        if (event.first < previous)
            passes.emplace_back();
        passes.back().push_back(event);
        previous = event.first;
    }
    std::filesystem::remove(log);
    ASSERT_EQ(passes.size(), 3u);
    EXPECT_TRUE(passes[0].size() > 5 && passes[0].front().first >= 10000 && passes[0].back().first < 14000);
    for (size_t k = 1; k < passes.size(); ++k) {
        ASSERT_EQ(passes[k].size(), passes[0].size());
        for (size_t i = 0; i < passes[k].size(); ++i) {
            EXPECT_EQ(passes[k][i].first, passes[0][i].first);
            EXPECT_EQ(passes[k][i].second - passes[k - 1][i].second, 200.0) << "pass " << k << ", event " << i;
        }
    }

    struct Refusal { const char* arguments; const char* firstLine; };
    const Refusal refusals[] = {
        {"--loop 14:10 --passes 2", "tarabix-cli play: The loop's end (B) must come after its start (A)."},
        {"--loop 10:9999 --passes 2", "tarabix-cli play: The loop must lie inside the piece, which runs from 0:00.0 to "},
        {"--loop 10:14 --passes 2 --ramp 120:10", "tarabix-cli play: The tempo ramp starts at 120 %, above the most it may reach (100 %)."},
        {"--loop 10:14 --passes 2 --ramp 50:0", "tarabix-cli play: The tempo ramp must speed up by at least 1 % a pass."},
        {"--loop 10:x --passes 2", "usage: tarabix-cli play"},
        {"--loop 10:14 --passes 0", "usage: tarabix-cli play"},
        {"--loop 10:14", "usage: tarabix-cli play"},
        {"--ramp 50", "usage: tarabix-cli play"},
    };
    for (const Refusal& r : refusals) {
        const CliRun run = runCli("play " + kSamai + " --device null --timing-log " + log + " " + r.arguments, true);
        EXPECT_EQ(run.exitCode, 2) << r.arguments;
        EXPECT_TRUE(!run.lines.empty() && run.lines.front().starts_with(r.firstLine)) << r.arguments;
        EXPECT_FALSE(std::filesystem::exists(log)) << r.arguments;
    }
}

}  // namespace
