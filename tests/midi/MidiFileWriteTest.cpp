#include "MidiBytes.h"

#include <vector>

namespace tarabix {
namespace {

using namespace test;

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
    // The built end keeps its data byte.
    EXPECT_EQ(smallPiece().makeMidiStr(),
              header(0, 1, 96) + trackChunk(bytes({0x00, 0xFF, 0x03, 0x03, 'O', 'u', 'd', 0x00, 0xC0, 24, 0x00, 0x90,
                                                   60, 100, 0x56, 0x90, 62, 100, 0x81, 0x48, 0x80, 60, 0, 0x00, 0xFF,
                                                   0x2F, 0x01, 0x00})));
}

TEST(MidiFileWrite, TrackWithoutCompleteEndGetsOne)
{
    MidiFile file;
    file.setMidiHdrDivision(96);
    file.tracks(0)->c_addNoteOnE(5, 1, 60, 1);
    EXPECT_EQ(file.makeMidiStr(), header(1, 1, 96) + trackChunk(bytes({0x05, 0x91, 60, 1}) + kEndOfTrack));

    // A track read from a file keeps its end as the single byte 2F, so it is closed a second time.
    ASSERT_EQ(readBytes(file, header(1, 1, 96) + trackChunk(kEndOfTrack)), 0);
    EXPECT_EQ(file.makeMidiStr(), header(1, 1, 96) + trackChunk(kEndOfTrack + kEndOfTrack));
}

TEST(MidiFileWrite, ToFileReplacesAnExistingFileAndReportsFailure)
{
    const TempDir dir;
    const std::string path = dir.write("piece.mid", std::string(5000, 'x'));
    const MidiFile file = smallPiece();
    ASSERT_EQ(file.toFile(path), 0);
    EXPECT_EQ(readAll(path), file.makeMidiStr());
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
    EXPECT_EQ(eDataOf(t1), (std::vector<std::string>{list[1].event.eData, list[3].event.eData,
                                                            list[0].event.eData, bytes({0x2F, 0x00})}));
    EXPECT_EQ(deltasOf(t1), (std::vector<int32_t>{96, 0, 96, 0}));
    EXPECT_EQ(file.allLastAbsMSec(), 1000);
    EXPECT_TRUE(t1.trkChannels(0));

    EXPECT_EQ(file.setFromList(std::vector<ListedEvent>{note(-1, 0, 1)}), 9);
    EXPECT_EQ(file.setFromList(std::vector<ListedEvent>{note(0, -5, 1)}), 5);
}

}  // namespace
}  // namespace tarabix
