#include "oud/view/UdResources.h"

#include <QDir>
#include <QFile>

namespace tarabix {

namespace {

// Table files are a few hundred bytes; anything far larger is not ours.
constexpr qint64 kMaxTableBytes = 64 * 1024;

QString pathIn(const QString& folder, const char* name)
{
    return QDir(folder).filePath(QString::fromLatin1(name));
}

bool readTable(const QString& path, QString* text, QString* why)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        *why = path + QStringLiteral(": cannot be read");
        return false;
    }
    if (file.size() > kMaxTableBytes) {
        *why = path + QStringLiteral(": too large");
        return false;
    }
    *text = QString::fromUtf8(file.readAll());
    return true;
}

bool readPicture(const QString& path, QImage* image, QString* why)
{
    if (!image->load(path)) {
        *why = path + QStringLiteral(": not a readable picture");
        return false;
    }
    return true;
}

// Cells are drawn with alpha blending, so each cell's transparent colour becomes alpha 0 here once.
void clearTransparentColours(QImage* strip, const MarkTable& marks, int cellWidth)
{
    *strip = strip->convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < strip->height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(strip->scanLine(y));
        for (int x = 0; x < strip->width(); ++x) {
            const QRgb key = marks[static_cast<size_t>(x / cellWidth)].transparent;
            if (qAlpha(line[x]) == 255 && (line[x] & 0xFFFFFF) == (key & 0xFFFFFF))
                line[x] = 0;
        }
    }
}

bool loadFingerboard(const QString& folder, UdResources* r, QString* why)
{
    const QString path = pathIn(folder, kFingerboardPictureFile);
    if (!readPicture(path, &r->fingerboard, why))
        return false;
    if (r->fingerboard.size() != QSize(kUdPictureWidth, kUdPictureHeight)) {
        *why = path + QStringLiteral(": not %1 x %2 pixels").arg(kUdPictureWidth).arg(kUdPictureHeight);
        return false;
    }
    r->fingerboard = r->fingerboard.convertToFormat(QImage::Format_RGB32);
    return true;
}

bool loadMarks(const QString& folder, UdResources* r, QString* why)
{
    const QString path = pathIn(folder, kMarkStripFile);
    if (!readPicture(path, &r->markStrip, why))
        return false;
    if (r->markStrip.width() % kMarkCellCount != 0) {
        *why = path + QStringLiteral(": not %1 cells of one width").arg(kMarkCellCount);
        return false;
    }
    QString text;
    if (!readTable(pathIn(folder, kMarkTableFile), &text, why))
        return false;
    const auto table = parseMarkTable(text, r->markWidth(), r->markHeight(), why);
    if (!table)
        return false;
    r->marks = *table;
    clearTransparentColours(&r->markStrip, r->marks, r->markWidth());
    return true;
}

bool loadGlyphs(const QString& folder, UdResources* r, QString* why)
{
    QString text;
    if (!readTable(pathIn(folder, kGlyphTableFile), &text, why))
        return false;
    const auto table = parseGlyphTable(text, why);
    if (!table)
        return false;
    r->glyphs = *table;
    const QString path = pathIn(folder, kGlyphStripFile);
    if (!readPicture(path, &r->glyphStrip, why))
        return false;
    if (r->glyphStrip.size() != QSize(r->glyphs.stripWidth(), r->glyphs.height)) {
        *why = path + QStringLiteral(": does not match its glyph table");
        return false;
    }
    r->glyphStrip = r->glyphStrip.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    return true;
}

}  // namespace

UdResourceLoad loadUdResources(const QString& folder)
{
    UdResourceLoad load;
    if (!loadFingerboard(folder, &load.resources, &load.detail))
        load.missing = MissingResource::FingerboardPicture;
    else if (!loadMarks(folder, &load.resources, &load.detail))
        load.missing = MissingResource::MarkPicture;
    else if (!loadGlyphs(folder, &load.resources, &load.detail))
        load.missing = MissingResource::NoteNameFont;
    return load;
}

QString missingResourceMessage(MissingResource missing)
{
    const QString end = QStringLiteral("\r\n\r\nThe program will terminate.");
    switch (missing) {
    case MissingResource::FingerboardPicture: return QStringLiteral("Cannot find Ud image.") + end;
    case MissingResource::MarkPicture: return QStringLiteral("Cannot find mark image(s).") + end;
    case MissingResource::NoteNameFont: return QStringLiteral("Cannot find note-name font.") + end;
    case MissingResource::None: break;
    }
    return {};
}

}  // namespace tarabix
