#include "MidiBytes.h"

#include "midi/MidiError.h"
#include "midi/MidiFile.h"
#include "midi/StringStreamIn.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

namespace tarabix {
namespace {

// Reads, times and dumps the input the way the fuzz target does: any bytes give a status.
void readTimeAndDump(const std::string& content)
{
    StringStreamIn stream;
    stream.setFromString(content);
    MidiFile file;
    (void)file.readMidi(stream);
    (void)file.setEvtsAbsMSecs();
    try {
        (void)file.toText();
    } catch (const MidiError&) {
    }
}

TEST(MidiCrashInputs, HostileFilesGiveStatuses)
{
    using test::bytes;
    struct Case {
        const char* name;
        std::string content;
        int32_t status;
    };
    const Case cases[] = {
        {"most tracks a header can state", test::header(1, 0x7FFF, 96), -2147220479},
        {"endless zero delta bytes", test::header(0, 1, 96) + test::trackChunk(std::string(100000, '\x80')), 5},
        {"meta 0x20 without data", test::header(0, 1, 96) + test::trackChunk(bytes({0, 0xFF, 0x20, 0, 0, 0xFF, 0x2F, 0})), 0},
        {"tempo map past 32 bits of milliseconds",
         test::header(0, 1, 1) + test::trackChunk(bytes({0, 0xFF, 0x51, 4, 0x7F, 0xFF, 0xFF, 0xFF, 0x87, 0x69, 0x90,
                                                          60, 1})),
         6},
        {"ticks past 32 bits", test::header(0, 1, 96) + test::trackChunk(bytes({0x87, 0xFF, 0xFF, 0xFF, 0x7F, 0x90, 60,
                                                                                 1, 0x01, 60, 1})),
         6},
        {"negative tempo", test::header(0, 1, 96) + test::trackChunk(bytes({0, 0xFF, 0x51, 4, 0x80, 0, 0, 0, 0x60, 0x90,
                                                                             60, 1})),
         0},
        {"last possible tick is never reached",
         test::header(0, 2, 96) + test::trackChunk(bytes({0x87, 0xFF, 0xFF, 0xFF, 0x7F, 0x90, 60, 1})) +
             test::trackChunk(bytes({0x00, 0x90, 60, 1})),
         0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        StringStreamIn stream;
        stream.setFromString(c.content);
        MidiFile file;
        EXPECT_EQ(file.readMidi(stream), c.status);
        readTimeAndDump(c.content);
    }
}

// Every input that ever crashed the fuzz target is kept in its corpus and replayed here.
TEST(MidiCrashInputs, FuzzCorpusReplays)
{
    const std::filesystem::path dir = std::filesystem::path(TARABIX_SOURCE_DIR) / "tests/fuzz/corpus/midi_read_fuzz";
    if (!std::filesystem::is_directory(dir))
        GTEST_SKIP() << "no corpus";
    for (const auto& entry : std::filesystem::directory_iterator(dir)) {
        SCOPED_TRACE(entry.path().filename().string());
        std::ifstream in(entry.path(), std::ios::binary);
        readTimeAndDump(std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>()));
    }
}

}  // namespace
}  // namespace tarabix
