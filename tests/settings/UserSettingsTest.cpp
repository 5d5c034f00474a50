#include "settings/TextNumbers.h"
#include "settings/UserSettings.h"

#include "tests/common/TempFolder.h"

#include <gtest/gtest.h>

#include <QSettings>
#include <QString>

#include <memory>
#include <optional>
#include <tuple>
#include <vector>

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tarabix {
namespace {

// Stored numbers and switches are plain decimal text: anything else is refused, never guessed at.
TEST(TextNumbers, Int32AndBoolTexts)
{
    const std::pair<const char*, std::optional<int32_t>> ints[] = {
        {" \t-12 ", -12}, {"+7", 7}, {"2.5", 2}, {"3.5", 4}, {"-0.5", 0}, {"2147483647", 2147483647}, {"-2147483648", INT32_MIN},
        {"2147483648", std::nullopt}, {"", std::nullopt}, {"-", std::nullopt}, {".", std::nullopt}, {"1e3", std::nullopt},
        {"0x10", std::nullopt}, {"12abc", std::nullopt}, {"1 2", std::nullopt}, {"1.2.3", std::nullopt}, {"+-1", std::nullopt}};
    for (const auto& [text, expected] : ints)
        EXPECT_EQ(textToInt32(text), expected) << text;
    const std::pair<const char*, std::optional<bool>> bools[] = {{"True", true}, {"FALSE", false}, {" true ", true}, {"0", false},
        {"-1", true}, {"0.0", false}, {"0.25", true}, {"yes", std::nullopt}, {"", std::nullopt}, {"Truex", std::nullopt}};
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
    EXPECT_EQ(std::make_tuple(f.approxQrt, f.playMouseMove, f.mkbPlayHilite, f.mkbDoubling), std::make_tuple(true, false, true, false));
    EXPECT_EQ(std::make_tuple(f.mkbDblOn1MS, f.mkbDblOffMS), std::make_tuple(5, 2));
    EXPECT_EQ(fresh.notePresentation(), NotePresentation{});  // the window's bare value: names everywhere
    EXPECT_EQ(std::make_tuple(fresh.udOrient(), fresh.tuningICateg(), fresh.synthLatencyMs()), std::make_tuple(1, 0, 20));

    const UserSettings settings = open("[options]\napproxQrt=maybe\nPlayMouseMove=True\nMKB-dblOn1MS=fast\nMKB-dblOffMS=7\nNoteNamesType=1\n"
                                       "NotesPres_Rest_NoMaqam=2\nNotesPres_Play_NoMaqam=x\nNotesPres_Play_Maqam=4\nUdOrient=three\nTuningICateg=12\n");
    const StartupOptions o = settings.loadStartup();
    EXPECT_EQ(std::make_tuple(o.approxQrt, o.playMouseMove, o.mkbDblOn1MS, o.mkbDblOffMS), std::make_tuple(true, true, 5, 7));
    EXPECT_EQ(settings.notePresentation(),
              (NotePresentation{.restNoMaqam = 2, .restMaqam = 1, .playNoMaqam = 1, .playMaqam = 4, .nameSystem = 1}));
    EXPECT_EQ(settings.udOrient(), 1);
    EXPECT_EQ(settings.tuningICateg(), 12);
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
    EXPECT_EQ(reopened.tuningICateg(), -2);
    EXPECT_EQ(reopened.textValue(Setting::SoundFontFile), soundFont);
}

// Each field under its own key, and only a changed field written: a key the learner never touched
// stays out of the store, as a damaged one stays as it is when its reading is chosen again.
TEST_F(UserSettingsTest, NotePresentationWritesTheKeysOfItsChangedFieldsOnly)
{
    struct Case {
        const char* name;
        std::string before;
        NotePresentation chosen;
        std::vector<std::string> lines;  // the whole [options] section after the write
    };
    const Case cases[] = {
        {"unchanged", "", {}, {}},
        {"names", "", {.nameSystem = 1}, {"NoteNamesType=1"}},
        {"rest without maqam", "", {.restNoMaqam = 0}, {"NotesPres_Rest_NoMaqam=0"}},
        {"rest with maqam", "", {.restMaqam = 2}, {"NotesPres_Rest_Maqam=2"}},
        {"played without maqam", "", {.playNoMaqam = 2}, {"NotesPres_Play_NoMaqam=2"}},
        {"played with maqam", "", {.playMaqam = 0}, {"NotesPres_Play_Maqam=0"}},
        {"a damaged value read as its default and chosen again", "[options]\nNotesPres_Play_Maqam=x\n", {},
         {"NotesPres_Play_Maqam=x"}},
        {"back to the default", "[options]\nNoteNamesType=1\n", {}, {"NoteNamesType=0"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const std::string name = std::string(c.name) + ".conf";
        UserSettings settings = open(c.before, name);
        settings.setNotePresentation(c.chosen);
        std::string expected = c.lines.empty() && c.before.empty() ? "" : "[options]\n";
        for (const std::string& line : c.lines)
            expected += line + "\n";
        EXPECT_EQ(stored(name), expected);
        EXPECT_EQ(open(stored(name), "again-" + name).notePresentation(), c.chosen);
    }
}

// Makes a file or folder unwritable for this process while it lives: by its mode for an ordinary
// user, by the immutable flag for root (whom the mode does not stop). ok() is false when neither
// is possible here.
class Unwritable {
public:
    explicit Unwritable(std::string path) : m_path(std::move(path)) { m_ok = change(true); }
    ~Unwritable()
    {
        if (m_ok)
            change(false);
    }
    bool ok() const { return m_ok; }

private:
    bool change(bool lock)
    {
        if (::geteuid() != 0) {
            struct stat st {};
            if (lock && ::stat(m_path.c_str(), &st) == 0)
                m_mode = st.st_mode;
            return ::chmod(m_path.c_str(), lock ? m_mode & 0555 : m_mode) == 0;
        }
        const int fd = ::open(m_path.c_str(), O_RDONLY);
        int flags = 0;
        bool done = fd >= 0 && ::ioctl(fd, FS_IOC_GETFLAGS, &flags) == 0;
        flags = lock ? (flags | FS_IMMUTABLE_FL) : (flags & ~FS_IMMUTABLE_FL);
        done = done && ::ioctl(fd, FS_IOC_SETFLAGS, &flags) == 0;
        if (fd >= 0)
            ::close(fd);
        return done;
    }

    std::string m_path;
    mode_t m_mode = 0;
    bool m_ok = false;
};

// A profile that cannot be written (a locked-down account, a read-only disk): the learner's
// changes hold for this run, nothing crashes, and every choice already stored survives untouched.
TEST_F(UserSettingsTest, UnwritableStoreKeepsStoredChoicesAndTheSessionsChanges)
{
    const std::string before = "[options]\nUdOrient=3\napproxQrt=False\nNoteNamesType=1\n";
    const std::string path = m_dir.write("Tarabix.conf", before);
    {
        const Unwritable folder(m_dir.path("."));
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
