#pragma once

#include "oud/view/GlyphTable.h"
#include "oud/view/MarkTable.h"

#include <QImage>
#include <QString>

namespace tarabix {

// The pictures the fingerboard display draws with, by file name in the program folder.
inline constexpr char kFingerboardPictureFile[] = "oud.png";
inline constexpr char kMarkStripFile[] = "marks.png";
inline constexpr char kMarkTableFile[] = "marks.txt";
inline constexpr char kGlyphStripFile[] = "notefont.png";
inline constexpr char kGlyphTableFile[] = "notefont.txt";

inline constexpr int kUdPictureWidth = 743;
inline constexpr int kUdPictureHeight = 188;

// Which start-up resource stops the program, checked in this order.
enum class MissingResource { None, FingerboardPicture, MarkPicture, NoteNameFont };

struct UdResources {
    QImage fingerboard;
    QImage markStrip;  // with the transparent colour of each cell already made transparent
    MarkTable marks{};
    QImage glyphStrip;
    GlyphTable glyphs;

    int markWidth() const { return markStrip.width() / kMarkCellCount; }
    int markHeight() const { return markStrip.height(); }
};

struct UdResourceLoad {
    MissingResource missing = MissingResource::None;
    QString detail;  // why the first missing resource was refused, for a log
    UdResources resources;
};

// Reads all pictures and their tables from the folder. A file that is absent, unreadable, of the
// wrong size or with a broken table counts as missing; only the first failure is reported.
UdResourceLoad loadUdResources(const QString& folder);

// The stop message the main window shows for a missing resource (empty for None).
QString missingResourceMessage(MissingResource missing);

}  // namespace tarabix
