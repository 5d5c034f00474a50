#include "MidiFixtures.h"

namespace tarabix {
namespace {

using namespace test;

template <class F>
void expectStreamError(F f, int32_t number, const std::string& description)
{
    const MidiError e = expectMidiError(f, number);
    EXPECT_EQ(e.description(), description);
    EXPECT_EQ(e.source(), "StringStreamIn");
}

TEST(StringStreamIn, ReadsAndSeeksWithinTheBytesAndAFailedOneMovesNothing)
{
    StringStreamIn s;
    EXPECT_TRUE(s.isEmpty() && s.BOS() && s.EOS());
    EXPECT_EQ(s.read(0) + s.readToEnd(), "");

    const std::string all("\x00\x80\xFF\x7F" "abc", 7);
    s.setFromString(all);
    EXPECT_EQ(s.read(2), all.substr(0, 2));
    EXPECT_EQ(s.remainingLen(), 5);
    for (const int32_t n : {6, -1}) {
        SCOPED_TRACE(n);
        expectStreamError([&] { s.read(n); }, -2147220479, "Attempt to read beyond end of stream");
        EXPECT_EQ(s.currentPos(), 2);
    }
    EXPECT_EQ(s.read(5), all.substr(2));
    EXPECT_TRUE(s.EOS());
    EXPECT_EQ(s.read(0) + s.readToEnd(), "");
    s.seekTo(3);
    EXPECT_EQ(s.readToEnd(), all.substr(3));
    EXPECT_EQ(s.currentPos(), 7);
    s.seekTo(1);
    for (const int32_t bad : {-1, 8}) {
        SCOPED_TRACE(bad);
        expectStreamError([&] { s.seekTo(bad); }, -2147220478, "Attempt to seek out of range");
        EXPECT_EQ(s.currentPos(), 1);
    }
    s.seekTo(7);
    EXPECT_TRUE(s.EOS());
    s.setFromString("xy");
    EXPECT_EQ(s.read(2), "xy");
    s.clear();
    EXPECT_TRUE(s.isEmpty() && s.BOS());
}

TEST(StringStreamIn, FromFileReadsBytesAndCreatesAMissingFileEmpty)
{
    const TempDir dir;
    const std::string content("MThd\0\r\n\xFF\x1A", 9);
    StringStreamIn s;
    s.setFromFile(dir.write("piece.mid", content));
    EXPECT_EQ(s.wholeString(), content);
    EXPECT_EQ(s.streamLen(), 9);

    s.read(3);
    s.setFromFile(dir / "absent.mid");
    EXPECT_TRUE(s.isEmpty());
    EXPECT_TRUE(std::filesystem::is_regular_file(dir / "absent.mid"));
    EXPECT_EQ(std::filesystem::file_size(dir / "absent.mid"), 0u);

    expectMidiError([&] { s.setFromFile(dir / "no-such-folder/x.mid"); }, midierr::kPathNotFound);
    EXPECT_FALSE(std::filesystem::exists(dir / "no-such-folder"));
}

}  // namespace
}  // namespace tarabix
