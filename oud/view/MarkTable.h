#pragma once

#include <QRgb>
#include <QString>

#include <array>
#include <optional>

namespace tarabix {

// The mark strip holds six cells side by side: 0 to 4 the finger marks (0 = open string), 5 the
// mark of the resting scale.
inline constexpr int kMarkCellCount = 6;
inline constexpr int kRestingMarkCell = 5;

// Per cell: the colour that is not copied when the mark is drawn, and the distance from the cell's
// top-left corner to its centre.
struct MarkRecord {
    QRgb transparent = 0;
    int xOffset = 0;
    int yOffset = 0;
    bool operator==(const MarkRecord&) const = default;
};

using MarkTable = std::array<MarkRecord, kMarkCellCount>;

// One line per cell: "cell #rrggbb x-offset y-offset"; lines starting with '#' are comments.
QString formatMarkTable(const MarkTable& table);

// Empty (with a reason in *error) when a cell is missing, repeated, out of order or malformed,
// or an offset lies outside a cell of the given size.
std::optional<MarkTable> parseMarkTable(const QString& text, int cellWidth, int cellHeight, QString* error);

}  // namespace tarabix
