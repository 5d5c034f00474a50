#include "MidiBytes.h"

#include "midi/MidiText.h"

namespace tarabix {
namespace {

using namespace test;

TEST(MidiText, MetaEventDescriptions)
{
    // One row per way a meta event's data is shown: as text, as a decimal number, in hex, not at all.
    const std::pair<std::string, const char*> cases[] = {
        {bytes({0x01, 'h', 'i'}), "Text: hi"},          {bytes({0x06, 'm', 0xE9}), "Marker: m\xE9"},
        {bytes({0x07}), "Cue Point: "},                 {bytes({0x20, 0x0A, 0x01}), "Channel: 10"},
        {bytes({0x21, 0xFF}), "Port: 255"},             {bytes({0x2F}), "End of Track: "},
        {bytes({0x2F, 0x00}), "End of Track: "},        {bytes({0x51, 0x07, 0xA1, 0x20}), "Tempo Change: 07A120"},
        {bytes({0x59, 0xFD, 0x01}), "Key Signature: FD01"}, {bytes({0x7F, 0x00, 0x01}), "??? (127): 0001"},
        {bytes({0x00}), "??? (0): "},
    };
    for (const auto& [eData, text] : cases) {
        SCOPED_TRACE(text);
        EXPECT_EQ(metaEventText(eData), text);
    }
    for (const std::string& bad : {bytes({0x20}), bytes({0x21}), std::string()}) {
        SCOPED_TRACE(bytesToHex(bad));
        expectMidiError([&] { metaEventText(bad); }, midierr::kInvalidArgument);
    }
    EXPECT_EQ(bytesToHex("") + "|" + bytesToHex(bytes({0x00, 0x0F, 0xA0, 0xFF})), "|000FA0FF");
}

TEST(MidiText, FileDumpHeaderTracksAndEventLines)
{
    MidiFile file;
    const std::string end = trackChunk(kEndOfTrack);
    const std::string noteAndSysEx = bytes({0x60, 0x90, 0x3C, 0x40, 0x00, 0xF0, 0x02, 0x7E, 0xF7});
    ASSERT_EQ(readBytes(file, header(1, 3, 96) + trackChunk(noteAndSysEx + kEndOfTrack) + end + end), 0);
    file.tracks(2)->clear();  // an empty track dumps as nothing at all
    EXPECT_EQ(file.toText(), "HEADER:\r\n======\r\n\tFormat: 1\r\n\tTracks: 3\r\n\tDivision: 60\r\n"
                             "\r\nTRACK #0:\r\n=========\r\n"
                             "\t000096 (000500) CM: 903C40\r\n"
                             "\t000096 (000500) SM: F07EF7\r\n"
                             "\t000096 (000500) End of Track: \r\n"
                             "\r\nTRACK #1:\r\n=========\r\n"
                             "\t000000 (000000) End of Track: \r\n"
                             "\r\nTRACK #2:\r\n=========\r\n");
}

TEST(MidiText, NumberFormsOfTheDump)
{
    MidiFile file;
    EXPECT_NE(file.toText().find("\tDivision: E728\r\n"), std::string::npos);
    file.setMidiFileFormat(-1);
    EXPECT_NE(file.toText().find("\tFormat: FFFF\r\n"), std::string::npos);

    MidiTrack& t = *file.tracks(0);
    t.c_addNoteOnE(0, 0, 60, 64);
    t.c_addNoteOnE(0, 0, 62, 64);
    t.trkEvents(0).absTick = 1234567;
    t.trkEvents(0).absMS = -5;
    t.trkEvents(1).eType = 0;  // an event of no known kind shows its times only
    EXPECT_EQ(t.toText(), "\t1234567 (-000005) CM: 903C40\r\n\t000000 (000000) \r\n");

    t.addMetaEvent(0, 0x20, "");
    expectMidiError([&] { (void)t.toText(); }, midierr::kInvalidArgument);
    expectMidiError([&] { (void)file.toText(); }, midierr::kInvalidArgument);
}

}  // namespace
}  // namespace tarabix
