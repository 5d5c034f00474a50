#include "MidiFixtures.h"

#include "midi/MidiText.h"

#include <cmath>
#include <limits>
#include <vector>

namespace tarabix {
namespace {

using namespace test;

// Both ways to the nearest step, halves to even, held inside the 14 bits (+200 cents is one step
// past the top).
TEST(PitchWheel, CentsAndWheelRoundHalvesToEvenInside14Bits)
{
    const double inf = std::numeric_limits<double>::infinity();
    const std::pair<double, int32_t> toWheel[] = {
        {-200, 0}, {-50, 6144}, {0, 8192}, {150, 14336}, {199, 16343}, {200, 16383}, {250, 16383}, {-250, 0}, {inf, 16383},
        {-inf, 0}, {std::nan(""), 8192}, {0.01220703125, 8192}, {0.03662109375, 8194}, {-0.01220703125, 8192}};  // 8192.5, 8193.5, 8191.5
    for (const auto& [cents, wheel] : toWheel)
        EXPECT_EQ(centsToWheel(cents), wheel) << cents;
    const std::pair<int32_t, int32_t> toCents[] = {  // 8704, 9728, 7680: 12.5, 37.5, -12.5 cents
        {0, -200}, {6144, -50}, {16383, 200}, {8704, 12}, {9728, 38}, {7680, -12}, {8212, 0}, {8213, 1}, {8171, -1}};
    for (const auto& [wheel, cents] : toCents)
        EXPECT_EQ(wheelToCents(wheel), cents) << wheel;
    EXPECT_EQ(wheelLsb(9755) + 1000 * wheelMsb(9755), 76027);  // 76 * 128 + 27
    EXPECT_EQ(wheelOf(27, 76), 9755);
}

TEST(BigEndian, ReadAndWriteMostSignificantFirst)
{
    const std::pair<std::string, uint32_t> cases[] = {
        {std::string("\x00\x00\x00\x06", 4), 6}, {"\x07\xA1\x20", 500000}, {"\xFF\xFF\xFF\xFF", 0xFFFFFFFF}, {"\x80", 0x80}};
    for (const auto& [bytes, value] : cases) {
        EXPECT_EQ(readBigEndian(bytes), value);
        EXPECT_EQ(bigEndianBytes(value, static_cast<int>(bytes.size())), bytes);
    }
    EXPECT_EQ(readBigEndian("") + readBigEndian(bigEndianBytes(0x12345678, 3)), 0x345678u);  // the high byte left out
}

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

// No running status, no system exclusive; the built end keeps its data byte. A file replaced by
// toFile holds the same bytes.
TEST(MidiFileWrite, WritesExactBytesWithoutRunningStatusOrSysEx)
{
    const std::string expected = header(0, 1, 96) + trackChunk(bytes({0x00, 0xFF, 0x03, 0x03, 'O', 'u', 'd', 0x00, 0xC0, 24,
        0x00, 0x90, 60, 100, 0x56, 0x90, 62, 100, 0x81, 0x48, 0x80, 60, 0, 0x00, 0xFF, 0x2F, 0x01, 0x00}));
    EXPECT_EQ(smallPiece().makeMidiStr(), expected);

    const TempFolder dir("midi_to_file");
    ASSERT_EQ(smallPiece().toFile(dir.write("piece.mid", std::string(5000, 'x'))), 0);
    EXPECT_EQ(dir.read("piece.mid"), expected);
    EXPECT_EQ(smallPiece().toFile(dir.path("no-folder/x.mid")), 75);
    EXPECT_EQ(smallPiece().toFile(dir.path("")), 75);
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
    EXPECT_EQ(eDataOf(t1), (std::vector<std::string>{list[1].event.eData, list[3].event.eData, list[0].event.eData, bytes({0x2F, 0x00})}));
    EXPECT_TRUE(file.allLastAbsMSec() == 1000 && t1.trkChannels(0));

    EXPECT_EQ(file.setFromList(std::vector<ListedEvent>{note(-1, 0, 1)}), 9);
    EXPECT_EQ(file.setFromList(std::vector<ListedEvent>{note(0, -5, 1)}), 5);
}

TEST(MidiText, MetaEventDescriptions)
{
    // One row per way a meta event's data is shown: as text, as a decimal number, in hex, not at all.
    const std::pair<std::string, const char*> cases[] = {
        {bytes({0x06, 'm', 0xE9}), "Marker: m\xE9"}, {bytes({0x20, 0x0A, 0x01}), "Channel: 10"}, {bytes({0x21, 0xFF}), "Port: 255"},
        {bytes({0x51, 0x07, 0xA1, 0x20}), "Tempo Change: 07A120"}, {bytes({0x7F, 0x00, 0x01}), "??? (127): 0001"}, {bytes({0x00}), "??? (0): "}};
    for (const auto& [eData, text] : cases)
        EXPECT_EQ(metaEventText(eData), text);
    for (const std::string& bad : {bytes({0x20}), bytes({0x21}), std::string()})
        expectMidiError([&] { metaEventText(bad); }, midierr::kInvalidArgument);
}

TEST(MidiText, FileDumpHeaderTracksAndEventLines)
{
    MidiFile file;
    const std::string end = trackChunk(kEndOfTrack);
    const std::string noteAndSysEx = bytes({0x60, 0x90, 0x3C, 0x40, 0x00, 0xF0, 0x02, 0x7E, 0xF7});
    ASSERT_EQ(readBytes(file, header(1, 3, 96) + trackChunk(noteAndSysEx + kEndOfTrack) + end + end), 0);
    file.tracks(2)->clear();  // an empty track dumps as nothing at all
    EXPECT_TRUE(file.tracks(3) == nullptr && file.tracks(-1) == nullptr);
    EXPECT_EQ(file.toText(), "HEADER:\r\n======\r\n\tFormat: 1\r\n\tTracks: 3\r\n\tDivision: 60\r\n\r\nTRACK #0:\r\n=========\r\n"
                             "\t000096 (000500) CM: 903C40\r\n\t000096 (000500) SM: F07EF7\r\n\t000096 (000500) End of Track: \r\n"
                             "\r\nTRACK #1:\r\n=========\r\n\t000000 (000000) End of Track: \r\n\r\nTRACK #2:\r\n=========\r\n");

    // Wide and negative numbers, an event of no known kind (its times only), a broken meta event.
    file.setMidiFileFormat(-1);
    EXPECT_NE(file.toText().find("\tFormat: FFFF\r\n"), std::string::npos);
    MidiTrack& t = *file.tracks(2);
    t.c_addNoteOnE(0, 0, 60, 64);
    t.c_addNoteOnE(0, 0, 62, 64);
    t.trkEvents(0).absTick = 1234567;
    t.trkEvents(0).absMS = -5;
    t.trkEvents(1).eType = 0;
    EXPECT_EQ(t.toText(), "\t1234567 (-000005) CM: 903C40\r\n\t000000 (000000) \r\n");
    t.addMetaEvent(0, 0x20, "");
    expectMidiError([&] { (void)file.toText(); }, midierr::kInvalidArgument);
}

}  // namespace
}  // namespace tarabix
