#include "settings/cInifile.h"

#include "tests/common/TempFolder.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

namespace tarabix {
namespace {

using namespace std::string_literals;

cInifile iniAt(const std::string& path, const std::string& section = {}, const std::string& key = {})
{
    cInifile ini;
    ini.setPath(path);
    ini.setSection(section);
    ini.setKey(key);
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
    for (const auto& [section, key, expected] : cases) {
        cInifile ini = iniAt(path, section, key);
        ini.setDefault("(default)   ");
        EXPECT_EQ(ini.Value(), expected) << section << "/" << key;
    }

    cInifile missing = iniAt(dir.path("absent.ini"), "q_rast", "name");
    missing.setDefault("fallback");
    EXPECT_EQ(missing.Value(), "fallback");
    EXPECT_EQ(missing.LongValue(7), 7);
    EXPECT_TRUE(missing.EnumerateAllSections().empty());
    EXPECT_EQ(iniAt(dir.path(""), "q_rast", "name").Value(), "");  // a folder
}

TEST(cInifile, ValueAndDefaultAreCutToTheBuffer)
{
    const test::TempFolder dir("ini_buffer");
    const std::string longText(300, 'x');
    cInifile ini = iniAt(dir.write("long.ini", "[s]\r\nk=" + longText + "\r\n"), "s", "k");
    EXPECT_EQ(ini.Value(), std::string(254, 'x'));
    ini.setKey("absent");
    ini.setDefault(longText);
    EXPECT_EQ(ini.Value(), std::string(254, 'x'));
}

TEST(cInifile, LongValueTakesLeadingDigits)
{
    const test::TempFolder dir("ini_long");
    const std::string path = dir.write("n.ini", "[n]\r\nplain=42\r\nneg=-7\r\ntail=12abc\r\nwords=abc\r\nempty=\r\nwrap=4294967297\r\n");
    const std::pair<const char*, int32_t> cases[] = {{"plain", 42}, {"neg", -7}, {"tail", 12}, {"words", 0}, {"empty", 99}, {"absent", 99}, {"wrap", 1}};
    for (const auto& [key, expected] : cases)
        EXPECT_EQ(iniAt(path, "N", key).LongValue(99), expected) << key;
    // The number conversion of a whole text, unlike LongValue's leading digits.
    EXPECT_EQ(cInifile::CLngDefault(" -12 ", 9), -12);
    EXPECT_EQ(cInifile::CLngDefault("12abc", 9), 9);
}

TEST(cInifile, SectionListsKeepOrderAndTreatEmptyNamesApart)
{
    const test::TempFolder dir("ini_lists");
    const std::string path = dir.write("lists.ini", "[zeta]\r\nb=1\r\n=empty key\r\n;comment=x\r\na=2\r\n[]\r\nx=1\r\n[Alpha]\r\n");
    cInifile ini = iniAt(path, "ZETA");
    EXPECT_EQ(ini.Sections(), "zeta\0\0Alpha\0"s);
    EXPECT_EQ(ini.EnumerateAllSections(), (std::vector<std::string>{"zeta", "Alpha"}));
    EXPECT_EQ(ini.INISection(), "b\0\0a\0"s);
    EXPECT_EQ(ini.EnumerateCurrentSection(), (std::vector<std::string>{"b", "", "a"}));
    ini.setSection("alpha");
    EXPECT_EQ(ini.INISection(), "");
    EXPECT_TRUE(ini.EnumerateCurrentSection().empty());
}

TEST(cInifile, LongSectionListIsCutInsideItsLastName)
{
    const test::TempFolder dir("ini_many");
    std::string text;
    for (int i = 0; i < 1000; ++i)
        text += "[section" + std::to_string(1000 + i) + "]\r\n";  // 12 characters each with the NUL
    const cInifile ini = iniAt(dir.write("many.ini", text));
    EXPECT_EQ(ini.Sections().size(), 8190u);
    const auto names = ini.EnumerateAllSections();
    ASSERT_EQ(names.size(), 682u);  // 8190 / 12: the 683rd name is cut and loses its NUL
    EXPECT_EQ(names.back(), "section1681");
}

TEST(cInifile, WritesAndDeletesKeepTheRestOfTheFile)
{
    const test::TempFolder dir("ini_writes");
    const std::string original = "; maqam definitions\n[q_rast]\nName = Rast\ncents=0\n\n[q_saba]\nname=Saba  ; keep me\n";
    const std::string path = dir.write("w.ini", original);
    // Operations: '=' writes the value, 'k' deletes the key, 's' deletes the section, 'i' writes the section's text.
    struct Case { const char* what; char op; const char* section; const char* key; std::string value, expected; };
    const Case cases[] = {
        {"replace value, key keeps its spelling", '=', "Q_RAST", "name", "Rast 2",
         "; maqam definitions\n[q_rast]\nName=Rast 2\ncents=0\n\n[q_saba]\nname=Saba  ; keep me\n"},
        {"new key before the blank line", '=', "q_rast", "ipc", "0,2",
         "; maqam definitions\n[q_rast]\nName = Rast\ncents=0\nipc=0,2\n\n[q_saba]\nname=Saba  ; keep me\n"},
        {"new section at the end", '=', "q_kurd", "name", "Kurd", original + "[q_kurd]\nname=Kurd\n"},
        {"NULs removed, not cut", '=', "q_saba", "x", "a\0b\0\0c"s, original + "x=abc\n"},
        {"delete key", 'k', "q_rast", "NAME", "", "; maqam definitions\n[q_rast]\ncents=0\n\n[q_saba]\nname=Saba  ; keep me\n"},
        {"delete section", 's', "q_rast", "", "", "; maqam definitions\n[q_saba]\nname=Saba  ; keep me\n"},
        {"writing a section's text removes it", 'i', "Q_Saba", "", "name=ignored", "; maqam definitions\n[q_rast]\nName = Rast\ncents=0\n\n"},
        {"deleting what is absent changes nothing", 'k', "q_rast", "absent", "", original},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        dir.write("w.ini", original);
        cInifile ini = iniAt(path, c.section, c.key);
        if (c.op == '=')
            ini.setValue(c.value);
        else if (c.op == 'k')
            ini.DeleteKey();
        else if (c.op == 's')
            ini.DeleteSection();
        else
            ini.setINISection(c.value);
        EXPECT_TRUE(ini.Success());
        EXPECT_NE(ini.LastReturnCode(), 0);
        EXPECT_EQ(dir.read("w.ini"), c.expected);
    }
}

TEST(cInifile, NewFileGetsCrLfAndAFailedWriteOnlySetsTheReturnCode)
{
    const test::TempFolder dir("ini_new");
    cInifile ini = iniAt(dir.path("new.ini"), "q_rast", "name");
    ini.setValue("Rast");
    EXPECT_TRUE(ini.Success());
    ini.setKey("ipc");
    ini.setValue("0");
    EXPECT_EQ(dir.read("new.ini"), "[q_rast]\r\nname=Rast\r\nipc=0\r\n");

    // A last line without a line end gets one before anything is added after it.
    dir.write("open.ini", "[a]\r\nk=1");
    cInifile open = iniAt(dir.path("open.ini"), "a", "j");
    open.setValue("2");
    EXPECT_EQ(dir.read("open.ini"), "[a]\r\nk=1\r\nj=2\r\n");

    cInifile nowhere = iniAt(dir.path("no/such/folder/x.ini"), "s", "k");
    nowhere.setValue("v");
    EXPECT_EQ(nowhere.LastReturnCode(), 0);
    EXPECT_FALSE(nowhere.Success());
    const int32_t failed = nowhere.LastReturnCode();
    nowhere.setDefault("d");
    EXPECT_EQ(nowhere.Value(), "d");
    EXPECT_EQ(nowhere.LastReturnCode(), failed);  // reads leave it alone

    cInifile folder = iniAt(dir.path(""), "s", "k");
    folder.setValue("v");
    EXPECT_FALSE(folder.Success());
}

TEST(cInifile, BrokenFilesReadWithoutFault)
{
    const test::TempFolder dir("ini_broken");
    const std::string garbage("\0\xff[\r\r\n]]=[=\n\n[unclosed\n[ok]\n\0k=\0v\n"s);
    cInifile ini = iniAt(dir.write("bad.ini", garbage), "ok");
    EXPECT_EQ(ini.EnumerateAllSections(), (std::vector<std::string>{"ok"}));
    ini.setKey("\0k"s);
    EXPECT_EQ(ini.Value(), "\0v"s);
}

}  // namespace
}  // namespace tarabix
