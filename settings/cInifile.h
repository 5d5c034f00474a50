#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarabix {

// One INI file (a definition file such as maqams.ini), addressed through the current Section and
// Key. Reads and writes go to the file each time, like the private-profile calls the program was
// built around, including their limits: a value read comes back in a 255-character buffer (at
// most 254 characters), name lists in an 8192-character buffer. Nothing here throws; a missing or
// unreadable file reads as absent entries.
class cInifile {
public:
    static constexpr size_t kValueBufferSize = 255;
    static constexpr size_t kListBufferSize = 8192;

    const std::string& Path() const { return m_path; }
    void setPath(std::string path) { m_path = std::move(path); }
    const std::string& Section() const { return m_section; }
    void setSection(std::string section) { m_section = std::move(section); }
    const std::string& Key() const { return m_key; }
    void setKey(std::string key) { m_key = std::move(key); }
    const std::string& Default() const { return m_default; }
    void setDefault(std::string text) { m_default = std::move(text); }

    // Result of the last write or delete: non-zero for success. Reads leave it alone.
    int32_t LastReturnCode() const { return m_lastReturnCode; }
    bool Success() const { return m_lastReturnCode != 0; }

    std::string Value() const;
    void setValue(std::string_view text);  // NUL characters are removed before writing
    int32_t LongValue(int32_t defaultValue) const;
    void DeleteKey();
    void DeleteSection();

    // The key names of the current section, each followed by a NUL.
    std::string INISection() const;
    // Writing a section's text removes the whole section; the text itself is not stored.
    void setINISection(std::string_view text);
    // All section names of the file in file order, each followed by a NUL.
    std::string Sections() const;

    // The names of the packed lists above, in order. Empty key names (from "=value" lines) are
    // kept; empty section names (from "[]" lines) are left out.
    std::vector<std::string> EnumerateCurrentSection() const;
    std::vector<std::string> EnumerateAllSections() const;

    static int32_t CLngDefault(std::string_view text, int32_t defaultValue);

private:
    std::string m_path;
    std::string m_section;
    std::string m_key;
    std::string m_default;
    int32_t m_lastReturnCode = 0;
};

}  // namespace tarabix
