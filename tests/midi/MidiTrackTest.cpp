#include "MidiBytes.h"

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
        {"wrong chunk id", "MTRK" + bigEndian32(4) + kEndOfTrack, -1, {}},
        {"zero length", "MTrk" + bigEndian32(0), -2, {}},
        {"negative length", "MTrk" + bigEndian32(0x80000000u), -2, {}},
        {"chunk longer than the input", "MTrk" + bigEndian32(0x7FFFFFF0u) + kEndOfTrack, -2147220479, {}},
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

}  // namespace
}  // namespace tarabix
