#include "MidiFixtures.h"

#include "midi/MidiFile.h"
#include "midi/MzfContainer.h"
#include "midi/PieceFile.h"

#include <vector>

namespace tarabix {
namespace {

using namespace test;

std::string le32(int64_t v)
{
    std::string out;
    for (int i = 0; i < 4; ++i)
        out.push_back(static_cast<char>(static_cast<uint64_t>(v) >> (8 * i) & 0xFF));
    return out;
}

// A directory of (id, length) pairs as the file stores it, without any part bytes.
std::string directory(int32_t count, std::initializer_list<std::pair<int32_t, int64_t>> entries)
{
    std::string out = le32(count);
    for (const auto& [id, length] : entries)
        out += le32(id) + le32(length);
    return out;
}

TEST(MzfParse, ResultCodes)
{
    struct Case { const char* what; std::string content; int32_t result; };
    const Case cases[] = {
        {"count zero", directory(0, {}) + "xxxx", mzf::kBadCount},
        {"negative count", le32(-3) + std::string(40, 'x'), mzf::kBadCount},
        {"empty content", "", mzf::kMalformed},
        {"count cut short", le32(1).substr(0, 3), mzf::kMalformed},
        {"nothing after the directory", directory(1, {{1001, 0}}), mzf::kNoBytesAfterDir},
        {"directory itself cut short", directory(2, {{1001, 0}}), mzf::kNoBytesAfterDir},
        {"one byte after an empty part", directory(1, {{1001, 0}}) + "z", 1},
        {"part longer than the content", directory(1, {{1001, 5}}) + "abcd", mzf::kTooShort},
        {"a part claiming 2 GB", directory(1, {{1001, 0x7FFFFFFF}}) + "abc", mzf::kTooShort},
        {"32-bit sum wraps", directory(2, {{1001, 0x7FFFFFFF}, {2001, 0x7FFFFFFF}}) + "ab", mzf::kTooShort},
        {"a negative length hidden by the sum", directory(2, {{1001, -2}, {2001, 4}}) + "abcd", mzf::kMalformed},
        {"a count of 2^31 - 1", le32(0x7FFFFFFF) + std::string(64, 'x'), mzf::kNoBytesAfterDir},
        {"trailing bytes", directory(2, {{1001, 2}, {2001, 1}}) + "abc" + "trailing", 2},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        std::vector<int32_t> ids{7};
        std::vector<std::string> parts{"stale"};
        const int32_t result = parseMultiPart(c.content, ids, parts);
        EXPECT_EQ(result, c.result);
        EXPECT_EQ(ids.size(), static_cast<size_t>(std::max(result, 0)));
        EXPECT_EQ(parts.size(), ids.size());
    }
}

// The writer lays the parts out in order without gaps (a lone padding byte when all are empty),
// and the parser cuts them back, whatever the ids.
TEST(MzfWrite, LaysOutPartsInOrderAndRoundTripsThroughTheParser)
{
    EXPECT_EQ(makeMultiPart(std::vector<MzfPart>{{1001, "MID"}, {5, ""}, {2001, "PN"}}),
              directory(3, {{1001, 3}, {5, 0}, {2001, 2}}) + "MIDPN");
    const std::vector<std::vector<MzfPart>> sets = {
        {{1001, "MThd..."}, {2001, std::string("\0\xFF\x80z", 4)}},
        {{1001, ""}, {2001, ""}},
        {{-5, "a"}, {0, ""}, {123456789, std::string(1000, 'q')}},
    };
    for (const auto& set : sets) {
        SCOPED_TRACE(set.size());
        std::vector<int32_t> ids;
        std::vector<std::string> parts;
        ASSERT_EQ(parseMultiPart(makeMultiPart(set) + "!!", ids, parts), static_cast<int32_t>(set.size()));
        for (size_t i = 0; i < set.size(); ++i) {
            EXPECT_EQ(ids[i], set[i].id);
            EXPECT_EQ(parts[i], set[i].bytes);
        }
    }
}

TEST(MzfFile, Extractors)
{
    const TempDir dir;
    const int32_t bad = mzf::kNotUsable;
    struct Case { const char* what; std::string content; int32_t midiStatus; std::string midi; bool hasSheet;
                  int32_t sheetStatus; std::string sheet; };
    const Case cases[] = {
        {"empty MIDI part and one trailing byte", directory(1, {{1001, 0}}) + "z", 0, "", false, bad, ""},
        {"nothing after the directory", directory(1, {{1001, 0}}), bad, "", false, bad, ""},
        {"MIDI and sheet", directory(2, {{1001, 2}, {2001, 3}}) + "MMSSS", 0, "MM", true, 0, "SSS"},
        {"second part not a sheet", directory(2, {{1001, 2}, {3000, 3}}) + "MMxxx", 0, "MM", false, bad, ""},
        {"first part not MIDI, sheet still found", directory(2, {{7, 1}, {2001, 1}}) + "xS", bad, "", false, 0, "S"},
        {"parts beyond the file", directory(2, {{1001, 9}, {2001, 9}}) + "short", bad, "", false, bad, ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const std::string path = dir.write("piece.mzf", c.content);
        std::string midi = "old";
        bool hasSheet = false;
        EXPECT_EQ(getMzfMidi(path, midi, hasSheet), c.midiStatus);
        EXPECT_EQ(midi, c.midiStatus == 0 ? c.midi : "old");
        EXPECT_EQ(hasSheet, c.hasSheet);
        std::string sheet;
        EXPECT_EQ(getMzfSheet(path, sheet), c.sheetStatus);
        EXPECT_EQ(sheet, c.sheet);
    }
    std::string midi;
    bool hasSheet = true;  // left as the caller set it when there is no sheet
    EXPECT_EQ(getMzfMidi(dir.write("a.mzf", directory(1, {{1001, 1}}) + "M"), midi, hasSheet), 0);
    EXPECT_TRUE(hasSheet);
}

// Every opener of a piece (the window, the command line) reads through readPieceFile; the window
// meets plain and broken files of either kind, here the MIDI inside an MZF.
TEST(PieceFile, ReadsTheMidiOfEitherKindAndNeverCreatesAMissingFile)
{
    const TempDir dir;
    const std::string midi = header(0, 1, 96) + trackChunk(bytes({0x00, 0x90, 0x3C, 0x64}) + kEndOfTrack);
    struct Case { const char* name; std::string content; PieceFault fault; int32_t status; bool hasSheet; };
    const Case cases[] = {
        {"piece.MZF", directory(2, {{1001, static_cast<int64_t>(midi.size())}, {2001, 1}}) + midi + "S",
         PieceFault::None, 0, true},
        {"notmidi.mzf", directory(1, {{1001, 4}}) + "RIFF", PieceFault::BadMidi, MidiFile::kNotAHeaderChunk, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        MidiFile piece;
        const PieceReadResult read = readPieceFile(dir.write(c.name, c.content), piece);
        EXPECT_EQ(read.fault, c.fault);
        EXPECT_EQ(read.status, c.status);
        EXPECT_EQ(read.hasSheet, c.hasSheet);
        if (read.ok()) {
            EXPECT_EQ(piece.tracks(0)->trkNEvents(), 2);
        }
    }
    for (const char* missing : {"missing.mid", "missing.mzf"}) {
        MidiFile piece;
        EXPECT_EQ(readPieceFile(dir / missing, piece).fault, PieceFault::NoSuchFile);
        EXPECT_FALSE(std::filesystem::exists(dir / missing)) << missing;
    }
    MidiFile piece;
    EXPECT_EQ(readPieceFile(dir.path.string(), piece).fault, PieceFault::NoSuchFile);  // a folder
}

TEST(MzfPath, LastThreeCharactersInAnyCase)
{
    for (const char* yes : {"a.mzf", "b.MZF", "C:\\music\\c.Mzf", "mzf", "/x/y.mZf"})
        EXPECT_TRUE(isMzfPath(yes)) << yes;
    for (const char* no : {"a.mid", "", "zf", "a.mzf.mid", "a.mz"})
        EXPECT_FALSE(isMzfPath(no)) << no;
}

}  // namespace
}  // namespace tarabix
