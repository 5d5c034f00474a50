#include "settings/IniText.h"
#include "settings/cInifile.h"
#include "tests/fuzz/FuzzTempFile.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace {

// Every section and key of any text can be listed, read and edited; the edited text reads back
// with the edit in place.
void exerciseText(std::string_view bytes)
{
    tarabix::IniText ini(bytes);
    if (ini.text() != bytes)
        __builtin_trap();
    for (const std::string& section : ini.sectionNames()) {
        const auto keys = ini.keyNames(section);
        if (!keys)
            continue;
        for (const std::string& key : *keys)
            (void)ini.value(section, key);
    }
    tarabix::IniText edited(bytes);
    const auto sections = edited.sectionNames();
    const std::string section = sections.empty() ? std::string("options") : sections.back();
    edited.setValue(section, "fuzzKey", "some value");
    const auto read = tarabix::IniText(edited.text()).value(section, "fuzzKey");
    if (!read || *read != "some value")
        __builtin_trap();
    edited.deleteKey(section, "fuzzKey");
    edited.deleteSection(section);
    (void)edited.text();
}

// The same text through the file-based reader the maqam loader uses.
void exerciseFile(std::string_view bytes)
{
    const std::string& path = tarabix::fuzz::tempPath("ini");
    if (!tarabix::fuzz::writeTempFile(path, bytes))
        return;
    tarabix::cInifile ini;
    ini.setPath(path);
    (void)ini.Sections();
    // Every read goes back to the file, so only the first few names are read: the text reader
    // above already walks all of them.
    const auto sections = ini.EnumerateAllSections();
    for (size_t s = 0; s < sections.size() && s < 8; ++s) {
        ini.setSection(sections[s]);
        (void)ini.INISection();
        const auto keys = ini.EnumerateCurrentSection();
        for (size_t k = 0; k < keys.size() && k < 8; ++k) {
            ini.setKey(keys[k]);
            if (ini.Value().size() >= tarabix::cInifile::kValueBufferSize)
                __builtin_trap();
            (void)ini.LongValue(-1);
        }
    }
    ini.setSection("q_fuzz");
    ini.setKey("name");
    ini.setValue(bytes.substr(0, 40));
    ini.DeleteKey();
    ini.DeleteSection();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    exerciseText(bytes);
    exerciseFile(bytes);
    (void)tarabix::cInifile::CLngDefault(bytes, 7);
    return 0;
}
