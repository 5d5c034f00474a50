#pragma once

#include "oud/view/GlyphTable.h"

#include <QFont>
#include <QImage>

namespace tarabix::gen {

struct GlyphStrip {
    QImage strip;
    GlyphTable table;
};

// Letter names in both naming systems, cut to their ink, then the four accidentals as drawn in
// Arabic notation: the quarter-flat a flat with a slash through its stem, the quarter-sharp a
// sharp with a single upright. Dark ink on transparent, all one height.
GlyphStrip paintGlyphStrip(const QFont& letterFont);

}  // namespace tarabix::gen
