#pragma once

#include <QString>

class QKeyEvent;

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

// The cell of a physical key, by its position on a PC keyboard (the scan code of the US-layout key
// that sits there: 2 for "1", 16 for "Q", 30 for "A", 44 for "Z", 43 for "\"), so the grid lies
// the same under the fingers on AZERTY, German, Arabic or any other layout.
KeyGridCell keyGridCellAtScanCode(int scanCode);

// The key event's physical position as such a scan code where the platform reports it (X11,
// Wayland, Windows), else 0.
int physicalScanCode(const QKeyEvent& event);

// The cell of a key event: by position when the platform tells it, else by the key's meaning.
KeyGridCell keyGridCell(const QKeyEvent& event);

// The key left of "1" (scan code 41), which moves the rows down like the Down arrow.
bool isKeyLeftOfOne(const QKeyEvent& event);

// The caption of a cell's key for the guide labels over the fingerboard ("Q", "1", "[", "Bksp").
QString keyGridCaption(KeyGridCell cell);

}  // namespace tarabix
