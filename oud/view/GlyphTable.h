#pragma once

#include <QString>

#include <array>
#include <optional>

namespace tarabix {

inline constexpr int kLetterGlyphCount = 14;
inline constexpr int kAccidentalGlyphCount = 4;

// Metrics of the note-name glyph strip. The letter glyphs stand in the strip in the order of
// their index (naming system + 2 x letter index: C, Do, D, Re, ... B, Si), packed without gaps;
// the four accidental glyphs follow (quarter-flat, flat, sharp, quarter-sharp), each
// accidentalWidth wide. Every glyph is `height` tall. Every name label is boxWidth x boxHeight.
struct GlyphTable {
    int height = 0;
    int accidentalWidth = 0;
    int boxWidth = 0;
    int boxHeight = 0;
    std::array<int, kLetterGlyphCount> letterWidths{};

    int letterX(int index) const;
    int accidentalX(int index) const;
    int stripWidth() const;
    bool operator==(const GlyphTable&) const = default;
};

// The glyph index of an accidental code (-1 quarter-flat, -2 flat, +2 sharp, +1 quarter-sharp);
// -1 for the natural and for any other code, which have no glyph.
int accidentalGlyphIndex(int accidentalCode);

// "key value..." lines: height, accidental-width, box, widths; '#' starts a comment line.
QString formatGlyphTable(const GlyphTable& table);

// Empty (with a reason in *error) when a key is missing or a value is out of range. The sizes are
// bounded so that a broken file can never ask for a huge picture.
std::optional<GlyphTable> parseGlyphTable(const QString& text, QString* error);

}  // namespace tarabix
