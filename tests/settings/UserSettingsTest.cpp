#include "settings/UserSettings.h"

#include "TempFolder.h"

#include <gtest/gtest.h>

#include <QSettings>
#include <QString>

#include <array>
#include <memory>

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

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


// Makes a file or folder unwritable for this process while it lives: by its mode for an ordinary
// user, by the immutable flag for root (whom the mode does not stop). ok() is false when neither
// is possible here.
class Unwritable {
public:
    explicit Unwritable(std::string path) : path_(std::move(path))
    {
        if (::geteuid() != 0) {
            struct stat st {};
            ok_ = ::stat(path_.c_str(), &st) == 0 && ::chmod(path_.c_str(), st.st_mode & 0555) == 0;
            mode_ = st.st_mode;
            return;
        }
        immutable_ = ok_ = setImmutable(true);
    }
    ~Unwritable()
    {
        if (!ok_)
            return;
        if (immutable_)
            setImmutable(false);
        else
            ::chmod(path_.c_str(), mode_);
    }
    Unwritable(const Unwritable&) = delete;
    Unwritable& operator=(const Unwritable&) = delete;

    bool ok() const { return ok_; }

private:
    bool setImmutable(bool on) const
    {
        const int fd = ::open(path_.c_str(), O_RDONLY);
        int flags = 0;
        bool done = fd >= 0 && ::ioctl(fd, FS_IOC_GETFLAGS, &flags) == 0;
        if (done) {
            flags = on ? (flags | FS_IMMUTABLE_FL) : (flags & ~FS_IMMUTABLE_FL);
            done = ::ioctl(fd, FS_IOC_SETFLAGS, &flags) == 0;
        }
        if (fd >= 0)
            ::close(fd);
        return done;
    }

    std::string path_;
    mode_t mode_ = 0;
    bool ok_ = false;
    bool immutable_ = false;
};

// A profile that cannot be written (a locked-down account, a read-only disk): the learner's
// changes hold for this run, nothing crashes, and every choice already stored survives untouched.
TEST_F(UserSettingsTest, UnwritableStoreKeepsStoredChoicesAndTheSessionsChanges)
{
    const std::string before = "[options]\nUdOrient=3\napproxQrt=False\nNoteNamesType=1\n";
    const std::string path = dir_.write("Tarabix.conf", before);
    {
        const Unwritable folder(dir_.path("."));
        const Unwritable file(path);
        if (!folder.ok() || !file.ok())
            GTEST_SKIP() << "cannot make the store unwritable here";
        {
            UserSettings settings(std::make_unique<QSettings>(QString::fromStdString(path), QSettings::IniFormat));
            settings.setInt(Setting::UdOrient, 2);
            settings.setBool(Setting::ApproxQrt, true);
            settings.setInt(Setting::TuningICateg, 4);
            EXPECT_EQ(settings.udOrient(), 2);
            EXPECT_TRUE(settings.boolValue(Setting::ApproxQrt));
            EXPECT_EQ(settings.tuningICateg(), 4);
            EXPECT_EQ(settings.intValue(Setting::NoteNamesType), 1);
        }
        // The next start reads the file: it still holds every earlier choice, byte for byte.
        EXPECT_EQ(stored(), before);
    }
}

}  // namespace
}  // namespace tarabix
