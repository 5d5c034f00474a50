#include "oud/view/GlyphTable.h"

#include <QStringList>

#include <numeric>

namespace tarabix {

namespace {

// Far above any sensible glyph or label, far below anything that could exhaust memory.
constexpr int kMaxGlyphSize = 200;

}  // namespace

int GlyphTable::letterX(int index) const
{
    return std::accumulate(letterWidths.begin(), letterWidths.begin() + index, 0);
}

int GlyphTable::accidentalX(int index) const
{
    return letterX(kLetterGlyphCount) + index * accidentalWidth;
}

int GlyphTable::stripWidth() const
{
    return accidentalX(kAccidentalGlyphCount);
}

int accidentalGlyphIndex(int accidentalCode)
{
    switch (accidentalCode) {
    case -1: return 0;
    case -2: return 1;
    case 2: return 2;
    case 1: return 3;
    default: return -1;
    }
}

QString formatGlyphTable(const GlyphTable& table)
{
    QString widths;
    for (int w : table.letterWidths)
        widths += QStringLiteral(" %1").arg(w);
    return QStringLiteral(
               "# glyph height, accidental glyph width, label box width and height,\n"
               "# letter glyph widths by naming system + 2 x letter (C Do D Re E Mi F Fa G Sol A La B Si)\n"
               "height %1\naccidental-width %2\nbox %3 %4\nwidths%5\n")
        .arg(table.height)
        .arg(table.accidentalWidth)
        .arg(table.boxWidth)
        .arg(table.boxHeight)
        .arg(widths);
}

std::optional<GlyphTable> parseGlyphTable(const QString& text, QString* error)
{
    GlyphTable table;
    bool seenHeight = false, seenAccidental = false, seenBox = false, seenWidths = false;
    const auto fail = [&](const QString& why) {
        if (error)
            *error = why;
        return std::nullopt;
    };
    const auto sizes = [](const QStringList& fields, int count, int* out) {
        if (fields.size() != count + 1)
            return false;
        for (int i = 0; i < count; ++i) {
            bool ok = false;
            out[i] = fields[i + 1].toInt(&ok);
            if (!ok || out[i] < 1 || out[i] > kMaxGlyphSize)
                return false;
        }
        return true;
    };
    for (const QString& rawLine : text.split(QLatin1Char('\n'))) {
        const QString line = rawLine.trimmed();
        if (line.isEmpty() || line.startsWith(QLatin1Char('#')))
            continue;
        const QStringList fields = line.split(QLatin1Char(' '), Qt::SkipEmptyParts);
        const QString& key = fields[0];
        bool ok = false;
        if (key == QLatin1String("height")) {
            ok = seenHeight = sizes(fields, 1, &table.height);
        } else if (key == QLatin1String("accidental-width")) {
            ok = seenAccidental = sizes(fields, 1, &table.accidentalWidth);
        } else if (key == QLatin1String("box")) {
            int box[2] = {};
            ok = seenBox = sizes(fields, 2, box);
            table.boxWidth = box[0];
            table.boxHeight = box[1];
        } else if (key == QLatin1String("widths")) {
            ok = seenWidths = sizes(fields, kLetterGlyphCount, table.letterWidths.data());
        } else {
            return fail(QStringLiteral("unknown key '%1'").arg(key));
        }
        if (!ok)
            return fail(QStringLiteral("bad values for '%1'").arg(key));
    }
    if (!seenHeight || !seenAccidental || !seenBox || !seenWidths)
        return fail(QStringLiteral("height, accidental-width, box and widths are all needed"));
    if (table.boxHeight < table.height)
        return fail(QStringLiteral("the label box is lower than a glyph"));
    return table;
}

}  // namespace tarabix
