// Every piece shipped under samples/ must open the way the main window opens it, last as long as
// a lesson piece should, name a maqam the maqam list knows, and (MZF) carry a readable sheet.
#include "app/SheetPicture.h"
#include "midi/MidiFile.h"
#include "midi/MzfContainer.h"
#include "midi/StringStreamIn.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <string>

namespace tarabix {
namespace {

const std::filesystem::path kSamples = std::filesystem::path(TARABIX_SOURCE_DIR) / "data" / "samples";

std::set<std::string> maqamNames()
{
    std::set<std::string> names;
    std::ifstream ini(std::filesystem::path(TARABIX_SOURCE_DIR) / "data" / "maqams.ini");
    std::string line;
    while (std::getline(ini, line)) {
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        if (line.rfind("name=", 0) == 0)
            names.insert(line.substr(5));
    }
    return names;
}

// Every "Q:name/tonic" text of the piece, in all tracks.
std::vector<std::string> maqamMarkers(const MidiFile& file)
{
    std::vector<std::string> markers;
    for (int32_t t = 0; t < file.numOfTracks(); ++t)
        for (const MidiEvent& e : file.tracks(t)->events())
            if (e.isMeta(0x01) && e.eData.compare(1, 2, "Q:") == 0)
                markers.push_back(e.eData.substr(3));
    return markers;
}

TEST(SamplePieces, EveryPieceOpensAndNamesAKnownMaqam)
{
    const std::set<std::string> known = maqamNames();
    ASSERT_FALSE(known.empty());
    std::set<std::string> maqamsCovered;
    int mzfCount = 0;
    int midCount = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(kSamples)) {
        if (!entry.is_regular_file())
            continue;
        const std::string path = entry.path().string();
        SCOPED_TRACE(path);
        MidiFile file;
        if (isMzfPath(path)) {
            ++mzfCount;
            std::string midi;
            bool hasSheet = false;
            ASSERT_EQ(getMzfMidi(path, midi, hasSheet), 0);
            EXPECT_TRUE(hasSheet);
            StringStreamIn stream;
            stream.setFromString(midi);
            ASSERT_EQ(file.readMidi(stream), 0);
            std::string sheet;
            ASSERT_EQ(getMzfSheet(path, sheet), 0);
            const QImage picture = pictureFromBytes(sheet);
            ASSERT_FALSE(picture.isNull());
            EXPECT_GE(picture.width(), 600);  // engraved large enough to read on screen
        } else {
            ASSERT_EQ(entry.path().extension(), ".mid");
            ++midCount;
            ASSERT_EQ(file.readMidiFile(path), 0);
        }
        EXPECT_GE(file.allLastAbsMSec(), 45'000);
        EXPECT_LE(file.allLastAbsMSec(), 120'000);

        const std::vector<std::string> markers = maqamMarkers(file);
        ASSERT_FALSE(markers.empty());
        for (const std::string& marker : markers) {
            const size_t slash = marker.find('/');
            ASSERT_NE(slash, std::string::npos) << marker;
            EXPECT_TRUE(known.count(marker.substr(0, slash))) << marker;
            const int tonic = std::stoi(marker.substr(slash + 1));
            EXPECT_GE(tonic, 0);
            EXPECT_LE(tonic, 11);
        }
        maqamsCovered.insert(markers.front().substr(0, markers.front().find('/')));
    }
    EXPECT_GE(mzfCount, 10);
    EXPECT_GE(midCount, 1);
    for (const char* maqam : {"Ajam", "Rast", "Bayati", "Saba", "Hijaz", "Nahawand", "Kurd", "Sikah", "Huzam", "Nakriz"})
        EXPECT_TRUE(maqamsCovered.count(maqam)) << maqam;
    EXPECT_TRUE(std::filesystem::exists(kSamples / "agam" / "zoroony.mzf"));
}

// Quarter tones reach the synthesizer as pitch-wheel messages sent while the melody channel is
// silent, so a sounding note never bends and the window can read each note's shift.
TEST(SamplePieces, PitchWheelMovesOnlyBetweenNotes)
{
    const std::string path = (kSamples / "sikah" / "sikah-meditation.mzf").string();
    std::string midi;
    bool hasSheet = false;
    ASSERT_EQ(getMzfMidi(path, midi, hasSheet), 0);
    StringStreamIn stream;
    stream.setFromString(midi);
    MidiFile file;
    ASSERT_EQ(file.readMidi(stream), 0);
    int wheels = 0;
    int sounding = 0;
    const MidiTrack merged = file.make1TrackMidi();
    for (const MidiEvent& e : merged.events()) {
        if (e.eType != MidiEvent::kChannelMessage || (e.eData[0] & 0x0F) != 0)
            continue;
        const int kind = static_cast<uint8_t>(e.eData[0]) & 0xF0;
        if (kind == 0x90 && e.eData[2] != 0)
            ++sounding;
        else if (kind == 0x80 || kind == 0x90)
            --sounding;
        else if (kind == 0xE0) {
            ++wheels;
            EXPECT_EQ(sounding, 0);
            const int value = static_cast<uint8_t>(e.eData[1]) | static_cast<uint8_t>(e.eData[2]) << 7;
            EXPECT_TRUE(value == 8192 || value == 6144) << value;
        }
    }
    EXPECT_GT(wheels, 10);
}

}  // namespace
}  // namespace tarabix
