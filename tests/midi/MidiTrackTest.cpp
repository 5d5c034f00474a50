#include "MidiFixtures.h"

#include "midi/MidiTrack.h"

#include <vector>

namespace tarabix {
namespace {

using namespace test;

TEST(ReadTrk, GivesStatusAndEvents)
{
    const std::string on = bytes({0x90, 0x3C, 0x40});
    const std::string end = bytes({0x2F});
    struct Case { const char* name; std::string chunk; int32_t status; std::vector<std::string> eData; };
    const Case cases[] = {
        {"only end of track", trackChunk(kEndOfTrack), 0, {end}},
        {"running status", trackChunk(bytes({0}) + on + bytes({0, 0x3E, 0x40})), 0, {on, bytes({0x90, 0x3E, 0x40})}},
        {"nothing after end of track", trackChunk(kEndOfTrack + bytes({0x00, 0x90, 0x3C, 0x40, 0xF4})), 0, {end}},
        {"escape packet dropped", trackChunk(bytes({0x00, 0xF7, 0x02, 0x01, 0x02, 0x00, 0x90, 0x3C, 0x40})), 0, {on}},
        {"sysex kept", trackChunk(bytes({5, 0xF0, 3, 0x7E, 0x7F, 0xF7})), 0, {bytes({0xF0, 0x7E, 0x7F, 0xF7})}},
        {"program change and pressure take one byte", trackChunk(bytes({0, 0xC1, 0x05, 0, 0x07, 0, 0xD2, 0x33})), 0,
         {bytes({0xC1, 0x05, 0x00}), bytes({0xC1, 0x07, 0x00}), bytes({0xD2, 0x33, 0x00})}},
        {"longest delta", trackChunk(bytes({0x87, 0xFF, 0xFF, 0xFF, 0x7F, 0x90, 0x3C, 0x40})), 0, {on}},
        {"wrong chunk id", "MTRK" + bigEndianBytes(4, 4) + kEndOfTrack, -1, {}},
        {"zero length", "MTrk" + bigEndianBytes(0, 4), -2, {}},
        {"negative length", "MTrk" + bigEndianBytes(0x80000000u, 4), -2, {}},
        {"chunk longer than the input", "MTrk" + bigEndianBytes(0x7FFFFFF0u, 4) + kEndOfTrack, -2147220479, {}},
        {"data without running status", trackChunk(bytes({0x00, 0x3C, 0x40})), -4, {}},
        {"data after meta event", trackChunk(bytes({0}) + on + bytes({0, 0xFF, 1, 1, 0x41, 0, 0x3E, 0x40})), -5,
         {on, bytes({0x01, 0x41})}},
        {"data after sysex", trackChunk(bytes({0x00, 0xF0, 0x01, 0xF7, 0x00, 0x3E, 0x40})), -5, {bytes({0xF0, 0xF7})}},
        {"unknown status", trackChunk(bytes({0x00, 0xF4})), -5, {}},
        {"event past chunk", trackChunk(bytes({0x00, 0x90, 0x3C})), 5, {}},
        {"meta longer than chunk", trackChunk(bytes({0x00, 0xFF, 0x01, 0x05, 0x41})), 5, {}},
        {"delta cut off", trackChunk(bytes({0}) + on + bytes({0x81})), 5, {on}},
        {"delta beyond 32 bits", trackChunk(bytes({0x88, 0x80, 0x80, 0x80, 0x00, 0x90, 0x3C, 0x40})), 6, {}},
        {"program above 127", trackChunk(bytes({0x00, 0xC0, 0x90})), 9, {bytes({0xC0, 0x90, 0x00})}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        StringStreamIn stream;
        stream.setFromString(c.chunk + "tail");
        MidiTrack track;
        EXPECT_EQ(track.readTrk(stream), c.status);
        if (c.status == 0) {
            EXPECT_EQ(stream.currentPos(), static_cast<int32_t>(c.chunk.size()));
        }
        EXPECT_EQ(eDataOf(track), c.eData);
        if (c.eData.empty()) {
            EXPECT_EQ(track.trkEventsArrSize(), 0) << "nothing allocated for a chunk without events";
        }
    }
}

TEST(ReadTrk, ProgramChangeFlagsItsProgramAndChannel)
{
    StringStreamIn stream;
    stream.setFromString(trackChunk(bytes({0x00, 0xC5, 0x10}) + kEndOfTrack));
    MidiTrack track;
    ASSERT_EQ(track.readTrk(stream), 0);
    EXPECT_TRUE(track.trkActInstrs(0x10) && track.trkChannels(5) && track.trkNChannels() == 1);
    EXPECT_EQ(track.events()[0].eType, MidiEvent::kChannelMessage);
    EXPECT_EQ(track.events()[1].eType, MidiEvent::kMeta);
}

TEST(MidiTrack, BuildersLayOutTheirEventsAndTheBookkeepingFollows)
{
    MidiTrack track;
    track.c_addTextE(1, "t");
    track.c_addCopyrightE(2, "c");
    track.c_addLyricE(3, "l");
    track.c_addNewTempo(4, 500000);
    track.c_addNoteOffE(5, 2, 64);
    track.c_addNoteOnE(6, 16, 60, 1);  // the channel is not masked: this is channel 0's key pressure
    track.c_addEndOfTrack(7);
    track.c_addTracknameE(8, "Oud");
    track.c_addInstrNameE(9, "Nylon");
    track.c_addProgChangeE(10, 3, 24);
    track.addGenShortMsg(11, 0x643C91);
    EXPECT_EQ(eDataOf(track),
              (std::vector<std::string>{bytes({0x01, 't'}), bytes({0x02, 'c'}), bytes({0x05, 'l'}),
                                        bytes({0x51, 0x07, 0xA1, 0x20}), bytes({0x82, 64, 0}), bytes({0xA0, 60, 1}),
                                        bytes({0x2F, 0x00}), bytes({0x03, 'O', 'u', 'd'}),
                                        bytes({0x04, 'N', 'y', 'l', 'o', 'n'}), bytes({0xC3, 24, 0}),
                                        bytes({0x91, 0x3C, 0x64})}));
    EXPECT_EQ(deltasOf(track), (std::vector<int32_t>{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11}));
    for (const MidiEvent& e : track.events())
        EXPECT_EQ(e.eType, e.eData[0] & 0x80 ? MidiEvent::kChannelMessage : MidiEvent::kMeta) << e.deltaTick;
    EXPECT_EQ(track.trkName, "Oud");
    EXPECT_EQ(track.trkInstrument, "Nylon");
    EXPECT_TRUE(track.trkActInstrs(24) && !track.trkActInstrs(23));
    EXPECT_EQ(track.trkNChannels(), 4);
    EXPECT_TRUE(track.trkChannels(3) && !track.trkChannels(9));
    expectMidiError([&] { track.trkChannels(16); }, midierr::kSubscriptOutOfRange);

    MidiTrack copy;
    copy.copyFrom(track);
    EXPECT_EQ(eDataOf(copy), eDataOf(track));
    EXPECT_TRUE(copy.trkActInstrs(24) && copy.trkName == "Oud");

    track.clear();
    EXPECT_EQ(track.trkNEvents() + track.trkEventsArrSize() + track.trkNChannels(), 0);
    EXPECT_FALSE(track.trkActInstrs(24));
    EXPECT_EQ(track.trkName + track.trkInstrument, "");
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
    expectMidiError([&] { track.trkEvents(200); }, midierr::kSubscriptOutOfRange);
}

TEST(MidiTrack, PitchWheelFromCentsClampsAndRoundsHalvesToEven)
{
    const std::pair<const char*, int> cases[] = {
        {"0", 8192}, {"100", 12288}, {"-50", 6144}, {"250", 16343}, {"-199", 41}, {" 37.5 ", 9728},
        {"0.01220703125", 8192},  // 8192.5 goes down to even
        {"0.03662109375", 8194},  // 8193.5 goes up to even
    };
    for (const auto& [cents, bend] : cases) {
        SCOPED_TRACE(cents);
        MidiTrack track;
        track.c_addPitchWheelE(0, 3, cents);
        EXPECT_EQ(track.events()[0].eData, bytes({0xE3, bend & 127, bend / 128}));
    }
    MidiTrack track;
    for (const char* bad : {"", "abc", "12x", "nan", "inf"}) {
        SCOPED_TRACE(bad);
        expectMidiError([&] { track.c_addPitchWheelE(0, 0, bad); }, midierr::kTypeMismatch);
    }
    EXPECT_EQ(track.trkNEvents(), 0);
}

TEST(MidiTrack, LastMaqamMetaTextFindsTheLatestValidMarker)
{
    struct Case { const char* name; std::vector<std::string> texts; std::string expected; };
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
