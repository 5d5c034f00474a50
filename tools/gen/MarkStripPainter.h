#pragma once

#include "oud/view/MarkTable.h"

#include <QFont>
#include <QImage>

namespace tarabix::gen {

struct MarkStrip {
    QImage strip;
    MarkTable table;
};

// Finger marks 0 to 4 as numbered discs, one colour per finger, and the quieter resting-scale
// mark, on a key colour that the table names as transparent.
MarkStrip paintMarkStrip(const QFont& digitFont);

}  // namespace tarabix::gen
