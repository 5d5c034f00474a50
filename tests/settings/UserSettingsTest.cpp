#include "settings/UserSettings.h"

#include "TempFolder.h"

#include <gtest/gtest.h>

#include <QSettings>
#include <QString>

#include <array>
#include <memory>

namespace tarabix {
namespace {

// Settings over an INI file the test writes first, standing in for the per-user store.
class UserSettingsTest : public ::testing::Test {
protected:
    UserSettings open(const std::string& text)
    {
        const std::string path = dir_.write("Tarabix.conf", text);
        return UserSettings(std::make_unique<QSettings>(QString::fromStdString(path), QSettings::IniFormat));
    }
    std::string stored() const { return dir_.read("Tarabix.conf"); }

    test::TempFolder dir_{::testing::UnitTest::GetInstance()->current_test_info()->name()};
};

TEST_F(UserSettingsTest, FreshProfileGivesTheBuiltInValues)
{
    const UserSettings settings = open("");
    const StartupOptions options = settings.loadStartup();
    EXPECT_TRUE(options.approxQrt);
    EXPECT_FALSE(options.playMouseMove);
    EXPECT_TRUE(options.mkbPlayHilite);
    EXPECT_FALSE(options.mkbDoubling);
    EXPECT_EQ(options.mkbDblOn1MS, 5);
    EXPECT_EQ(options.mkbDblOffMS, 2);
    EXPECT_EQ(options.noteNamesType, 0);
    EXPECT_EQ(options.notesPres, (std::array<int32_t, 4>{1, 1, 1, 1}));
    EXPECT_EQ(settings.udOrient(), 1);
    EXPECT_EQ(settings.tuningICateg(), 0);
}

TEST_F(UserSettingsTest, HighlightFollowsApproximatedQuarterTones)
{
    struct Case {
        const char* approxQrt;
        const char* hilite;
        bool expected;
    };
    const Case cases[] = {
        {"False", "True", false},
        {"false", "", false},
        {"True", "False", false},
        {"TRUE", "1", true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.approxQrt) + " " + c.hilite);
        std::string text = std::string("[options]\napproxQrt=") + c.approxQrt + "\n";
        if (*c.hilite)
            text += std::string("MKB-PlayHilite=") + c.hilite + "\n";
        EXPECT_EQ(open(text).loadStartup().mkbPlayHilite, c.expected);
    }
}

TEST_F(UserSettingsTest, UnreadableValueKeepsItsDefaultAndTheLoadGoesOn)
{
    const UserSettings settings = open(
        "[options]\n"
        "approxQrt=maybe\n"
        "PlayMouseMove=True\n"
        "MKB-dblOn1MS=fast\n"
        "MKB-dblOffMS=7\n"
        "NoteNamesType=1\n"
        "NotesPres_Rest_NoMaqam=2\n"
        "NotesPres_Play_NoMaqam=x\n"
        "NotesPres_Play_Maqam=4\n"
        "UdOrient=three\n"
        "TuningICateg=12\n");
    const StartupOptions options = settings.loadStartup();
    EXPECT_TRUE(options.approxQrt);
    EXPECT_TRUE(options.playMouseMove);
    EXPECT_EQ(options.mkbDblOn1MS, 5);
    EXPECT_EQ(options.mkbDblOffMS, 7);
    EXPECT_EQ(options.noteNamesType, 1);
    EXPECT_EQ(options.notesPres, (std::array<int32_t, 4>{2, 1, 1, 4}));
    EXPECT_EQ(settings.udOrient(), 1);
    EXPECT_EQ(settings.tuningICateg(), 12);
}

TEST_F(UserSettingsTest, ChangesAreStoredAsTextAtOnce)
{
    UserSettings settings = open("");
    settings.setBool(Setting::ApproxQrt, false);
    settings.setBool(Setting::MkbDoubling, true);
    settings.setInt(Setting::UdOrient, 3);
    settings.setInt(Setting::TuningICateg, -2);
    // Read from the file while the store is still open: nothing waits for the program to exit.
    const std::string text = stored();
    EXPECT_NE(text.find("[options]"), std::string::npos);
    EXPECT_NE(text.find("approxQrt=False"), std::string::npos);
    EXPECT_NE(text.find("MKB-Doubling=True"), std::string::npos);
    EXPECT_NE(text.find("UdOrient=3"), std::string::npos);
    EXPECT_NE(text.find("TuningICateg=-2"), std::string::npos);

    const UserSettings reopened = open(text);
    EXPECT_FALSE(reopened.loadStartup().approxQrt);
    EXPECT_TRUE(reopened.boolValue(Setting::MkbDoubling));
    EXPECT_EQ(reopened.udOrient(), 3);
    EXPECT_EQ(reopened.tuningICateg(), -2);
}

}  // namespace
}  // namespace tarabix
