#include "base/ReadWholeFile.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace tarabix {
namespace {

TEST(ReadWholeFile, ReadsBinaryBytesAndReportsMissingFilesAndFolders)
{
    const auto dir = std::filesystem::temp_directory_path() / "tarabix_read_whole_file";
    std::filesystem::create_directories(dir);
    const std::string binary("MThd\0\r\n\xff", 8);
    {
        std::ofstream out(dir / "piece.mid", std::ios::binary);
        out << binary;
    }
    std::string bytes = "stale";
    EXPECT_EQ(readWholeFile((dir / "piece.mid").string(), bytes), 0);
    EXPECT_EQ(bytes, binary);

    EXPECT_EQ(readWholeFile((dir / "absent.mid").string(), bytes), kFileNotFound);
    EXPECT_TRUE(bytes.empty());
    EXPECT_EQ(readWholeFile("", bytes), kFileNotFound);
    EXPECT_EQ(readWholeFile(dir.string(), bytes), kPathAccessError);
    std::filesystem::remove_all(dir);
}

}  // namespace
}  // namespace tarabix
