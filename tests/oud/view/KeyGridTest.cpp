#include "oud/view/KeyGrid.h"

#include <QKeyEvent>

#include <gtest/gtest.h>

namespace tarabix {
namespace {

TEST(KeyGrid, RowsByKeyMeaningWithBackslashSharingA)
{
    struct Case { int key; int column; int row; };
    const Case cases[] = {
        {Qt::Key_1, 0, 0}, {Qt::Key_0, 9, 0}, {Qt::Key_Backspace, 12, 0}, {Qt::Key_Q, 0, 1},
        {Qt::Key_BracketRight, 11, 1}, {Qt::Key_A, 0, 2}, {Qt::Key_Backslash, 0, 2},
        {Qt::Key_Apostrophe, 10, 2}, {Qt::Key_Z, 0, 3}, {Qt::Key_Slash, 9, 3},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.key);
        const KeyGridCell cell = keyGridCell(c.key);
        EXPECT_EQ(cell.column, c.column);
        EXPECT_EQ(cell.row, c.row);
        EXPECT_FALSE(keyGridCaption(cell).isEmpty());
    }
    EXPECT_FALSE(keyGridCell(Qt::Key_Space).valid());
    EXPECT_FALSE(keyGridCell(Qt::Key_F1).valid());
}

TEST(KeyGrid, PhysicalPositionsIgnoreTheLayout)
{
    // On AZERTY the key at the Q position types "A", and the one at the A position types "Q".
    EXPECT_EQ(keyGridCellAtScanCode(16).row, 1);
    EXPECT_EQ(keyGridCellAtScanCode(16).column, 0);
    EXPECT_EQ(keyGridCellAtScanCode(30).row, 2);
    EXPECT_EQ(keyGridCellAtScanCode(43).row, 2);
    EXPECT_EQ(keyGridCellAtScanCode(43).column, 0);
    EXPECT_EQ(keyGridCellAtScanCode(14).column, 12);
    EXPECT_EQ(keyGridCellAtScanCode(53).column, 9);
    EXPECT_FALSE(keyGridCellAtScanCode(57).valid());  // the space bar

    // Without a scan code (synthesised events) the key's meaning decides.
    const QKeyEvent typed(QEvent::KeyPress, Qt::Key_W, Qt::NoModifier);
    EXPECT_EQ(keyGridCell(typed).column, 1);
    EXPECT_EQ(keyGridCell(typed).row, 1);
}

}  // namespace
}  // namespace tarabix
