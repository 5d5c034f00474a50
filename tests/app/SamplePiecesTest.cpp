// Every piece shipped under samples/ must open the way the main window opens it, last as long as
// a lesson piece should, name maqams the maqam list knows, and (MZF) carry a readable sheet.
#include "app/SheetPicture.h"
#include "midi/MzfContainer.h"
#include "oud/model/mMaqams.h"
#include "tests/common/SamplePieces.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <string>

namespace tarabix {
namespace {

TEST(SamplePieces, EveryPieceOpensAndNamesAKnownMaqam)
{
    const std::filesystem::path data = test::kDataFolder;
    mMaqams maqams;
    ASSERT_EQ(maqams.loadMaqams((data / "maqams.ini").string()), "");
    std::set<std::string> maqamsCovered;
    int mzf = 0;
    for (const std::string& path : test::samplePiecePaths()) {
        SCOPED_TRACE(path);
        EXPECT_TRUE(isMzfPath(path) || path.ends_with(".mid")) << "the Open dialog shows .mzf and .mid";
        MidiFile file;
        ASSERT_EQ(test::readPiece(path, file), 0);
        EXPECT_GE(file.allLastAbsMSec(), 45'000);
        EXPECT_LE(file.allLastAbsMSec(), 120'000);
        int markers = 0;
        for (int32_t t = 0; t < file.numOfTracks(); ++t)
            for (const MidiEvent& e : file.tracks(t)->events())
                if (e.isMeta(0x01) && e.eData.compare(1, 2, "Q:") == 0) {
                    const auto marker = maqams.parseMaqamMarker(e.eData.substr(1));
                    EXPECT_TRUE(marker) << e.eData.substr(1);
                    if (marker && markers++ == 0)
                        maqamsCovered.insert(maqams.maqamName(marker->index));
                }
        EXPECT_GT(markers, 0);
        if (isMzfPath(path)) {
            ++mzf;
            std::string sheet;
            ASSERT_EQ(getMzfSheet(path, sheet), 0);
            EXPECT_GE(pictureFromBytes(sheet).width(), 600);  // engraved large enough to read on screen
        }
    }
    EXPECT_GE(mzf, 10);
    for (const char* maqam : {"Ajam", "Rast", "Bayati", "Saba", "Hijaz", "Nahawand", "Kurd", "Sikah", "Huzam", "Nakriz"})
        EXPECT_TRUE(maqamsCovered.count(maqam)) << maqam;
}

}  // namespace
}  // namespace tarabix
