#include "settings/TextNumbers.h"
#include "settings/UserSettings.h"

#include "tests/common/TempFolder.h"

#include <gtest/gtest.h>

#include <QSettings>
#include <QString>

#include <memory>
#include <optional>
#include <tuple>

namespace tarabix {
namespace {

// Stored numbers and switches are plain decimal text: anything else is refused, never guessed at.
TEST(TextNumbers, Int32AndBoolTexts)
{
    const std::pair<const char*, std::optional<int32_t>> ints[] = {
        {" \t-12 ", -12}, {"+7", 7}, {"2.5", 2}, {"3.5", 4}, {"-0.5", 0}, {"2147483647", 2147483647}, {"-2147483648", INT32_MIN},
        {"2147483648", std::nullopt}, {"", std::nullopt}, {".", std::nullopt}, {"1e3", std::nullopt}, {"0x10", std::nullopt},
        {"1 2", std::nullopt}, {"1.2.3", std::nullopt}, {"+-1", std::nullopt}};
    for (const auto& [text, expected] : ints)
        EXPECT_EQ(textToInt32(text), expected) << text;
    const std::pair<const char*, std::optional<bool>> bools[] = {
        {"FALSE", false}, {" true ", true}, {"0", false}, {"-1", true}, {"0.25", true}, {"yes", std::nullopt}, {"Truex", std::nullopt}};
    for (const auto& [text, expected] : bools)
        EXPECT_EQ(textToBool(text), expected) << text;
}

// Settings over an INI file the test writes first, standing in for the per-user store.
class UserSettingsTest : public ::testing::Test {
protected:
    // QSettings caches a file by its name, size and time: a case that rewrites a store within the
    // same second takes a name of its own.
    UserSettings open(const std::string& text, const std::string& name = "Tarabix.conf")
    {
        const std::string path = m_dir.write(name, text);
        return UserSettings(std::make_unique<QSettings>(QString::fromStdString(path), QSettings::IniFormat));
    }
    std::string stored(const std::string& name = "Tarabix.conf") const { return m_dir.read(name); }

    test::TempFolder m_dir{::testing::UnitTest::GetInstance()->current_test_info()->name()};
};

TEST_F(UserSettingsTest, HighlightFollowsApproximatedQuarterTones)
{
    const std::tuple<const char*, const char*, bool> cases[] = {
        {"False", "MKB-PlayHilite=True", false}, {"false", "", false}, {"True", "MKB-PlayHilite=False", false}, {"TRUE", "MKB-PlayHilite=1", true}};
    for (const auto& [approxQrt, hilite, expected] : cases)
        EXPECT_EQ(open(std::string("[options]\napproxQrt=") + approxQrt + "\n" + hilite + "\n").loadStartup().mkbPlayHilite, expected)
            << approxQrt << " " << hilite;
}

// A fresh profile gives the built-in values; a value that cannot be read keeps its own and the
// load goes on.
TEST_F(UserSettingsTest, MissingAndUnreadableValuesGiveTheBuiltInOnes)
{
    const UserSettings fresh = open("");
    const StartupOptions f = fresh.loadStartup();
    EXPECT_EQ(std::make_tuple(f.approxQrt, f.playMouseMove, f.mkbPlayHilite, f.mkbDoubling, f.mkbDblOn1MS, f.mkbDblOffMS),
              std::make_tuple(true, false, true, false, 5, 2));
    EXPECT_EQ(fresh.notePresentation(), NotePresentation{});  // the window's bare value: names everywhere
    EXPECT_EQ(std::make_tuple(fresh.udOrient(), fresh.tuningICateg(), fresh.synthLatencyMs()), std::make_tuple(1, 0, 20));

    const UserSettings settings = open("[options]\napproxQrt=maybe\nPlayMouseMove=True\nMKB-dblOn1MS=fast\nMKB-dblOffMS=7\nNoteNamesType=1\n"
                                       "NotesPres_Rest_NoMaqam=2\nNotesPres_Play_NoMaqam=x\nNotesPres_Play_Maqam=4\nUdOrient=three\nTuningICateg=12\n");
    const StartupOptions o = settings.loadStartup();
    EXPECT_EQ(std::make_tuple(o.approxQrt, o.playMouseMove, o.mkbDblOn1MS, o.mkbDblOffMS), std::make_tuple(true, true, 5, 7));
    EXPECT_EQ(settings.notePresentation(),
              (NotePresentation{.restNoMaqam = 2, .restMaqam = 1, .playNoMaqam = 1, .playMaqam = 4, .nameSystem = 1}));
    EXPECT_EQ(std::make_pair(settings.udOrient(), settings.tuningICateg()), std::make_pair(1, 12));
}

// Changes reach the file at once (the window's tests read the switches and numbers back); a
// SoundFont path keeps every character.
TEST_F(UserSettingsTest, ChangesAreStoredAtOnce)
{
    UserSettings settings = open("");
    EXPECT_EQ(settings.textValue(Setting::SoundFontFile), "");
    settings.setInt(Setting::TuningICateg, -2);
    const std::string soundFont = "/home/learner/My SoundFonts/عود, ney=1.sf2";
    settings.setText(Setting::SoundFontFile, soundFont);
    const UserSettings reopened = open(stored());  // read while the store is still open
    EXPECT_EQ(std::make_pair(reopened.tuningICateg(), reopened.textValue(Setting::SoundFontFile)), std::make_pair(-2, soundFont));
}

// Each field under its own key, and only a changed field written: a key the learner never touched
// stays out of the store, as a damaged one stays as it is when its reading is chosen again.
TEST_F(UserSettingsTest, NotePresentationWritesTheKeysOfItsChangedFieldsOnly)
{
    const std::tuple<const char*, NotePresentation, const char*> cases[] = {  // the store before, the choice, the store after
        {"", {}, ""},
        {"", {.nameSystem = 1}, "[options]\nNoteNamesType=1\n"},
        {"", {.restNoMaqam = 0, .restMaqam = 2, .playNoMaqam = 3, .playMaqam = 4},
         "[options]\nNotesPres_Play_Maqam=4\nNotesPres_Play_NoMaqam=3\nNotesPres_Rest_Maqam=2\nNotesPres_Rest_NoMaqam=0\n"},
        {"[options]\nNotesPres_Play_Maqam=x\n", {}, "[options]\nNotesPres_Play_Maqam=x\n"},  // damaged, read as the default
        {"[options]\nNoteNamesType=1\n", {}, "[options]\nNoteNamesType=0\n"},                // back to the default
    };
    int n = 0;
    for (const auto& [before, chosen, after] : cases) {
        const std::string name = std::to_string(++n) + ".conf";
        UserSettings settings = open(before, name);
        settings.setNotePresentation(chosen);
        EXPECT_EQ(stored(name), after) << n;
        EXPECT_EQ(open(stored(name), "again-" + name).notePresentation(), chosen) << n;
    }
}

// The look-ahead is read whole from its two keys; whatever cannot be read, or no control stands
// for, is off. Only the keys of a changed field are written.
TEST_F(UserSettingsTest, LookAheadReadsWholeAndADamagedValueIsOff)
{
    const std::pair<const char*, LookAhead> reads[] = {
        {"", {}}, {"LookAhead=2", {2, 1500}}, {"LookAhead=4\nLookAheadMS=750", {4, 750}}, {"LookAhead=5\nLookAheadMS=750", {0, 750}},
        {"LookAhead=two\nLookAheadMS=750", {0, 750}}, {"LookAhead=4\nLookAheadMS=60000", {}}, {"LookAhead=4\nLookAheadMS=soon", {}}};
    int n = 0;
    for (const auto& [text, expected] : reads)
        EXPECT_EQ(open(std::string("[options]\n") + text + "\n", std::to_string(++n) + ".conf").lookAhead(), expected) << text;
    UserSettings settings = open("", "written.conf");
    settings.setLookAhead({3, LookAhead::kDefaultMs});
    EXPECT_EQ(stored("written.conf"), "[options]\nLookAhead=3\n");
    settings.setLookAhead({LookAhead::kWithinTime, 2000});
    EXPECT_EQ(open(stored("written.conf"), "again.conf").lookAhead(), (LookAhead{LookAhead::kWithinTime, 2000}));
}

}  // namespace
}  // namespace tarabix
