#include "MidiFixtures.h"

#include "midi/MidiFile.h"
#include "midi/MzfContainer.h"
#include "midi/PieceFile.h"

#include <filesystem>
#include <tuple>
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
        {"count zero", directory(0, {}) + "xxxx", mzf::kBadCount}, {"negative count", le32(-3) + std::string(40, 'x'), mzf::kBadCount},
        {"count cut short", le32(1).substr(0, 3), mzf::kMalformed},
        {"nothing after the directory", directory(1, {{1001, 0}}), mzf::kNoBytesAfterDir},
        {"one byte after an empty part", directory(1, {{1001, 0}}) + "z", 1},
        {"part longer than the content", directory(1, {{1001, 5}}) + "abcd", mzf::kTooShort},
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
        EXPECT_EQ(std::make_pair(ids.size(), parts.size()), std::make_pair(size_t(std::max(result, 0)), size_t(std::max(result, 0))));
    }
}

// The writer lays the parts out in order without gaps (a lone padding byte when all are empty),
// and the parser cuts them back, whatever the ids.
TEST(MzfWrite, LaysOutPartsInOrderAndRoundTripsThroughTheParser)
{
    EXPECT_EQ(makeMultiPart(std::vector<MzfPart>{{1001, "MID"}, {5, ""}, {2001, "PN"}}),
              directory(3, {{1001, 3}, {5, 0}, {2001, 2}}) + "MIDPN");
    for (const auto& set : {std::vector<MzfPart>{{1001, ""}, {2001, ""}}, std::vector<MzfPart>{{-5, std::string("\0\xFF\x80z", 4)}}}) {
        std::vector<int32_t> ids;
        std::vector<std::string> parts;
        ASSERT_EQ(parseMultiPart(makeMultiPart(set) + "!!", ids, parts), static_cast<int32_t>(set.size()));
        for (size_t i = 0; i < set.size(); ++i)
            EXPECT_EQ(std::make_pair(ids[i], parts[i]), std::make_pair(set[i].id, set[i].bytes));
    }
}

TEST(MzfFile, Extractors)
{
    const TempFolder dir("mzf_extractors");
    const int32_t bad = mzf::kNotUsable;
    struct Case { const char* what; std::string content; int32_t midiStatus; std::string midi; bool hasSheet;
                  int32_t sheetStatus; std::string sheet; };
    const Case cases[] = {
        {"MIDI and sheet", directory(2, {{1001, 2}, {2001, 3}}) + "MMSSS", 0, "MM", true, 0, "SSS"},
        {"second part not a sheet", directory(2, {{1001, 2}, {3000, 3}}) + "MMxxx", 0, "MM", false, bad, ""},
        {"first part not MIDI, sheet still found", directory(2, {{7, 1}, {2001, 1}}) + "xS", bad, "", false, 0, "S"},
        {"parts beyond the file", directory(2, {{1001, 9}, {2001, 9}}) + "short", bad, "", false, bad, ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const std::string path = dir.write("piece.mzf", c.content);
        std::string midi = "old", sheet;
        bool hasSheet = false;
        const int32_t midiStatus = getMzfMidi(path, midi, hasSheet), sheetStatus = getMzfSheet(path, sheet);
        EXPECT_EQ(std::make_tuple(midiStatus, midi, hasSheet, sheetStatus, sheet),
                  std::make_tuple(c.midiStatus, c.midiStatus == 0 ? c.midi : std::string("old"), c.hasSheet, c.sheetStatus, c.sheet));
    }
}

// Every opener of a piece (the window, the command line) reads through readPieceFile; the window
// meets plain and broken files of either kind. MZF files are told by the last three letters of
// the name, in any case.
TEST(PieceFile, ReadsTheMidiOfEitherKindAndNeverCreatesAMissingFile)
{
    const TempFolder dir("piece_file");
    const std::string midi = header(0, 1, 96) + trackChunk(bytes({0x00, 0x90, 0x3C, 0x64}) + kEndOfTrack);
    MidiFile piece;
    const PieceReadResult read = readPieceFile(
        dir.write("piece.MZF", directory(2, {{1001, static_cast<int64_t>(midi.size())}, {2001, 1}}) + midi + "S"), piece);
    EXPECT_TRUE(read.ok() && read.hasSheet);
    EXPECT_EQ(piece.tracks(0)->trkNEvents(), 2);
    // A second read into the same piece starts afresh.
    for (int again = 0; again < 2; ++again) {
        ASSERT_TRUE(readPieceFile(dir.write("piece.mid", midi), piece).ok());
        EXPECT_EQ(piece.numOfTracks() + piece.tracks(0)->trkNEvents() + piece.allLastAbsMSec(), 3);
    }
    const PieceReadResult notMidi = readPieceFile(dir.write("notmidi.mzf", directory(1, {{1001, 4}}) + "RIFF"), piece);
    EXPECT_EQ(std::make_pair(notMidi.fault, notMidi.status), std::make_pair(PieceFault::BadMidi, MidiFile::kNotAHeaderChunk));
    EXPECT_TRUE(isMzfPath("C:\\music\\c.Mzf") && isMzfPath("mzf") && !isMzfPath("zf") && !isMzfPath("a.mzf.mid"));
    for (const std::string missing : {"missing.mid", "missing.mzf", ""}) {  // "": the folder itself
        EXPECT_EQ(readPieceFile(dir.path(missing), piece).fault, PieceFault::NoSuchFile) << missing;
        EXPECT_EQ(std::filesystem::exists(dir.path(missing)), missing.empty());
    }
}

}  // namespace
}  // namespace tarabix
