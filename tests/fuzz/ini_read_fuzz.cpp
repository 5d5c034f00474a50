#include "settings/IniText.h"
#include "settings/cInifile.h"
#include "tests/fuzz/FuzzTempFile.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// Every section and key of any text can be listed, read and edited in memory, and the edited text
// reads back with the edit in place; then the same text through the file-based reader the maqam
// loader uses.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    tarabix::IniText ini(bytes);
    if (ini.text() != bytes)
        __builtin_trap();
    for (const std::string& section : ini.sectionNames())
        if (const auto keys = ini.keyNames(section))
            for (const std::string& key : *keys)
                (void)ini.value(section, key);
    const auto sections = ini.sectionNames();
    const std::string section = sections.empty() ? std::string("options") : sections.back();
    ini.setValue(section, "fuzzKey", "some value");
    if (tarabix::IniText(ini.text()).value(section, "fuzzKey") != "some value")
        __builtin_trap();
    ini.deleteKey(section, "fuzzKey");
    ini.deleteSection(section);
    (void)ini.text();

    const std::string& path = tarabix::fuzz::tempPath("ini");
    if (!tarabix::fuzz::writeTempFile(path, bytes))
        return 0;
    tarabix::cInifile file;
    file.setPath(path);
    // Every read goes back to the file, so only the first few names are read: the text reader
    // above already walks all of them.
    const auto names = file.EnumerateAllSections();  // through Sections()
    for (size_t s = 0; s < names.size() && s < 8; ++s) {
        file.setSection(names[s]);
        const auto keys = file.EnumerateCurrentSection();  // through INISection()
        for (size_t k = 0; k < keys.size() && k < 8; ++k) {
            file.setKey(keys[k]);
            if (file.Value().size() >= tarabix::cInifile::kValueBufferSize)
                __builtin_trap();
            (void)file.LongValue(-1);
        }
    }
    file.setSection("q_fuzz");
    file.setKey("name");
    file.setValue(bytes.substr(0, 40));
    file.DeleteKey();
    file.DeleteSection();
    (void)tarabix::cInifile::CLngDefault(bytes, 7);
    return 0;
}
