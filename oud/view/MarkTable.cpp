#include "oud/view/MarkTable.h"

#include <QColor>
#include <QStringList>

namespace tarabix {

QString formatMarkTable(const MarkTable& table)
{
    QString text = QStringLiteral("# cell transparent-colour x-offset y-offset\n");
    for (int cell = 0; cell < kMarkCellCount; ++cell) {
        const MarkRecord& r = table[static_cast<size_t>(cell)];
        text += QStringLiteral("%1 %2 %3 %4\n")
                    .arg(cell)
                    .arg(QColor(r.transparent).name())
                    .arg(r.xOffset)
                    .arg(r.yOffset);
    }
    return text;
}

std::optional<MarkTable> parseMarkTable(const QString& text, int cellWidth, int cellHeight, QString* error)
{
    MarkTable table{};
    int nextCell = 0;
    int lineNumber = 0;
    const auto fail = [&](const QString& why) {
        if (error)
            *error = QStringLiteral("line %1: %2").arg(lineNumber).arg(why);
        return std::nullopt;
    };
    for (const QString& rawLine : text.split(QLatin1Char('\n'))) {
        ++lineNumber;
        const QString line = rawLine.trimmed();
        if (line.isEmpty() || line.startsWith(QLatin1Char('#')))
            continue;
        const QStringList fields = line.split(QLatin1Char(' '), Qt::SkipEmptyParts);
        if (fields.size() != 4)
            return fail(QStringLiteral("expected cell, colour, x offset and y offset"));
        bool okCell = false, okX = false, okY = false;
        const int cell = fields[0].toInt(&okCell);
        const QColor colour = QColor::fromString(fields[1]);
        const int x = fields[2].toInt(&okX);
        const int y = fields[3].toInt(&okY);
        if (!okCell || cell != nextCell)
            return fail(QStringLiteral("expected cell %1").arg(nextCell));
        if (!colour.isValid())
            return fail(QStringLiteral("bad colour '%1'").arg(fields[1]));
        if (!okX || !okY || x < 0 || y < 0 || x >= cellWidth || y >= cellHeight)
            return fail(QStringLiteral("offsets outside the %1 x %2 cell").arg(cellWidth).arg(cellHeight));
        table[static_cast<size_t>(cell)] = MarkRecord{colour.rgb(), x, y};
        ++nextCell;
    }
    if (nextCell != kMarkCellCount) {
        if (error)
            *error = QStringLiteral("%1 of %2 cells described").arg(nextCell).arg(kMarkCellCount);
        return std::nullopt;
    }
    return table;
}

}  // namespace tarabix
