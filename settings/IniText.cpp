#include "settings/IniText.h"

#include "base/Text.h"

namespace tarabix {
namespace {

std::string_view unquote(std::string_view value)
{
    if (value.size() >= 2 && (value.front() == '"' || value.front() == '\'') && value.back() == value.front())
        return value.substr(1, value.size() - 2);
    return value;
}

}  // namespace

IniText::IniText(std::string_view text)
{
    bool endSeen = false;
    while (!text.empty()) {
        const size_t lf = text.find('\n');
        Line line;
        if (lf == std::string_view::npos) {
            line.body = std::string(text);
            text = {};
        } else {
            const size_t bodyEnd = (lf > 0 && text[lf - 1] == '\r') ? lf - 1 : lf;
            line.body = std::string(text.substr(0, bodyEnd));
            line.end = std::string(text.substr(bodyEnd, lf + 1 - bodyEnd));
            text.remove_prefix(lf + 1);
            if (!endSeen) {
                m_newLineEnd = line.end;
                endSeen = true;
            }
        }
        classify(line);
        m_lines.push_back(std::move(line));
    }
}

void IniText::classify(Line& line) const
{
    const std::string_view body = trim(line.body);
    line.kind = Kind::Other;
    if (body.empty() || body.front() == ';')
        return;
    if (body.front() == '[') {
        const size_t close = body.find(']');
        if (close != std::string_view::npos) {
            line.kind = Kind::Header;
            line.name = std::string(trim(body.substr(1, close - 1)));
            return;
        }
    }
    const size_t eq = body.find('=');
    if (eq == std::string_view::npos)
        return;
    line.kind = Kind::Entry;
    line.name = std::string(trim(body.substr(0, eq)));
    line.value = std::string(unquote(trim(body.substr(eq + 1))));
}

std::vector<std::string> IniText::sectionNames() const
{
    std::vector<std::string> names;
    for (const Line& line : m_lines)
        if (line.kind == Kind::Header)
            names.push_back(line.name);
    return names;
}

std::optional<size_t> IniText::findSection(std::string_view section) const
{
    for (size_t i = 0; i < m_lines.size(); ++i)
        if (m_lines[i].kind == Kind::Header && equalsNoCase(m_lines[i].name, section))
            return i;
    return std::nullopt;
}

size_t IniText::sectionEnd(size_t header) const
{
    size_t i = header + 1;
    while (i < m_lines.size() && m_lines[i].kind != Kind::Header)
        ++i;
    return i;
}

std::optional<size_t> IniText::findKey(size_t header, std::string_view key) const
{
    const size_t end = sectionEnd(header);
    for (size_t i = header + 1; i < end; ++i)
        if (m_lines[i].kind == Kind::Entry && equalsNoCase(m_lines[i].name, key))
            return i;
    return std::nullopt;
}

std::optional<std::vector<std::string>> IniText::keyNames(std::string_view section) const
{
    const auto header = findSection(section);
    if (!header)
        return std::nullopt;
    std::vector<std::string> keys;
    const size_t end = sectionEnd(*header);
    for (size_t i = *header + 1; i < end; ++i)
        if (m_lines[i].kind == Kind::Entry)
            keys.push_back(m_lines[i].name);
    return keys;
}

std::optional<std::string> IniText::value(std::string_view section, std::string_view key) const
{
    const auto header = findSection(section);
    if (!header)
        return std::nullopt;
    const auto entry = findKey(*header, key);
    if (!entry)
        return std::nullopt;
    return m_lines[*entry].value;
}

void IniText::insertLine(size_t at, std::string body)
{
    // The line before the new one may be the last of the file, without a line end of its own.
    if (at > 0 && m_lines[at - 1].end.empty())
        m_lines[at - 1].end = m_newLineEnd;
    Line line;
    line.body = std::move(body);
    line.end = m_newLineEnd;
    classify(line);
    m_lines.insert(m_lines.begin() + static_cast<std::ptrdiff_t>(at), std::move(line));
}

bool IniText::setValue(std::string_view section, std::string_view key, std::string_view value)
{
    const std::string entry = std::string(key) + "=" + std::string(value);
    const auto header = findSection(section);
    if (!header) {
        insertLine(m_lines.size(), "[" + std::string(section) + "]");
        insertLine(m_lines.size(), entry);
        return true;
    }
    if (const auto found = findKey(*header, key)) {
        Line& line = m_lines[*found];
        const std::string body = line.name + "=" + std::string(value);
        if (line.body == body)
            return false;
        line.body = body;
        classify(line);
        return true;
    }
    // A new key goes after the section's last non-blank line, so blank lines that separate it from
    // the next section stay where they are.
    size_t at = sectionEnd(*header);
    while (at > *header + 1 && trim(m_lines[at - 1].body).empty())
        --at;
    insertLine(at, entry);
    return true;
}

bool IniText::deleteKey(std::string_view section, std::string_view key)
{
    const auto header = findSection(section);
    if (!header)
        return false;
    const auto entry = findKey(*header, key);
    if (!entry)
        return false;
    m_lines.erase(m_lines.begin() + static_cast<std::ptrdiff_t>(*entry));
    return true;
}

bool IniText::deleteSection(std::string_view section)
{
    bool changed = false;
    while (const auto header = findSection(section)) {
        m_lines.erase(m_lines.begin() + static_cast<std::ptrdiff_t>(*header),
                     m_lines.begin() + static_cast<std::ptrdiff_t>(sectionEnd(*header)));
        changed = true;
    }
    return changed;
}

std::string IniText::text() const
{
    std::string out;
    for (const Line& line : m_lines) {
        out += line.body;
        out += line.end;
    }
    return out;
}

}  // namespace tarabix
