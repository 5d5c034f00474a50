// tarabix-gen-assets FOLDER: draws the fingerboard picture, the mark strip and the note-name
// glyph strip with their tables into FOLDER, replacing what is there.
#include "oud/view/UdResources.h"
#include "tools/gen/FingerboardPainter.h"
#include "tools/gen/MarkStripPainter.h"
#include "tools/gen/NoteGlyphPainter.h"

#include <QDir>
#include <QFile>
#include <QFont>
#include <QFontDatabase>
#include <QGuiApplication>

#include <cstdio>

namespace {

// The glyphs come from this font file only, so every machine draws the same strips.
constexpr char kFontFile[] = "/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf";

bool writeText(const QString& path, const QString& text)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return false;
    const QByteArray bytes = text.toUtf8();
    return file.write(bytes) == bytes.size();
}

bool save(const QString& path, bool ok)
{
    if (!ok)
        std::fprintf(stderr, "tarabix-gen-assets: cannot write %s\n", qPrintable(path));
    return ok;
}

QFont pixelFont(const QString& family, int pixelSize)
{
    QFont font(family);
    font.setPixelSize(pixelSize);
    font.setBold(true);
    font.setHintingPreference(QFont::PreferFullHinting);
    font.setStyleStrategy(QFont::PreferAntialias);
    return font;
}

}  // namespace

int main(int argc, char* argv[])
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    if (argc != 2) {
        std::fputs("usage: tarabix-gen-assets FOLDER\n", stderr);
        return 2;
    }
    const QDir out(QString::fromLocal8Bit(argv[1]));
    if (!out.exists()) {
        std::fprintf(stderr, "tarabix-gen-assets: no folder %s\n", argv[1]);
        return 2;
    }
    const int fontId = QFontDatabase::addApplicationFont(QString::fromLatin1(kFontFile));
    if (fontId < 0) {
        std::fprintf(stderr, "tarabix-gen-assets: cannot load %s (package fonts-dejavu-core)\n", kFontFile);
        return 1;
    }
    const QString family = QFontDatabase::applicationFontFamilies(fontId).value(0);

    const auto path = [&](const char* name) { return out.filePath(QString::fromLatin1(name)); };
    const tarabix::gen::MarkStrip marks = tarabix::gen::paintMarkStrip(pixelFont(family, 12));
    const tarabix::gen::GlyphStrip glyphs = tarabix::gen::paintGlyphStrip(pixelFont(family, 12));
    bool ok = save(path(tarabix::kFingerboardPictureFile),
                   tarabix::gen::paintFingerboard().save(path(tarabix::kFingerboardPictureFile)));
    ok = save(path(tarabix::kMarkStripFile), marks.strip.save(path(tarabix::kMarkStripFile))) && ok;
    ok = save(path(tarabix::kMarkTableFile),
              writeText(path(tarabix::kMarkTableFile), tarabix::formatMarkTable(marks.table))) && ok;
    ok = save(path(tarabix::kGlyphStripFile), glyphs.strip.save(path(tarabix::kGlyphStripFile))) && ok;
    ok = save(path(tarabix::kGlyphTableFile),
              writeText(path(tarabix::kGlyphTableFile), tarabix::formatGlyphTable(glyphs.table))) && ok;
    return ok ? 0 : 1;
}
