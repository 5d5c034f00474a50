// The other commands a teacher scripts: what they read, what they write, and what they refuse.
#include "CliRun.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <string>
#include <unistd.h>

namespace {

const std::string kSamai = kCliSamples + "rast/samai-rast.mzf";

std::string scratch(const std::string& name)
{
    return (std::filesystem::temp_directory_path() / ("tarabix-cli-" + std::to_string(getpid()) + "-" + name)).string();
}

// An MZF is dumped as its MIDI part; a missing piece is reported and never created.
TEST(CliCommands, DumpReadsAnMzfsMidiPartAndCreatesNoMissingFile)
{
    const CliRun dump = runCli("dump " + kSamai);
    EXPECT_EQ(dump.exitCode, 0);
    ASSERT_FALSE(dump.lines.empty());
    EXPECT_EQ(dump.lines.front(), "HEADER:\r");  // the dump keeps CR LF line ends
    EXPECT_TRUE(std::ranges::any_of(dump.lines, [](const std::string& l) { return l.ends_with("Text: Q:Rast/0\r"); }));

    const std::string missing = scratch("missing.mid");
    const CliRun refused = runCli("dump " + missing, true);
    EXPECT_EQ(refused.exitCode, 1);
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
        SCOPED_TRACE(arguments);
        EXPECT_EQ(runCli("render " + kSamai + " " + arguments + " -o " + wav).exitCode, 2);
        EXPECT_FALSE(std::filesystem::exists(wav));
    }
    EXPECT_EQ(runCli("render " + kSamai + " -o /nonexistent-folder/x.wav").exitCode, 1);
}

// play --from starts there: the timing log's events begin at the start, none before it.
TEST(CliCommands, PlayFromStartsThereAndRefusesBadOptions)
{
    const std::string log = scratch("timing.csv");
    ASSERT_EQ(runCli("play " + kSamai + " --device null --speed 100 --from 70 --timing-log " + log).exitCode, 0);
    std::FILE* f = std::fopen(log.c_str(), "r");
    ASSERT_NE(f, nullptr);
    char header[64] = {};
    ASSERT_NE(std::fgets(header, sizeof header, f), nullptr);
    EXPECT_STREQ(header, "absMS,due_ms,sent_ms\n");
    int events = 0;
    int earliest = 1 << 30;
    for (int absMs = 0; std::fscanf(f, "%d,%*[^\n]\n", &absMs) == 1; ++events)
        earliest = std::min(earliest, absMs);
    std::fclose(f);
    std::filesystem::remove(log);
    EXPECT_GT(events, 10);
    EXPECT_GE(earliest, 70000);

    for (const std::string arguments : {"--latency 0", "--speed 0", "--device x", "--from"}) {
        SCOPED_TRACE(arguments);
        EXPECT_EQ(runCli("play " + kSamai + " --device null " + arguments).exitCode, 2);
    }
}

}  // namespace
