#include "SoundFontBytes.h"
#include "playback/FluidSynthEngine.h"
#include "playback/SoundFontCheck.h"
#include "playback/SoundFontLocator.h"
#include "playback/SynthDiagnostics.h"
#include "tests/common/TempFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

namespace tarabix {
namespace {

namespace fs = std::filesystem;
using test::soundFontBytes;
using test::SoundFontShape;

const std::string kSystemSoundFont = "/usr/share/sounds/sf2/FluidR3_GM.sf2";

class SoundFontFiles : public ::testing::Test {
protected:
    // Writes bytes at a path under the temporary folder, making its folders.
    std::string put(const std::string& relative, const std::string& bytes)
    {
        fs::create_directories(fs::path(m_dir.path(relative)).parent_path());
        return m_dir.write(relative, bytes);
    }
    std::string folder(const std::string& relative) const { return m_dir.path(relative); }

    test::TempFolder m_dir{::testing::UnitTest::GetInstance()->current_test_info()->name()};
};

TEST_F(SoundFontFiles, TheQuickCheckTellsABrokenFileFromAGoodOne)
{
    const std::string good = soundFontBytes();
    std::string badTable = good;
    badTable.replace(badTable.find("pbag") + 4, 4, test::le(6, 4));  // not a whole number of records
    // An odd last chunk whose pad byte the writer counted but left out.
    std::string unpadded = good + test::riffChunk("note", "odd");
    unpadded.replace(4, 4, test::le(static_cast<uint32_t>(unpadded.size() - 8), 4));
    unpadded.pop_back();
    struct Case { const char* name; std::string bytes; const char* problem; };  // problem "": passes
    const Case cases[] = {
        {"empty.sf2", "", "it is empty"},
        {"notes.sf2", "These are my lesson notes, not a SoundFont.\n", "it is not a SoundFont"},
        {"wave.sf2", "RIFF" + test::le(4, 4) + "WAVE", "it is not a SoundFont"},
        {"truncated.sf2", good.substr(0, good.size() / 2), "it is truncated"},
        {"no-presets.sf2", soundFontBytes(SoundFontShape{1, false}), "preset list is missing"},
        {"bad-table.sf2", badTable, "table 'pbag' has a broken length"},
        {"good.sf2", good, ""},
        {"unpadded.sf2", unpadded, ""},
        {"short-by-two.sf2", unpadded.substr(0, unpadded.size() - 1), "it is truncated"},
        {"out-of-order.sf3", soundFontBytes(SoundFontShape{0, true}), ""},  // only the synthesizer sees this
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const SoundFontCheck check = checkSoundFontFile(put(c.name, c.bytes));
        EXPECT_EQ(check.ok, std::string(c.problem).empty());
        EXPECT_NE(check.problem.find(c.problem), std::string::npos) << check.problem;
    }
    EXPECT_EQ(checkSoundFontFile(folder("missing.sf2")).problem, "there is no such file");
    EXPECT_EQ(checkSoundFontFile(folder("")).problem, "it is not a file");
    EXPECT_TRUE(!fs::exists(kSystemSoundFont) || checkSoundFontFile(kSystemSoundFont).ok);
}

TEST_F(SoundFontFiles, TheSearchPrefersGeneralMidiNamesThenFolderOrderAndSkipsBrokenFiles)
{
    const std::string good = soundFontBytes();
    const std::vector<std::string> folders = {folder("mine"), folder("program"), folder("system")};
    // Each file with its bytes, and the one found ("" for none); paths relative to the folder.
    struct Case { std::vector<std::pair<std::string, std::string>> files; std::string expected; };
    const Case cases[] = {
        {{}, ""},
        {{{"mine/other.sf2", good}, {"system/FluidR3_GM.sf2", good}}, "system/FluidR3_GM.sf2"},
        {{{"program/default.sf2", good}, {"program/FluidR3_GM.sf3", good}}, "program/FluidR3_GM.sf3"},
        {{{"system/default-GM.sf3", good}, {"system/default-GM.sf2", good}}, "system/default-GM.sf2"},
        {{{"mine/default.sf2", good}, {"system/FluidR3_GM.sf2", good}}, "mine/default.sf2"},
        {{{"mine/FluidR3_GM.sf2", ""}, {"program/default.sf2", good}}, "program/default.sf2"},
        {{{"mine/FluidR3_GM.sf2", "text"}, {"mine/b.SF2", good}, {"mine/a.txt", good}}, "mine/b.SF2"},
    };
    for (size_t i = 0; i < std::size(cases); ++i) {
        SCOPED_TRACE(i);
        fs::remove_all(folder(""));
        for (const auto& [path, bytes] : cases[i].files)
            put(path, bytes);
        const std::string expected = cases[i].expected.empty() ? "" : folder(cases[i].expected);
        EXPECT_EQ(findSoundFont(folders), expected);
    }
    // A file passed over is passed over under another name too.
    fs::remove_all(folder(""));
    const std::string real = put("system/FluidR3_GM.sf2", good);
    fs::create_symlink(real, folder("system/default-GM.sf2"));
    const std::string second = put("system/zz.sf3", good);
    EXPECT_EQ(findSoundFont(folders, folder("system/default-GM.sf2")), second);
}

// The system's folders are searched whatever the desktop sets.
TEST(SoundFontFolders, TheSystemsAreSearchedWhateverTheDesktopSets)
{
    setenv("XDG_DATA_DIRS", "/flatpak/share", 1);
    const std::vector<std::string> real = soundFontFolders();
    unsetenv("XDG_DATA_DIRS");
    for (const char* folder : {"/flatpak/share/soundfonts", "/usr/share/sounds/sf2"})
        EXPECT_NE(std::ranges::find(real, folder), real.end()) << folder;
}

// The learner's file is kept when it is good; a broken one gives way to the system's with a notice,
// or leaves the synthesizer silent with a reason when there is none.
TEST_F(SoundFontFiles, TheLearnersBrokenFileGivesWayToTheSystemsWithANotice)
{
    const std::string mine = put("mine.sf2", soundFontBytes().substr(0, 100));
    const std::string text = put("notes.sf2", "lesson notes");
    const std::string fallback = put("system/FluidR3_GM.sf2", soundFontBytes());
    struct Case { std::string wanted, folder, path, notice, reason; };  // notice, reason: a part, "" for none
    const Case cases[] = {
        {fallback, "empty", fallback, "", ""},
        {mine, "system", fallback, fallback, ""},
        {text, "empty", "", "silent", text + " cannot be used (it is not a SoundFont)"},
        {"", "empty", "", "", "no General MIDI SoundFont found"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.wanted);
        const SoundFontChoice choice = chooseSoundFont(c.wanted, {folder(c.folder)});
        EXPECT_EQ(choice.path, c.path);
        EXPECT_EQ(choice.notice.empty(), c.notice.empty());
        EXPECT_EQ(choice.reason.empty(), c.reason.empty());
        EXPECT_NE(choice.notice.find(c.notice), std::string::npos) << choice.notice;
        EXPECT_NE(choice.reason.find(c.reason), std::string::npos) << choice.reason;
    }
}

// A file with a good outline that the synthesizer still refuses: the system's SoundFont plays in
// its place, the learner is told, and the synthesizer's own words stay off the terminal.
TEST_F(SoundFontFiles, AFileTheSynthesizerRefusesGivesWayAtTheFullLoad)
{
    const std::string refused = put("refused.sf2", soundFontBytes(SoundFontShape{0, true}));
    FluidSynthEngine engine(44100.0);
    ASSERT_TRUE(engine.valid());
    testing::internal::CaptureStderr();
    EXPECT_FALSE(engine.loadSoundFont(refused));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_NE(engine.reason().find("could not be loaded: fluidsynth"), std::string::npos) << engine.reason();

    EXPECT_TRUE(engine.loadSoundFont(put("good.sf2", soundFontBytes())));
    if (!fs::exists(kSystemSoundFont))
        GTEST_SKIP() << "no General MIDI SoundFont installed";
    SoundFontChoice choice{refused, "", ""};
    EXPECT_TRUE(engine.loadChosenSoundFont(choice));
    EXPECT_TRUE(fs::equivalent(choice.path, kSystemSoundFont)) << choice.path;
    EXPECT_NE(choice.notice.find(refused), std::string::npos);
    EXPECT_NE(choice.notice.find("could not be loaded"), std::string::npos);
}

}  // namespace
}  // namespace tarabix
