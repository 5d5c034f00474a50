#include "settings/cInifile.h"

#include "tests/common/TempFolder.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

namespace tarabix {
namespace {

using namespace std::string_literals;

cInifile iniAt(const std::string& path, const std::string& section = {}, const std::string& key = {}, const std::string& fallback = {})
{
    cInifile ini;
    ini.setPath(path);
    ini.setSection(section);
    ini.setKey(key);
    ini.setDefault(fallback);
    return ini;
}

TEST(cInifile, ReadsValuesLikeTheProfileCalls)
{
    const test::TempFolder dir("ini_reads");
    const std::string path = dir.write("defs.ini",
        "orphan=before any section\r\n[Q_Rast]\r\n  Name  =   Rast   \r\n; name=commented out\r\nquoted=\"  spaced  \"\r\n"
        "half=\"open\r\ninline=a ; not a comment\r\nnoequals\r\ndup=first\r\ndup=second\r\nempty=\r\n"
        "[q_rast]\r\nlate=hidden by the first section of that name\r\n[last]\ntab\t=\tlf line end");
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"q_rast", "name", "Rast"},       {"Q_RAST", "NAME", "Rast"},          {"q_rast", "; name", "(default)"},
        {"q_rast", "quoted", "  spaced  "}, {"q_rast", "half", "\"open"},     {"q_rast", "inline", "a ; not a comment"},
        {"q_rast", "noequals", "(default)"}, {"q_rast", "dup", "first"},      {"q_rast", "empty", ""},
        {"q_rast", "late", "(default)"},  {"q_rast", "orphan", "(default)"},   {"last", "tab", "lf line end"},
        {"absent", "name", "(default)"},
    };
    for (const auto& [section, key, expected] : cases)
        EXPECT_EQ(iniAt(path, section, key, "(default)   ").Value(), expected) << section << "/" << key;

    EXPECT_EQ(iniAt(dir.write("long.ini", "[s]\r\nk=" + std::string(300, 'x') + "\r\n"), "s", "k").Value(), std::string(254, 'x'));  // the caller's buffer
    const cInifile missing = iniAt(dir.path("absent.ini"), "q_rast", "name", "fallback");
    EXPECT_EQ(missing.Value(), "fallback");
    EXPECT_TRUE(missing.EnumerateAllSections().empty());
    EXPECT_EQ(iniAt(dir.path(""), "q_rast", "name").Value(), "");  // a folder
}

// maqams.ini is read as the list of its sections, in file order; a list too long for the buffer
// is cut inside its last name, which loses its NUL.
TEST(cInifile, SectionListKeepsFileOrderAndIsCutToTheBuffer)
{
    const test::TempFolder dir("ini_lists");
    cInifile ini = iniAt(dir.write("lists.ini", "[zeta]\r\nb=1\r\n[]\r\nx=1\r\n[Alpha]\r\n"));
    EXPECT_EQ(ini.Sections(), "zeta\0\0Alpha\0"s);
    EXPECT_EQ(ini.EnumerateAllSections(), (std::vector<std::string>{"zeta", "Alpha"}));

    std::string text;
    for (int i = 0; i < 1000; ++i)
        text += "[section" + std::to_string(1000 + i) + "]\r\n";  // 12 characters each with the NUL
    ini.setPath(dir.write("many.ini", text));
    EXPECT_EQ(ini.Sections().size(), 8190u);
    const auto names = ini.EnumerateAllSections();
    ASSERT_EQ(names.size(), 682u);  // 8190 / 12: the 683rd name is cut and loses its NUL
    EXPECT_EQ(names.back(), "section1681");
}

TEST(cInifile, BrokenFilesReadWithoutFault)
{
    const test::TempFolder dir("ini_broken");
    const std::string garbage("\0\xff[\r\r\n]]=[=\n\n[unclosed\n[ok]\n\0k=\0v\n"s);
    cInifile ini = iniAt(dir.write("bad.ini", garbage), "ok", "\0k"s);
    EXPECT_EQ(ini.EnumerateAllSections(), (std::vector<std::string>{"ok"}));
    EXPECT_EQ(ini.Value(), "\0v"s);
}

}  // namespace
}  // namespace tarabix
