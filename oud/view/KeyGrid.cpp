#include "oud/view/KeyGrid.h"

#include <QGuiApplication>
#include <QKeyEvent>
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

// PC scan codes of the grid's positions, row by row (set 1; Linux's evdev numbers are the same).
constexpr std::array<int, 13> kScanRow0 = {2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14};
constexpr std::array<int, 12> kScanRow1 = {16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27};
constexpr std::array<int, 11> kScanRow2 = {30, 31, 32, 33, 34, 35, 36, 37, 38, 39, 40};
constexpr std::array<int, 10> kScanRow3 = {44, 45, 46, 47, 48, 49, 50, 51, 52, 53};
constexpr int kScanBackslash = 43;
constexpr int kScanLeftOfOne = 41;

}  // namespace

KeyGridCell keyGridCellAtScanCode(int scanCode)
{
    if (scanCode == kScanBackslash)
        return {0, 2};
    if (int c = columnIn(kScanRow0, scanCode); c >= 0)
        return {c, 0};
    if (int c = columnIn(kScanRow1, scanCode); c >= 0)
        return {c, 1};
    if (int c = columnIn(kScanRow2, scanCode); c >= 0)
        return {c, 2};
    if (int c = columnIn(kScanRow3, scanCode); c >= 0)
        return {c, 3};
    return {};
}

int physicalScanCode(const QKeyEvent& event)
{
    const quint32 native = event.nativeScanCode();
    if (native == 0)
        return 0;
    static const QString platform = QGuiApplication::platformName();
    // X keycodes are the kernel's key numbers plus 8.
    if (platform == QLatin1String("xcb") || platform.startsWith(QLatin1String("wayland")))
        return native > 8 ? static_cast<int>(native - 8) : 0;
    if (platform == QLatin1String("windows"))
        return static_cast<int>(native & 0xFF);
    return 0;
}

KeyGridCell keyGridCell(const QKeyEvent& event)
{
    if (const int scan = physicalScanCode(event))
        return keyGridCellAtScanCode(scan);
    return keyGridCell(event.key());
}

bool isKeyLeftOfOne(const QKeyEvent& event)
{
    if (const int scan = physicalScanCode(event))
        return scan == kScanLeftOfOne;
    return event.key() == Qt::Key_QuoteLeft;
}

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
