#include "MidiBytes.h"

#include <vector>

namespace tarabix {
namespace {

using test::bytes;
using test::header;
using test::trackChunk;

MidiFile smallPiece()
{
    MidiFile file;
    file.setMidiFileFormat(0);
    file.setMidiHdrDivision(96);
    MidiTrack& t = *file.tracks(0);
    t.c_addTracknameE(0, "Oud");
    t.c_addProgChangeE(0, 0, 24);
    t.c_addNoteOnE(0, 0, 60, 100);
    t.addSysExEvt(10, bytes({0xF0, 0x7E, 0xF7}));
    t.c_addNoteOnE(86, 0, 62, 100);
    t.c_addNoteOffE(200, 0, 60);
    t.c_addEndOfTrack(0);
    return file;
}

TEST(MidiFileWrite, WritesExactBytesWithoutRunningStatusOrSysEx)
{
    EXPECT_EQ(smallPiece().makeMidiStr(),
              header(0, 1, 96) + trackChunk(bytes({0x00, 0xFF, 0x03, 0x03, 'O', 'u', 'd', 0x00, 0xC0, 24,  //
                                                   0x00, 0x90, 60, 100, 0x56, 0x90, 62, 100, 0x81, 0x48, 0x80, 60, 0,
                                                   0x00, 0xFF, 0x2F, 0x01, 0x00})));  // the built end keeps its data byte
}

TEST(MidiFileWrite, TrackWithoutCompleteEndGetsOne)
{
    MidiFile file;
    file.setMidiHdrDivision(96);
    file.tracks(0)->c_addNoteOnE(5, 1, 60, 1);
    EXPECT_EQ(file.makeMidiStr(), header(1, 1, 96) + trackChunk(bytes({0x05, 0x91, 60, 1}) + test::kEndOfTrack));

    // A track read from a file keeps its end as the single byte 2F, so it is closed a second time.
    ASSERT_EQ(test::readBytes(file, header(1, 1, 96) + trackChunk(test::kEndOfTrack)), 0);
    EXPECT_EQ(file.makeMidiStr(), header(1, 1, 96) + trackChunk(test::kEndOfTrack + test::kEndOfTrack));
}

TEST(MidiFileWrite, WriteThenReadBack)
{
    const MidiFile written = smallPiece();
    MidiFile read;
    ASSERT_EQ(test::readBytes(read, written.makeMidiStr()), 0);
    EXPECT_EQ(read.midiFileFormat(), 0);
    EXPECT_EQ(read.midiHdrDivision(), 96);
    const MidiTrack& a = *written.tracks(0);
    const MidiTrack& b = *read.tracks(0);
    ASSERT_EQ(b.trkNEvents(), a.trkNEvents() - 1);  // without the system exclusive message
    EXPECT_EQ(b.trkName, "Oud");
    EXPECT_TRUE(b.trkActInstrs(24));
    const int32_t expectedMs[] = {0, 0, 0, 448, 1490, 1490};
    for (int32_t i = 0; i < b.trkNEvents(); ++i) {
        SCOPED_TRACE(i);
        const MidiEvent& w = a.trkEvents(i < 3 ? i : i + 1);
        EXPECT_EQ(b.trkEvents(i).eType, w.eType);
        EXPECT_EQ(b.trkEvents(i).absMS, expectedMs[i]);
        if (i < 5) {
            EXPECT_EQ(b.trkEvents(i).eData, w.eData);
        }
    }
    EXPECT_EQ(b.trkEvents(3).deltaTick, 86);  // the dropped message's 10 ticks are gone with it
}

TEST(MidiFileWrite, ToFileReplacesAnExistingFileAndReportsFailure)
{
    const test::TempDir dir;
    const std::string path = dir.write("piece.mid", std::string(5000, 'x'));
    const MidiFile file = smallPiece();
    ASSERT_EQ(file.toFile(path), 0);
    EXPECT_EQ(test::readAll(path), file.makeMidiStr());
    EXPECT_EQ(file.toFile(dir / "no-folder/x.mid"), 75);
    EXPECT_EQ(file.toFile(dir.path.string()), 75);
    EXPECT_TRUE(std::filesystem::is_directory(dir.path));
}

TEST(MidiFileWrite, SetFromListOrdersEachTrackAndClosesIt)
{
    MidiFile file;
    file.setMidiHdrDivision(96);
    auto note = [](int32_t track, int32_t tick, int key) {
        return ListedEvent{track, tick, MidiEvent{MidiEvent::kChannelMessage, 0, 0, 0, bytes({0x90, key, 64})}};
    };
    const std::vector<ListedEvent> list = {note(1, 192, 1), note(1, 96, 2), note(0, 0, 3), note(1, 96, 4)};
    ASSERT_EQ(file.setFromList(list), 0);
    ASSERT_EQ(file.numOfTracks(), 2);
    const MidiTrack& t1 = *file.tracks(1);
    ASSERT_EQ(t1.trkNEvents(), 4);
    const std::pair<int, int> keysAndDeltas[] = {{2, 96}, {4, 0}, {1, 96}};
    for (int32_t i = 0; i < 3; ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(static_cast<uint8_t>(t1.trkEvents(i).eData[1]), keysAndDeltas[i].first);
        EXPECT_EQ(t1.trkEvents(i).deltaTick, keysAndDeltas[i].second);
    }
    EXPECT_EQ(t1.trkEvents(3).eData, bytes({0x2F, 0x00}));
    EXPECT_EQ(file.allLastAbsMSec(), 1000);
    EXPECT_TRUE(t1.trkChannels(0));

    EXPECT_EQ(file.setFromList(std::vector<ListedEvent>{note(-1, 0, 1)}), 9);
    EXPECT_EQ(file.setFromList(std::vector<ListedEvent>{note(0, -5, 1)}), 5);
}

TEST(MidiFileWrite, Track2ExtrObjCarriesSkippedDeltas)
{
    struct Sink {
        std::vector<std::pair<int32_t, int32_t>> got;
        void addGenShortMsg(int32_t delta, int32_t msg) { got.emplace_back(delta, msg); }
    } sink;
    MidiTrack dest;
    const MidiFile file = smallPiece();
    MidiFile::track2extrObj(*file.tracks(0), sink);
    MidiFile::track2extrObj(*file.tracks(0), dest);
    const std::vector<std::pair<int32_t, int32_t>> expected = {{0, 0x18C0}, {0, 0x643C90}, {96, 0x643E90}, {200, 0x3C80}};
    EXPECT_EQ(sink.got, expected);
    ASSERT_EQ(dest.trkNEvents(), 4);
    EXPECT_EQ(dest.events()[2].eData, bytes({0x90, 62, 100}));
    EXPECT_TRUE(dest.trkActInstrs(24));
}

}  // namespace
}  // namespace tarabix
