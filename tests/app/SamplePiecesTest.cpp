// Every piece shipped under samples/ must open the way the main window opens it, last as long as
// a lesson piece should, name a maqam the maqam list knows, and (MZF) carry a readable sheet.
#include "app/SheetPicture.h"
#include "midi/MzfContainer.h"
#include "oud/model/mMaqams.h"
#include "tests/common/SamplePieces.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <set>
#include <string>

namespace tarabix {
namespace {

using test::readPiece;
const std::filesystem::path kData = test::kDataFolder;

// Every "Q:name/tonic" text of the piece, in all tracks.
std::vector<std::string> maqamMarkers(const MidiFile& file)
{
    std::vector<std::string> markers;
    for (int32_t t = 0; t < file.numOfTracks(); ++t)
        for (const MidiEvent& e : file.tracks(t)->events())
            if (e.isMeta(0x01) && e.eData.compare(1, 2, "Q:") == 0)
                markers.push_back(e.eData.substr(1));
    return markers;
}

TEST(SamplePieces, EveryPieceOpensAndNamesAKnownMaqam)
{
    mMaqams maqams;
    ASSERT_EQ(maqams.loadMaqams((kData / "maqams.ini").string()), "");
    std::set<std::string> maqamsCovered;
    std::map<std::string, int> filesByExtension;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(kData / "samples")) {
        if (!entry.is_regular_file())
            continue;
        const std::string path = entry.path().string();
        SCOPED_TRACE(path);
        ++filesByExtension[entry.path().extension().string()];
        MidiFile file;
        ASSERT_EQ(readPiece(path, file), 0);
        EXPECT_GE(file.allLastAbsMSec(), 45'000);
        EXPECT_LE(file.allLastAbsMSec(), 120'000);

        const std::vector<std::string> markers = maqamMarkers(file);
        ASSERT_FALSE(markers.empty());
        for (const std::string& marker : markers)
            EXPECT_TRUE(maqams.parseMaqamMarker(marker)) << marker;
        if (const auto first = maqams.parseMaqamMarker(markers.front()))
            maqamsCovered.insert(maqams.maqamName(first->index));
        if (isMzfPath(path)) {
            std::string sheet;
            ASSERT_EQ(getMzfSheet(path, sheet), 0);
            EXPECT_GE(pictureFromBytes(sheet).width(), 600);  // engraved large enough to read on screen
        }
    }
    EXPECT_GE(filesByExtension[".mzf"], 10);
    EXPECT_GE(filesByExtension[".mid"], 1);
    EXPECT_EQ(filesByExtension.size(), 2u) << "pieces are .mzf or .mid only";
    for (const char* maqam : {"Ajam", "Rast", "Bayati", "Saba", "Hijaz", "Nahawand", "Kurd", "Sikah", "Huzam", "Nakriz"})
        EXPECT_TRUE(maqamsCovered.count(maqam)) << maqam;
    EXPECT_TRUE(std::filesystem::exists(kData / "samples" / "agam" / "zoroony.mzf"));
}

// Quarter tones reach the synthesizer as pitch-wheel messages sent while the melody channel is
// silent, so a sounding note never bends and the window can read each note's shift.
TEST(SamplePieces, PitchWheelMovesOnlyBetweenNotes)
{
    MidiFile file;
    ASSERT_EQ(readPiece((kData / "samples" / "sikah" / "sikah-meditation.mzf").string(), file), 0);
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
