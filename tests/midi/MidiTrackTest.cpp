#include "MidiBytes.h"

#include "midi/MidiError.h"
#include "midi/MidiTrack.h"
#include "midi/StringStreamIn.h"

#include <gtest/gtest.h>

#include <ostream>
#include <vector>

namespace tarabix {
namespace {

using test::bytes;
using test::trackChunk;

struct TrackCase {
    const char* name;
    std::string chunk;
    int32_t status;
    std::vector<std::string> eData;  // every event added, in order
};

void PrintTo(const TrackCase& c, std::ostream* os)
{
    *os << c.name;
}

class ReadTrk : public ::testing::TestWithParam<TrackCase> {};

TEST_P(ReadTrk, GivesStatusAndEvents)
{
    const TrackCase& c = GetParam();
    StringStreamIn stream;
    stream.setFromString(c.chunk + "tail");
    MidiTrack track;
    EXPECT_EQ(track.readTrk(stream), c.status);
    ASSERT_EQ(track.trkNEvents(), static_cast<int32_t>(c.eData.size()));
    for (size_t i = 0; i < c.eData.size(); ++i)
        EXPECT_EQ(track.events()[i].eData, c.eData[i]) << "event " << i;
}

const std::string kNoteOn = bytes({0x90, 0x3C, 0x40});
const std::string kEnd = bytes({0x2F});

INSTANTIATE_TEST_SUITE_P(
    Chunks, ReadTrk,
    ::testing::Values(
        TrackCase{"OnlyEndOfTrack", trackChunk(bytes({0x00, 0xFF, 0x2F, 0x00})), 0, {kEnd}},
        TrackCase{"RunningStatus", trackChunk(bytes({0x00, 0x90, 0x3C, 0x40, 0x00, 0x3E, 0x40})), 0,
                  {kNoteOn, bytes({0x90, 0x3E, 0x40})}},
        TrackCase{"NothingAfterEndOfTrack",
                  trackChunk(bytes({0x00, 0xFF, 0x2F, 0x00, 0x00, 0x90, 0x3C, 0x40, 0xF4})), 0, {kEnd}},
        TrackCase{"EscapePacketDropped",
                  trackChunk(bytes({0x00, 0xF7, 0x02, 0x01, 0x02, 0x00, 0x90, 0x3C, 0x40})), 0, {kNoteOn}},
        TrackCase{"SysExKeepsItsBytes", trackChunk(bytes({0x05, 0xF0, 0x03, 0x7E, 0x7F, 0xF7})), 0,
                  {bytes({0xF0, 0x7E, 0x7F, 0xF7})}},
        TrackCase{"ProgramChangeAndPressureTakeOneByte",
                  trackChunk(bytes({0x00, 0xC1, 0x05, 0x00, 0x07, 0x00, 0xD2, 0x33})), 0,
                  {bytes({0xC1, 0x05, 0x00}), bytes({0xC1, 0x07, 0x00}), bytes({0xD2, 0x33, 0x00})}},
        TrackCase{"LongestDelta", trackChunk(bytes({0x87, 0xFF, 0xFF, 0xFF, 0x7F, 0x90, 0x3C, 0x40})), 0,
                  {kNoteOn}},
        TrackCase{"WrongChunkId", "MTRK" + test::bigEndian32(4) + bytes({0x00, 0xFF, 0x2F, 0x00}), -1, {}},
        TrackCase{"ZeroLength", "MTrk" + test::bigEndian32(0), -2, {}},
        TrackCase{"NegativeLength", "MTrk" + test::bigEndian32(0x80000000u), -2, {}},
        TrackCase{"DataWithoutRunningStatus", trackChunk(bytes({0x00, 0x3C, 0x40})), -4, {}},
        TrackCase{"DataAfterMetaEvent",
                  trackChunk(bytes({0x00, 0x90, 0x3C, 0x40, 0x00, 0xFF, 0x01, 0x01, 0x41, 0x00, 0x3E, 0x40})),
                  -5, {kNoteOn, bytes({0x01, 0x41})}},
        TrackCase{"DataAfterSysEx", trackChunk(bytes({0x00, 0xF0, 0x01, 0xF7, 0x00, 0x3E, 0x40})), -5,
                  {bytes({0xF0, 0xF7})}},
        TrackCase{"UnknownStatus", trackChunk(bytes({0x00, 0xF4})), -5, {}},
        TrackCase{"EventPastChunk", trackChunk(bytes({0x00, 0x90, 0x3C})), 5, {}},
        TrackCase{"MetaLongerThanChunk", trackChunk(bytes({0x00, 0xFF, 0x01, 0x05, 0x41})), 5, {}},
        TrackCase{"DeltaCutOff", trackChunk(bytes({0x00, 0x90, 0x3C, 0x40, 0x81})), 5, {kNoteOn}},
        TrackCase{"DeltaBeyond32Bits", trackChunk(bytes({0x88, 0x80, 0x80, 0x80, 0x00, 0x90, 0x3C, 0x40})), 6,
                  {}},
        TrackCase{"ProgramAbove127", trackChunk(bytes({0x00, 0xC0, 0x90})), 9, {bytes({0xC0, 0x90, 0x00})}}),
    [](const ::testing::TestParamInfo<TrackCase>& info) { return info.param.name; });

TEST(ReadTrk, ChunkLongerThanTheInputIsTheStreamsError)
{
    StringStreamIn stream;
    stream.setFromString("MTrk" + test::bigEndian32(0x7FFFFFF0u) + bytes({0x00, 0xFF, 0x2F, 0x00}));
    MidiTrack track;
    EXPECT_EQ(track.readTrk(stream), -2147220479);
    EXPECT_EQ(track.trkNEvents(), 0);
    EXPECT_EQ(track.trkEventsArrSize(), 0);
}

TEST(ReadTrk, LeavesTheStreamAfterTheChunkAndKeepsDeltas)
{
    StringStreamIn stream;
    const std::string chunk = trackChunk(bytes({0x60, 0xC5, 0x10, 0x81, 0x00, 0xFF, 0x2F, 0x00, 0x99}));
    stream.setFromString(chunk + "next");
    MidiTrack track;
    ASSERT_EQ(track.readTrk(stream), 0);
    EXPECT_EQ(stream.currentPos(), static_cast<int32_t>(chunk.size()));
    ASSERT_EQ(track.trkNEvents(), 2);
    EXPECT_EQ(track.events()[0].deltaTick, 0x60);
    EXPECT_EQ(track.events()[0].eType, MidiEvent::kChannelMessage);
    EXPECT_EQ(track.events()[1].deltaTick, 128);
    EXPECT_EQ(track.events()[1].eType, MidiEvent::kMeta);
    EXPECT_TRUE(track.trkActInstrs(0x10));
    EXPECT_TRUE(track.trkChannels(5));
    EXPECT_EQ(track.trkNChannels(), 1);
    EXPECT_EQ(track.trkLastAbsMSec(), 0);
}

TEST(MidiTrack, BookkeepingFollowsWhatIsAddedAndClearResetsIt)
{
    MidiTrack track;
    track.c_addTracknameE(0, "Oud");
    track.c_addInstrNameE(0, "Nylon");
    track.c_addProgChangeE(0, 3, 24);
    track.c_addNoteOnE(10, 9, 60, 100);
    track.addGenShortMsg(5, 0x643C91);
    EXPECT_EQ(track.trkName, "Oud");
    EXPECT_EQ(track.trkInstrument, "Nylon");
    EXPECT_EQ(track.events()[2].eData, bytes({0xC3, 24, 0}));
    EXPECT_EQ(track.events()[4].eData, bytes({0x91, 0x3C, 0x64}));
    EXPECT_TRUE(track.trkActInstrs(24));
    EXPECT_FALSE(track.trkActInstrs(23));
    EXPECT_EQ(track.trkNChannels(), 3);
    EXPECT_TRUE(track.trkChannels(9));
    EXPECT_THROW(track.trkChannels(16), MidiError);

    MidiTrack copy;
    copy.copyFrom(track);
    EXPECT_EQ(copy.trkNEvents(), 5);
    EXPECT_TRUE(copy.trkActInstrs(24));
    EXPECT_EQ(copy.trkName, "Oud");

    track.clear();
    EXPECT_EQ(track.trkNEvents(), 0);
    EXPECT_EQ(track.trkEventsArrSize(), 0);
    EXPECT_EQ(track.trkNChannels(), 0);
    EXPECT_FALSE(track.trkActInstrs(24));
    EXPECT_EQ(track.trkName, "");
    EXPECT_EQ(track.trkInstrument, "");
}

TEST(MidiTrack, ArrayGrowsInStepsOfAHundredAndAddingOwnEventIsSafe)
{
    MidiTrack track;
    track.c_addNoteOnE(0, 0, 60, 1);
    EXPECT_EQ(track.trkEventsArrSize(), 100);
    for (int i = 1; i < 100; ++i)
        track.addEvent(track.trkEvents(0));
    EXPECT_EQ(track.trkEventsArrSize(), 100);
    track.addEvent(track.trkEvents(99));  // grows while evt is one of the track's own entries
    EXPECT_EQ(track.trkEventsArrSize(), 200);
    EXPECT_EQ(track.trkNEvents(), 101);
    EXPECT_EQ(track.events()[100].eData, bytes({0x90, 60, 1}));
    EXPECT_EQ(track.trkEvents(150).eType, 0);  // a fresh entry
    EXPECT_THROW(track.trkEvents(200), MidiError);
}

TEST(MidiTrack, BuildersLayOutTheirEvents)
{
    MidiTrack track;
    track.c_addTextE(1, "t");
    track.c_addCopyrightE(2, "c");
    track.c_addLyricE(3, "l");
    track.c_addNewTempo(4, 500000);
    track.c_addNoteOffE(5, 2, 64);
    track.c_addNoteOnE(6, 16, 60, 1);  // the channel is not masked
    track.c_addEndOfTrack(7);
    const std::vector<std::string> expected = {
        bytes({0x01, 't'}), bytes({0x02, 'c'}),       bytes({0x05, 'l'}),        bytes({0x51, 0x07, 0xA1, 0x20}),
        bytes({0x82, 64, 0}), bytes({0xA0, 60, 1}), bytes({0x2F, 0x00})};
    ASSERT_EQ(track.trkNEvents(), 7);
    for (size_t i = 0; i < expected.size(); ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(track.events()[i].eData, expected[i]);
        EXPECT_EQ(track.events()[i].deltaTick, static_cast<int32_t>(i + 1));
    }
    EXPECT_EQ(track.events()[3].eType, MidiEvent::kMeta);
    EXPECT_EQ(track.events()[4].eType, MidiEvent::kChannelMessage);
}

TEST(MidiTrack, PitchWheelFromCentsClampsAndRoundsHalvesToEven)
{
    struct Case {
        const char* cents;
        int bend;
    };
    const Case cases[] = {
        {"0", 8192},      {"100", 12288},       {"-50", 6144},        {"250", 16343},
        {"-199", 41},     {" 37.5 ", 9728},     {"0.01220703125", 8192},  // 8192.5 goes down to even
        {"0.03662109375", 8194},                                         // 8193.5 goes up to even
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.cents);
        MidiTrack track;
        track.c_addPitchWheelE(0, 3, c.cents);
        EXPECT_EQ(track.events()[0].eData, bytes({0xE3, c.bend & 127, c.bend / 128}));
    }
    MidiTrack track;
    for (const char* bad : {"", "abc", "12x", "nan", "inf"}) {
        SCOPED_TRACE(bad);
        try {
            track.c_addPitchWheelE(0, 0, bad);
            ADD_FAILURE();
        } catch (const MidiError& e) {
            EXPECT_EQ(e.number(), midierr::kTypeMismatch);
        }
    }
    EXPECT_EQ(track.trkNEvents(), 0);
}

TEST(MidiTrack, LastMaqamMetaTextFindsTheLatestValidMarker)
{
    struct Case {
        const char* name;
        std::vector<std::string> texts;  // in track order
        std::string expected;
    };
    const Case cases[] = {
        {"latest wins", {"Q:Rast/0", "Q:Bayati/2"}, "Q:Bayati/2"},
        {"lower case q", {"q:Hijaz/7"}, "q:Hijaz/7"},
        {"tonic 12 skipped", {"Q:Rast/5", "Q:Saba/12"}, "Q:Rast/5"},
        {"negative tonic skipped", {"Q:Rast/5", "Q:Saba/-1"}, "Q:Rast/5"},
        {"slash too early", {"Q:Rast/1", "Q:/3"}, "Q:Rast/1"},
        {"not a marker", {"Q:Rast/1", "Rast/3", "Q-Kurd/3"}, "Q:Rast/1"},
        {"tonic not a number ends the search", {"Q:Rast/1", "Q:Nahawand/x"}, ""},
        {"empty tonic ends the search", {"Q:Rast/1", "Q:Nahawand/"}, ""},
        {"no text", {}, ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        MidiTrack track;
        for (const std::string& t : c.texts) {
            track.c_addTextE(0, t);
            track.c_addLyricE(0, "Q:Lyric/4");  // only text events count
        }
        EXPECT_EQ(track.lastMaqamMetaText(), c.expected);
    }
}

}  // namespace
}  // namespace tarabix
