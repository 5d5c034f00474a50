#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarabix {

// The text of one INI file, read and edited the way the classic private-profile functions do it:
// - section and key names compare without regard to letter case; the first match wins;
// - names and values are trimmed of blanks; a value wrapped in matching '"' or '\'' quotes loses them;
// - lines starting with ';' are comments, lines before the first section and lines without '='
//   belong to no entry; all of them are kept as they are when the file is edited;
// - an edit changes only the lines it concerns, so comments, blank lines, layout and line ends of
//   the rest of the file survive. New lines take the file's own line end (CR LF for a new file).
class IniText {
public:
    explicit IniText(std::string_view text = {});

    // Section names in file order, as written (duplicates and empty names included).
    std::vector<std::string> sectionNames() const;
    // The key names of the first section called `section`; empty when there is no such section.
    std::optional<std::vector<std::string>> keyNames(std::string_view section) const;
    std::optional<std::string> value(std::string_view section, std::string_view key) const;

    // Each returns whether the text changed.
    bool setValue(std::string_view section, std::string_view key, std::string_view value);
    bool deleteKey(std::string_view section, std::string_view key);
    bool deleteSection(std::string_view section);  // every section of that name, with its lines

    std::string text() const;

private:
    enum class Kind { Other, Header, Entry };
    struct Line {
        std::string body;  // without its line end
        std::string end;   // "\r\n", "\n" or "" for a last line without one
        Kind kind = Kind::Other;
        std::string name;   // section name of a header, key of an entry
        std::string value;  // value of an entry
    };

    void classify(Line& line) const;
    std::optional<size_t> findSection(std::string_view section) const;
    size_t sectionEnd(size_t header) const;  // index of the next header, or the line count
    std::optional<size_t> findKey(size_t header, std::string_view key) const;
    void insertLine(size_t at, std::string body);

    std::vector<Line> m_lines;
    std::string m_newLineEnd = "\r\n";
};

}  // namespace tarabix
