#include "settings/cInifile.h"

#include "base/ReadWholeFile.h"
#include "settings/IniText.h"
#include "settings/TextNumbers.h"

#include <cstdio>
#include <filesystem>
#include <optional>
#include <system_error>

namespace tarabix {
namespace {

// A definition file is a few kilobytes; anything this large is not one of ours and is treated
// as unreadable rather than loaded into memory.
constexpr std::uintmax_t kMaxIniFileBytes = 16u << 20;

enum class FileState { Missing, Unusable, Read };

FileState readIni(const std::string& path, std::string& text)
{
    text.clear();
    std::error_code ec;
    const auto status = std::filesystem::status(path, ec);
    if (path.empty() || status.type() == std::filesystem::file_type::not_found)
        return FileState::Missing;
    if (ec || !std::filesystem::is_regular_file(status))
        return FileState::Unusable;
    const auto size = std::filesystem::file_size(path, ec);
    if (ec || size > kMaxIniFileBytes)
        return FileState::Unusable;
    return readWholeFile(path, text) == 0 ? FileState::Read : FileState::Unusable;
}

bool writeFile(const std::string& path, const std::string& text)
{
    std::FILE* file = std::fopen(path.c_str(), "wb");
    if (!file)
        return false;
    const bool written = std::fwrite(text.data(), 1, text.size(), file) == text.size();
    return std::fclose(file) == 0 && written;
}

// The copy into a caller's buffer of `size` characters: one place is kept for the closing NUL.
std::string fitValue(std::string_view text, size_t size)
{
    return std::string(text.substr(0, size - 1));
}

// A packed list keeps two places for its closing NULs; a list cut short therefore ends inside
// its last name, which loses its own NUL.
std::string fitList(const std::vector<std::string>& names, size_t size)
{
    std::string packed;
    for (const std::string& name : names) {
        packed += name;
        packed += '\0';
    }
    if (packed.size() + 1 > size)
        packed.resize(size - 2);
    return packed;
}

std::string defaultText(const std::string& text)
{
    // The default comes back without trailing blanks, as the profile calls give it.
    const size_t last = text.find_last_not_of(' ');
    return last == std::string::npos ? std::string() : text.substr(0, last + 1);
}

std::vector<std::string> splitPacked(const std::string& packed, bool keepEmpty)
{
    std::vector<std::string> names;
    size_t start = 0;
    for (size_t nul = packed.find('\0'); nul != std::string::npos; nul = packed.find('\0', start)) {
        if (keepEmpty || nul > start)
            names.push_back(packed.substr(start, nul - start));
        start = nul + 1;
    }
    return names;
}

// Applies one edit to the file. Deleting what is not there succeeds without touching the disk;
// a new file is created only for a value to store.
template <typename Edit>
int32_t editFile(const std::string& path, Edit edit)
{
    std::string text;
    const FileState state = readIni(path, text);
    if (state == FileState::Unusable)
        return 0;
    IniText ini(text);
    if (!edit(ini))
        return 1;
    return writeFile(path, ini.text()) ? 1 : 0;
}

}  // namespace

std::string cInifile::Value() const
{
    std::string text;
    std::optional<std::string> found;
    if (readIni(m_path, text) == FileState::Read)
        found = IniText(text).value(m_section, m_key);
    return fitValue(found ? *found : defaultText(m_default), kValueBufferSize);
}

void cInifile::setValue(std::string_view text)
{
    std::string value(text);
    std::erase(value, '\0');
    m_lastReturnCode = editFile(m_path, [&](IniText& ini) { return ini.setValue(m_section, m_key, value); });
}

int32_t cInifile::LongValue(int32_t defaultValue) const
{
    std::string text;
    std::optional<std::string> found;
    if (readIni(m_path, text) == FileState::Read)
        found = IniText(text).value(m_section, m_key);
    if (!found || found->empty())
        return defaultValue;
    // Like the profile call: the leading decimal digits count, anything after them is ignored, a
    // text without digits reads as 0, and the number wraps round at 32 bits.
    const std::string& value = *found;
    size_t i = 0;
    const bool negative = i < value.size() && value[i] == '-';
    if (i < value.size() && (value[i] == '-' || value[i] == '+'))
        ++i;
    uint32_t magnitude = 0;
    for (; i < value.size() && value[i] >= '0' && value[i] <= '9'; ++i)
        magnitude = magnitude * 10u + static_cast<uint32_t>(value[i] - '0');
    return static_cast<int32_t>(negative ? 0u - magnitude : magnitude);
}

void cInifile::DeleteKey()
{
    m_lastReturnCode = editFile(m_path, [&](IniText& ini) { return ini.deleteKey(m_section, m_key); });
}

void cInifile::DeleteSection()
{
    m_lastReturnCode = editFile(m_path, [&](IniText& ini) { return ini.deleteSection(m_section); });
}

std::string cInifile::INISection() const
{
    std::string text;
    if (readIni(m_path, text) == FileState::Read)
        if (const auto keys = IniText(text).keyNames(m_section))
            return fitList(*keys, kListBufferSize);
    return fitValue(defaultText(m_default), kListBufferSize);
}

void cInifile::setINISection(std::string_view)
{
    DeleteSection();
}

std::string cInifile::Sections() const
{
    std::string text;
    if (readIni(m_path, text) == FileState::Read)
        return fitList(IniText(text).sectionNames(), kListBufferSize);
    return fitValue(defaultText(m_default), kListBufferSize);
}

std::vector<std::string> cInifile::EnumerateCurrentSection() const
{
    return splitPacked(INISection(), true);
}

std::vector<std::string> cInifile::EnumerateAllSections() const
{
    return splitPacked(Sections(), false);
}

int32_t cInifile::CLngDefault(std::string_view text, int32_t defaultValue)
{
    return textToInt32(text).value_or(defaultValue);
}

}  // namespace tarabix
