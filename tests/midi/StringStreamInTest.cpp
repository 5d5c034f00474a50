#include "midi/MidiError.h"
#include "midi/StringStreamIn.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace tarabix {
namespace {

// Runs f, which must raise the stream error `number` with its exact description and source.
template <class F>
void expectStreamError(F f, int32_t number, const std::string& description)
{
    try {
        f();
        ADD_FAILURE() << "no error raised";
    } catch (const MidiError& e) {
        EXPECT_EQ(e.number(), number);
        EXPECT_EQ(e.description(), description);
        EXPECT_EQ(e.source(), "StringStreamIn");
    }
}

TEST(StringStreamIn, NewStreamIsEmptyAtBothEnds)
{
    StringStreamIn s;
    EXPECT_TRUE(s.isEmpty());
    EXPECT_TRUE(s.BOS());
    EXPECT_TRUE(s.EOS());
    EXPECT_EQ(s.streamLen(), 0);
    EXPECT_EQ(s.remainingLen(), 0);
    EXPECT_EQ(s.read(0), "");
    EXPECT_EQ(s.readToEnd(), "");
}

TEST(StringStreamIn, ReadsPassEveryByteAndStopAtTheEndWithoutConsuming)
{
    const std::string all("\x00\x80\xFF\x7F" "abc", 7);
    StringStreamIn s;
    s.setFromString(all);
    EXPECT_EQ(s.read(2), std::string("\x00\x80", 2));
    EXPECT_FALSE(s.BOS());
    EXPECT_EQ(s.currentPos(), 2);
    EXPECT_EQ(s.remainingLen(), 5);

    expectStreamError([&] { s.read(6); }, -2147220479, "Attempt to read beyond end of stream");
    EXPECT_EQ(s.currentPos(), 2);
    expectStreamError([&] { s.read(-1); }, -2147220479, "Attempt to read beyond end of stream");
    EXPECT_EQ(s.currentPos(), 2);

    EXPECT_EQ(s.read(5), all.substr(2));
    EXPECT_TRUE(s.EOS());
    EXPECT_EQ(s.read(0), "");
    EXPECT_EQ(s.readToEnd(), "");
    EXPECT_EQ(s.wholeString(), all);

    s.seekTo(3);
    EXPECT_EQ(s.readToEnd(), all.substr(3));
    EXPECT_EQ(s.currentPos(), 7);

    s.setFromString("xy");
    EXPECT_EQ(s.currentPos(), 0);
    EXPECT_EQ(s.streamLen(), 2);
    s.clear();
    EXPECT_TRUE(s.isEmpty());
}

TEST(StringStreamIn, SeeksWithinZeroToLengthOnly)
{
    StringStreamIn s;
    s.setFromString("abcd");
    s.seekTo(4);
    EXPECT_TRUE(s.EOS());
    s.seekTo(1);
    for (const int32_t bad : {-1, 5}) {
        SCOPED_TRACE(bad);
        expectStreamError([&] { s.seekTo(bad); }, -2147220478, "Attempt to seek out of range");
        EXPECT_EQ(s.currentPos(), 1);
    }
}

TEST(StringStreamIn, FromFileReadsBytesAndCreatesAMissingFileEmpty)
{
    const auto dir = std::filesystem::temp_directory_path() / "tarabix_stream_test";
    std::filesystem::remove_all(dir);
    std::filesystem::create_directories(dir);
    const std::string content("MThd\0\r\n\xFF\x1A", 9);
    std::ofstream(dir / "piece.mid", std::ios::binary) << content;

    StringStreamIn s;
    s.setFromFile((dir / "piece.mid").string());
    EXPECT_EQ(s.wholeString(), content);
    EXPECT_EQ(s.streamLen(), 9);

    s.read(3);
    s.setFromFile((dir / "absent.mid").string());
    EXPECT_TRUE(s.isEmpty());
    EXPECT_TRUE(std::filesystem::is_regular_file(dir / "absent.mid"));
    EXPECT_EQ(std::filesystem::file_size(dir / "absent.mid"), 0u);

    try {
        s.setFromFile((dir / "no-such-folder" / "x.mid").string());
        ADD_FAILURE() << "opened a file in a missing folder";
    } catch (const MidiError& e) {
        EXPECT_EQ(e.number(), midierr::kPathNotFound);
    }
    EXPECT_FALSE(std::filesystem::exists(dir / "no-such-folder"));
    std::filesystem::remove_all(dir);
}

}  // namespace
}  // namespace tarabix
