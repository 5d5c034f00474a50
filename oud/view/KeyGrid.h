#pragma once

#include <QString>

namespace tarabix {

// Four rows of the computer keyboard as a grid of strings and places: row 0 the digits row,
// row 3 the Z row; columns count from the left of each row.
struct KeyGridCell {
    int column = -1;
    int row = -1;
    bool valid() const { return column >= 0 && row >= 0; }
};

inline constexpr int kKeyGridRows = 4;
inline constexpr int kKeyGridColumns[kKeyGridRows] = {13, 12, 11, 10};

// The cell of a Qt key code, or an invalid cell for a key outside the grid. Backslash and A share
// row 2, column 0, so either key under the learner's little finger plays it.
KeyGridCell keyGridCell(int qtKey);

// The caption of a cell's key for the guide labels over the fingerboard ("Q", "1", "[", "Bksp").
QString keyGridCaption(KeyGridCell cell);

}  // namespace tarabix
