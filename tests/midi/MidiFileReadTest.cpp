#include "MidiFixtures.h"

#include "midi/MidiTrack.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

namespace tarabix {
namespace {

using namespace test;

// A tempo meta event with the given data bytes.
std::string tempoEvent(int delta, const std::string& data)
{
    return bytes({delta, 0xFF, 0x51, static_cast<int>(data.size())}) + data;
}

const std::string kNote = bytes({0x90, 0x3C, 0x40});
const std::string kNoteAt96 = bytes({0x60}) + kNote;

// Reads, times and dumps the input the way the fuzz target does: any bytes give a status.
void readTimeAndDump(const std::string& content)
{
    MidiFile file;
    (void)readBytes(file, content);
    (void)file.setEvtsAbsMSecs();
    try {
        (void)file.toText();
    } catch (const MidiError&) {
    }
}

TEST(MidiFileRead, BrokenAndHostileFilesGiveTheirStatusesAndTheFuzzCorpusReplays)
{
    const std::string track = trackChunk(kEndOfTrack);
    const std::string maxTempo = bytes({0x7F, 0xFF, 0xFF, 0xFF}), maxDelta = bytes({0x87, 0xFF, 0xFF, 0xFF, 0x7F});
    struct Case { const char* name; std::string content; int32_t status; };
    const Case cases[] = {
        {"wrong id", "MTHD" + header(1, 1, 96).substr(4) + track, -1},
        {"length 5", "MThd" + bigEndianBytes(5, 4) + bytes({0, 1, 0, 1, 0, 96}) + track, -2},
        // Were the four extra bytes not skipped, they would be read as a track id.
        {"length 10", "MThd" + bigEndianBytes(10, 4) + bytes({0, 0, 0, 1, 0, 96}) + "MTrk" + track, 0},
        {"track count negative", header(1, 0x8000, 96) + track, 9}, {"division 0", header(1, 1, 0) + track, 11},
        {"cut inside the header", header(1, 1, 96).substr(0, 11), -2147220479}, {"fewer tracks than stated", header(1, 2, 96) + track, -2147220479},
        {"other chunk where a track is expected", header(1, 1, 96) + "XFIH" + bigEndianBytes(0, 4), -1},
        {"2 GB chunk", header(1, 1, 96) + "MTrk" + bigEndianBytes(0x7FFFFFFF, 4) + std::string(1000, 0), -2147220479},
        {"header claiming 2 GB", "MThd" + bigEndianBytes(0x7FFFFFFFu, 4) + bytes({0, 1, 0, 1, 0, 96}), -2147220479},
        {"SMPTE overflow", header(0, 1, 0xE728) + trackChunk(bytes({0x81, 0x83, 0x89, 0x1C, 0xFF, 0x2F, 0})), 6},
        {"most tracks a header can state", header(1, 0x7FFF, 96), -2147220479},
        {"endless zero delta bytes", header(0, 1, 96) + trackChunk(std::string(100000, '\x80')), 5},
        {"ms past 32 bits", header(0, 1, 1) + trackChunk(tempoEvent(0, maxTempo) + bytes({0x87, 0x69}) + kNote), 6},
        {"ticks past 32 bits", header(0, 1, 96) + trackChunk(maxDelta + kNote + bytes({1, 60, 1})), 6},
        {"negative tempo", header(0, 1, 96) + trackChunk(tempoEvent(0, bytes({0x80, 0, 0, 0})) + kNoteAt96), 0},
        {"last possible tick is never reached", header(0, 2, 96) + trackChunk(maxDelta + kNote) + trackChunk(bytes({0}) + kNote), 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        MidiFile file;
        EXPECT_EQ(readBytes(file, c.content), c.status);
        readTimeAndDump(c.content);
    }
    // Every input that ever crashed the fuzz target is kept in its corpus and replayed here.
    for (const auto& entry : std::filesystem::directory_iterator(TARABIX_SOURCE_DIR "/tests/fuzz/corpus/midi_read_fuzz")) {
        SCOPED_TRACE(entry.path().filename().string());
        std::ifstream in(entry.path(), std::ios::binary);
        readTimeAndDump({std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()});
    }
}

TEST(MidiFileRead, StampsTicksAndMilliseconds)
{
    const std::string tempo250ms = tempoEvent(0x60, bytes({0x03, 0xD0, 0x90}));
    const std::string tempo1s = tempoEvent(0x60, bytes({0x0F, 0x42, 0x40}));
    const std::string tempo1ms = tempoEvent(0, bytes({0x00, 0x03, 0xE8}));  // 48 ticks 0.5 ms, 144 ticks 1.5 ms
    // The event looked at (track, index) and its times.
    struct Case { const char* name; int division; std::vector<std::string> bodies; int32_t track, index, tick, ms; };
    const Case cases[] = {
        {"default tempo", 96, {kNoteAt96}, 0, 0, 96, 500},
        {"tempo change at 96", 96, {tempo250ms + kNoteAt96}, 0, 1, 192, 750},
        // Both change the tempo at tick 96: track 0 is stamped first, so track 2's tempo holds afterwards.
        {"equal ticks lowest track first", 96, {tempo250ms, kNoteAt96 + kNoteAt96, tempo1s}, 1, 1, 192, 1500},
        {"two-byte tempo", 1, {tempoEvent(0, bytes({0x01, 0x00})) + bytes({0x87, 0x68}) + kNote}, 0, 1, 1000, 256},
        {"five-byte tempo", 96, {tempoEvent(0, bytes({0, 0x03, 0xD0, 0x90, 0x77})) + kNoteAt96}, 0, 1, 96, 250},
        {"half rounds down to even", 96, {tempo1ms + bytes({0x30}) + kNote}, 0, 1, 48, 0},
        {"half rounds up to even", 96, {tempo1ms + bytes({0x81, 0x10}) + kNote}, 0, 1, 144, 2},
        {"SMPTE one tick per ms", 0xE728, {bytes({0x87, 0x68}) + kNote}, 0, 0, 1000, 1000},
        {"SMPTE 2.5 ms down", 0xE710, {bytes({0x01}) + kNote}, 0, 0, 1, 2}, {"SMPTE 7.5 ms up", 0xE710, {bytes({0x03}) + kNote}, 0, 0, 3, 8},
        {"SMPTE last tick before overflow", 0xE728, {bytes({0x81, 0x83, 0x89, 0x1B}) + kNote}, 0, 0, 2147483, 2147483},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        std::string content = header(1, static_cast<int>(c.bodies.size()), c.division);
        for (const std::string& body : c.bodies)
            content += trackChunk(body + kEndOfTrack);
        MidiFile file;
        ASSERT_EQ(readBytes(file, content), 0);
        const MidiEvent& e = file.tracks(c.track)->trkEvents(c.index);
        EXPECT_EQ(std::make_pair(e.absTick, e.absMS), std::make_pair(c.tick, c.ms));
    }
}

TEST(ReadTrk, GivesStatusAndEvents)
{
    const std::string on = bytes({0x90, 0x3C, 0x40});
    const std::string end = bytes({0x2F});
    struct Case { const char* name; std::string chunk; int32_t status; std::vector<std::string> eData; };
    const Case cases[] = {
        {"running status", trackChunk(bytes({0}) + on + bytes({0, 0x3E, 0x40})), 0, {on, bytes({0x90, 0x3E, 0x40})}},
        {"nothing after end of track", trackChunk(kEndOfTrack + bytes({0x00, 0x90, 0x3C, 0x40, 0xF4})), 0, {end}},
        {"escape packet dropped", trackChunk(bytes({0x00, 0xF7, 0x02, 0x01, 0x02, 0x00, 0x90, 0x3C, 0x40})), 0, {on}},
        {"sysex kept", trackChunk(bytes({5, 0xF0, 3, 0x7E, 0x7F, 0xF7})), 0, {bytes({0xF0, 0x7E, 0x7F, 0xF7})}},
        {"program change and pressure take one byte", trackChunk(bytes({0, 0xC1, 0x05, 0, 0x07, 0, 0xD2, 0x33})), 0,
         {bytes({0xC1, 0x05, 0x00}), bytes({0xC1, 0x07, 0x00}), bytes({0xD2, 0x33, 0x00})}},
        {"longest delta", trackChunk(bytes({0x87, 0xFF, 0xFF, 0xFF, 0x7F, 0x90, 0x3C, 0x40})), 0, {on}},
        {"wrong chunk id", "MTRK" + bigEndianBytes(4, 4) + kEndOfTrack, -1, {}}, {"zero length", "MTrk" + bigEndianBytes(0, 4), -2, {}},
        {"negative length", "MTrk" + bigEndianBytes(0x80000000u, 4), -2, {}},
        {"chunk longer than the input", "MTrk" + bigEndianBytes(0x7FFFFFF0u, 4) + kEndOfTrack, -2147220479, {}},
        {"data without running status", trackChunk(bytes({0x00, 0x3C, 0x40})), -4, {}},
        {"data after meta event", trackChunk(bytes({0}) + on + bytes({0, 0xFF, 1, 1, 0x41, 0, 0x3E, 0x40})), -5,
         {on, bytes({0x01, 0x41})}},
        {"unknown status", trackChunk(bytes({0x00, 0xF4})), -5, {}}, {"event past chunk", trackChunk(bytes({0x00, 0x90, 0x3C})), 5, {}},
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
        EXPECT_TRUE(c.status != 0 || stream.currentPos() == static_cast<int32_t>(c.chunk.size())) << "the stream stops at the chunk's end";
        EXPECT_EQ(eDataOf(track), c.eData);
        EXPECT_TRUE(!c.eData.empty() || track.trkEventsArrSize() == 0) << "nothing allocated for a chunk without events";
    }
    // A program change flags its channel for the channel list.
    StringStreamIn stream;
    stream.setFromString(trackChunk(bytes({0x00, 0xC5, 0x10}) + kEndOfTrack));
    MidiTrack track;
    ASSERT_EQ(track.readTrk(stream), 0);
    EXPECT_TRUE(track.trkChannels(5) && track.trkNChannels() == 1 && track.trkActInstrs(0x10));
}

}  // namespace
}  // namespace tarabix
