#include "MidiBytes.h"

#include "midi/MidiError.h"
#include "midi/MidiFile.h"
#include "midi/StringStreamIn.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <ostream>

namespace tarabix {
namespace {

using test::bytes;
using test::header;
using test::kEndOfTrack;
using test::trackChunk;

int32_t readBytes(MidiFile& file, const std::string& content)
{
    StringStreamIn stream;
    stream.setFromString(content);
    return file.readMidi(stream);
}

// A tempo meta event (delta 0) with the given data bytes.
std::string tempoEvent(int delta, const std::string& data)
{
    return bytes({delta, 0xFF, 0x51, static_cast<int>(data.size())}) + data;
}

TEST(MidiFileRead, HeaderFaultsGiveTheirStatuses)
{
    const std::string track = trackChunk(kEndOfTrack);
    struct Case {
        const char* name;
        std::string content;
        int32_t status;
    };
    const Case cases[] = {
        {"wrong id", "MTHD" + header(1, 1, 96).substr(4) + track, -1},
        {"length 5", "MThd" + test::bigEndian32(5) + bytes({0, 1, 0, 1, 0, 96}) + track, -2},
        {"track count 0", header(1, 0, 96) + track, 9},
        {"track count negative", header(1, 0x8000, 96) + track, 9},
        {"cut inside the header", header(1, 1, 96).substr(0, 11), -2147220479},
        {"fewer tracks than stated", header(1, 2, 96) + track, -2147220479},
        {"other chunk where a track is expected", header(1, 1, 96) + "XFIH" + test::bigEndian32(0), -1},
        {"chunk claiming 2 GB", header(1, 1, 96) + "MTrk" + test::bigEndian32(0x7FFFFFFFu) + std::string(1000, '\0'),
         -2147220479},
        {"header claiming 2 GB", "MThd" + test::bigEndian32(0x7FFFFFFFu) + bytes({0, 1, 0, 1, 0, 96}), -2147220479},
        {"division 0", header(1, 1, 0) + track, 11},
        {"SMPTE ticks beyond 32 bits",
         header(0, 1, 0xE728) + trackChunk(bytes({0x81, 0x83, 0x89, 0x1C, 0xFF, 0x2F, 0x00})), 6},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        MidiFile file;
        EXPECT_EQ(readBytes(file, c.content), c.status);
    }
}

TEST(MidiFileRead, HeaderLengthTenSkipsFourBytes)
{
    MidiFile file;
    const std::string content = "MThd" + test::bigEndian32(10) + bytes({0, 0, 0, 1, 0, 96, 'M', 'T', 'r', 'k'}) +
                                trackChunk(bytes({0x00, 0x90, 0x3C, 0x40}) + kEndOfTrack);
    ASSERT_EQ(readBytes(file, content), 0);
    EXPECT_EQ(file.midiFileFormat(), 0);
    EXPECT_EQ(file.numOfTracks(), 1);
    EXPECT_EQ(file.midiHdrDivision(), 96);
    EXPECT_EQ(file.tracks(0)->trkNEvents(), 2);
}

struct TimingCase {
    const char* name;
    int division;
    std::vector<std::string> trackBodies;
    int32_t track;  // the event looked at
    int32_t index;
    int32_t absTick;
    int32_t absMS;
};

void PrintTo(const TimingCase& c, std::ostream* os)
{
    *os << c.name;
}

class MidiFileTiming : public ::testing::TestWithParam<TimingCase> {};

TEST_P(MidiFileTiming, StampsMilliseconds)
{
    const TimingCase& c = GetParam();
    std::string content = header(1, static_cast<int>(c.trackBodies.size()), c.division);
    for (const std::string& body : c.trackBodies)
        content += trackChunk(body + kEndOfTrack);
    MidiFile file;
    ASSERT_EQ(readBytes(file, content), 0);
    const MidiEvent& e = file.tracks(c.track)->trkEvents(c.index);
    EXPECT_EQ(e.absTick, c.absTick);
    EXPECT_EQ(e.absMS, c.absMS);
}

const std::string kNoteAt96 = bytes({0x60, 0x90, 0x3C, 0x40});

INSTANTIATE_TEST_SUITE_P(
    Pieces, MidiFileTiming,
    ::testing::Values(
        TimingCase{"DefaultTempo", 96, {kNoteAt96}, 0, 0, 96, 500},
        TimingCase{"TempoChangeAt96", 96, {tempoEvent(0x60, bytes({0x03, 0xD0, 0x90})) + kNoteAt96}, 0, 1, 192, 750},
        TimingCase{"TempoInAnotherTrack", 96,
                   {tempoEvent(0x60, bytes({0x03, 0xD0, 0x90})), kNoteAt96 + kNoteAt96}, 1, 1, 192, 750},
        // Both change the tempo at tick 96: track 0 is stamped first, so track 2's tempo is the one
        // that holds afterwards.
        TimingCase{"EqualTicksLowestTrackFirst", 96,
                   {tempoEvent(0x60, bytes({0x03, 0xD0, 0x90})), kNoteAt96 + kNoteAt96,
                    tempoEvent(0x60, bytes({0x0F, 0x42, 0x40}))},
                   1, 1, 192, 1500},
        TimingCase{"TwoByteTempo", 1, {tempoEvent(0, bytes({0x01, 0x00})) + bytes({0x87, 0x68, 0x90, 0x3C, 0x40})},
                   0, 1, 1000, 256},
        TimingCase{"FourByteTempo", 96, {tempoEvent(0, bytes({0x00, 0x07, 0xA1, 0x20})) + kNoteAt96}, 0, 1, 96, 500},
        TimingCase{"FiveByteTempoTakesFirstFour", 96,
                   {tempoEvent(0, bytes({0x00, 0x03, 0xD0, 0x90, 0x77})) + kNoteAt96}, 0, 1, 96, 250},
        // A tempo of 1000 us: 48 ticks are 0.5 ms, 144 ticks 1.5 ms.
        TimingCase{"HalfRoundsDownToEven", 96, {tempoEvent(0, bytes({0x00, 0x03, 0xE8})) + bytes({0x30, 0x90, 0x3C, 0x40})},
                   0, 1, 48, 0},
        TimingCase{"HalfRoundsUpToEven", 96,
                   {tempoEvent(0, bytes({0x00, 0x03, 0xE8})) + bytes({0x81, 0x10, 0x90, 0x3C, 0x40})}, 0, 1, 144, 2},
        TimingCase{"SmpteOneTickPerMs", 0xE728, {bytes({0x87, 0x68, 0x90, 0x3C, 0x40})}, 0, 0, 1000, 1000},
        TimingCase{"SmpteHalfDown", 0xE710, {bytes({0x01, 0x90, 0x3C, 0x40})}, 0, 0, 1, 2},  // 2.5 -> 2
        TimingCase{"SmpteHalfUp", 0xE710, {bytes({0x03, 0x90, 0x3C, 0x40})}, 0, 0, 3, 8},   // 7.5 -> 8
        TimingCase{"SmpteLastTickBeforeOverflow", 0xE728, {bytes({0x81, 0x83, 0x89, 0x1B, 0x90, 0x3C, 0x40})}, 0, 0,
                   2147483, 2147483}),
    [](const ::testing::TestParamInfo<TimingCase>& info) { return info.param.name; });

TEST(MidiFileRead, FailureKeepsTracksReadSoFarWithoutTimes)
{
    const std::string content =
        header(1, 2, 96) + trackChunk(kNoteAt96 + kEndOfTrack) + trackChunk(bytes({0x00, 0x3C, 0x40}));
    MidiFile file;
    EXPECT_EQ(readBytes(file, content), -4);
    ASSERT_EQ(file.numOfTracks(), 2);
    EXPECT_EQ(file.tracks(0)->trkNEvents(), 2);
    EXPECT_EQ(file.tracks(0)->trkEvents(0).absMS, 0);
    EXPECT_EQ(file.tracks(2), nullptr);
    EXPECT_EQ(file.tracks(-1), nullptr);
}

TEST(MidiFile, ClearSetNTracksCopyAndLength)
{
    MidiFile file;
    EXPECT_EQ(file.numOfTracks(), 1);
    EXPECT_EQ(file.midiFileFormat(), 1);
    EXPECT_EQ(static_cast<uint16_t>(file.midiHdrDivision()), 59176);

    file.tracks(0)->c_addTextE(0, "kept");
    file.setNTracks(3);
    EXPECT_EQ(file.numOfTracks(), 3);
    EXPECT_EQ(file.tracks(0)->trkNEvents(), 1);
    file.tracks(2)->c_addNoteOnE(2500, 0, 60, 1);
    file.tracks(1)->c_addNoteOnE(1000, 0, 60, 1);
    ASSERT_EQ(file.setEvtsAbsMSecs(), 0);
    EXPECT_EQ(file.allLastAbsMSec(), 2500);

    MidiFile copy;
    copy.copyFrom(file);
    EXPECT_EQ(copy.numOfTracks(), 3);
    EXPECT_EQ(copy.allLastAbsMSec(), 2500);
    EXPECT_EQ(copy.tracks(0)->trkEvents(0).eData, bytes({0x01, 'k', 'e', 'p', 't'}));

    EXPECT_THROW(file.setNTracks(0), MidiError);
    file.setNTracks(2);
    EXPECT_EQ(file.allLastAbsMSec(), 1000);

    file.setMidiFileFormat(0);
    file.clear();
    EXPECT_EQ(file.numOfTracks(), 1);
    EXPECT_EQ(file.midiFileFormat(), 1);
    EXPECT_EQ(file.tracks(0)->trkNEvents(), 0);
    EXPECT_EQ(file.allLastAbsMSec(), 0);
}

TEST(MidiFile, Make1TrackMidiMergesByTickThenTrack)
{
    MidiFile file;
    file.setMidiHdrDivision(96);
    file.setNTracks(3);
    file.tracks(0)->c_addNoteOnE(10, 0, 1, 1);
    file.tracks(0)->c_addNoteOnE(0, 0, 2, 1);
    file.tracks(2)->c_addNoteOnE(5, 2, 3, 1);
    file.tracks(2)->c_addNoteOnE(5, 2, 4, 1);
    file.tracks(1)->c_addNoteOnE(10, 1, 5, 1);
    ASSERT_EQ(file.setEvtsAbsMSecs(), 0);
    const MidiTrack merged = file.make1TrackMidi();
    ASSERT_EQ(merged.trkNEvents(), 5);
    const int keys[] = {3, 1, 2, 5, 4};
    const int deltas[] = {5, 10, 0, 10, 5};
    for (int i = 0; i < 5; ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(static_cast<uint8_t>(merged.events()[static_cast<size_t>(i)].eData[1]), keys[i]);
        EXPECT_EQ(merged.events()[static_cast<size_t>(i)].deltaTick, deltas[i]);
    }
}

TEST(MidiFile, YieldHookRunsEveryFewThousandEventsNotPerEvent)
{
    MidiFile file;
    file.setMidiHdrDivision(96);
    constexpr int kEvents = 100000;
    for (int i = 0; i < kEvents; ++i)
        file.tracks(0)->c_addNoteOnE(1, 0, 60, 1);
    int calls = 0;
    file.setYieldHook([&] { ++calls; }, 0);
    ASSERT_EQ(file.setEvtsAbsMSecs(), 0);
    EXPECT_GE(calls, 1);
    EXPECT_LE(calls, kEvents / 1000);

    calls = 0;
    file.setYieldHook([&] { ++calls; }, 60000);
    ASSERT_EQ(file.setEvtsAbsMSecs(), 0);
    EXPECT_EQ(calls, 0);
}

TEST(MidiFile, ReadMidiFileSwallowsAnOpenFailureOnly)
{
    const auto dir = std::filesystem::temp_directory_path() / "tarabix_midi_file_read";
    std::filesystem::remove_all(dir);
    std::filesystem::create_directories(dir);

    MidiFile file;
    file.setNTracks(3);
    EXPECT_EQ(file.readMidiFile((dir / "no-folder" / "x.mid").string()), 0);
    EXPECT_EQ(file.numOfTracks(), 3);  // left exactly as it was

    EXPECT_EQ(file.readMidiFile((dir / "missing.mid").string()), -2147220479);
    EXPECT_TRUE(std::filesystem::exists(dir / "missing.mid"));

    std::ofstream(dir / "piece.mid", std::ios::binary) << header(0, 1, 96) + trackChunk(kNoteAt96 + kEndOfTrack);
    EXPECT_EQ(file.readMidiFile((dir / "piece.mid").string()), 0);
    EXPECT_EQ(file.numOfTracks(), 1);
    EXPECT_EQ(file.allLastAbsMSec(), 500);
    std::filesystem::remove_all(dir);
}

}  // namespace
}  // namespace tarabix
