#include "oud/view/KeyGrid.h"

#include <Qt>

#include <array>

namespace tarabix {
namespace {

constexpr std::array<int, 13> kRow0 = {Qt::Key_1, Qt::Key_2, Qt::Key_3, Qt::Key_4, Qt::Key_5, Qt::Key_6, Qt::Key_7,
                                       Qt::Key_8, Qt::Key_9, Qt::Key_0, Qt::Key_Minus, Qt::Key_Equal,
                                       Qt::Key_Backspace};
constexpr std::array<int, 12> kRow1 = {Qt::Key_Q, Qt::Key_W, Qt::Key_E, Qt::Key_R, Qt::Key_T, Qt::Key_Y,
                                       Qt::Key_U, Qt::Key_I, Qt::Key_O, Qt::Key_P, Qt::Key_BracketLeft,
                                       Qt::Key_BracketRight};
constexpr std::array<int, 11> kRow2 = {Qt::Key_A, Qt::Key_S, Qt::Key_D, Qt::Key_F, Qt::Key_G, Qt::Key_H,
                                       Qt::Key_J, Qt::Key_K, Qt::Key_L, Qt::Key_Semicolon, Qt::Key_Apostrophe};
constexpr std::array<int, 10> kRow3 = {Qt::Key_Z, Qt::Key_X, Qt::Key_C, Qt::Key_V, Qt::Key_B, Qt::Key_N,
                                       Qt::Key_M, Qt::Key_Comma, Qt::Key_Period, Qt::Key_Slash};

template <size_t N>
int columnIn(const std::array<int, N>& row, int key)
{
    for (size_t i = 0; i < N; ++i) {
        if (row[i] == key)
            return static_cast<int>(i);
    }
    return -1;
}

}  // namespace

KeyGridCell keyGridCell(int qtKey)
{
    if (qtKey == Qt::Key_Backslash)
        return {0, 2};
    if (int c = columnIn(kRow0, qtKey); c >= 0)
        return {c, 0};
    if (int c = columnIn(kRow1, qtKey); c >= 0)
        return {c, 1};
    if (int c = columnIn(kRow2, qtKey); c >= 0)
        return {c, 2};
    if (int c = columnIn(kRow3, qtKey); c >= 0)
        return {c, 3};
    return {};
}

QString keyGridCaption(KeyGridCell cell)
{
    if (!cell.valid() || cell.row >= kKeyGridRows || cell.column >= kKeyGridColumns[cell.row])
        return {};
    const int key = cell.row == 0   ? kRow0[cell.column]
                    : cell.row == 1 ? kRow1[cell.column]
                    : cell.row == 2 ? kRow2[cell.column]
                                    : kRow3[cell.column];
    if (key == Qt::Key_Backspace)
        return QStringLiteral("\u2190");
    return QString(QChar(key));
}

}  // namespace tarabix
