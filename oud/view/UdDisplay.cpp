#include "oud/view/UdDisplay.h"

#include "base/Rounding.h"

#include <QPainter>

#include <algorithm>

namespace tarabix {

static_assert(NotePresentation{}.nameSystem == kNamesWestern, "a fresh profile names notes C D E");

namespace {

constexpr int32_t kLetterGap = 2;
// Sounding marks kept to draw again: a note whose note-off never came (a damaged piece) must not
// make the list grow while the piece plays on; the oldest are dropped first.
constexpr size_t kMostSoundingMarks = 128;
// How much wider a coming note's ring is than a sounding mark, on each side.
constexpr int32_t kLookAheadMargin = 3;
const QColor kHighlightFrame(192, 0, 0);
const QColor kRestingFrame(221, 190, 165);
const QColor kHighlightFill(255, 255, 204);

int32_t halfEven(double value)
{
    return roundHalfEvenInt(value);
}

}  // namespace

UdDisplay::UdDisplay(UdResources resources)
    : m_res(std::move(resources))
{
    for (int32_t cell = 0; cell < kMarkCellCount; ++cell)
        m_markCells[static_cast<size_t>(cell)] =
            m_res.markStrip.copy(cell * m_res.markWidth(), 0, m_res.markWidth(), m_res.markHeight());
    m_picUdCloneUnmarked = m_res.fingerboard.convertToFormat(QImage::Format_RGB32);
    m_picUdClone = m_picUdCloneUnmarked.copy();
    m_picUdAhead = m_picUdCloneUnmarked.copy();
    m_picUd = m_picUdCloneUnmarked.copy();
}

void UdDisplay::attach(mUdCtrl* model)
{
    m_model = model;
    if (!model)
        return;
    model->onRestorePicture = [this] { restorePicture(); };
    model->onOrientationChanged = [this](int32_t oldOrient, int32_t newOrient) { flipPicture(oldOrient, newOrient); };
}

void UdDisplay::followMaqams(const mMaqams* maqams)
{
    m_maqams = maqams;
    if (maqams)
        m_speller = [maqams](int32_t note, int32_t cents) { return maqams->spellPitch(note, cents); };
}

RestingScale UdDisplay::restingScale() const
{
    return m_maqams ? restingScaleOf(*m_maqams) : m_scale;
}

bool UdDisplay::ready() const
{
    return m_model && m_model->curTuningId() != -1 && !m_picUd.isNull();
}

void UdDisplay::changed(const QRect& rect)
{
    if (!m_batching && onChanged)
        onChanged(rect.intersected(m_picUd.rect()));
}

void UdDisplay::flipPicture(int32_t oldOrientation, int32_t newOrientation)
{
    const int32_t flip = oldOrientation ^ newOrientation;
    m_picUdCloneUnmarked = m_picUdCloneUnmarked.mirrored((flip & kFlipHorizontal) != 0, (flip & kFlipVertical) != 0);
    restorePicture();
}

void UdDisplay::restorePicture()
{
    m_picUdClone = m_picUdCloneUnmarked.copy();
    rebuildUpperLayers();
}

// The look-ahead layer again from the resting one, and the displayed layer from it, without
// sounding marks.
void UdDisplay::rebuildUpperLayers()
{
    m_sounding.clear();
    m_picUdAhead = m_picUdClone.copy();
    placeLookAhead();
    if (!m_lookAhead.empty()) {
        QPainter p(&m_picUdAhead);
        paintLookAhead(p, m_picUdAhead.rect());
    }
    m_picUd = m_picUdAhead.copy();
    changed(m_picUd.rect());
}

std::optional<PicPoint> UdDisplay::pointOfPitch(int32_t note, int32_t cents) const
{
    if (!ready())
        return std::nullopt;
    const auto place = m_model->placeOfPitch(note, cents);
    return place ? std::optional<PicPoint>(place->point) : std::nullopt;
}

QRect UdDisplay::circleMarkRect(PicPoint centre) const
{
    // Every erase uses the finger-1 record: all cells share one size and one centre.
    const MarkRecord& r = m_res.marks[1];
    return QRect(centre.x - r.xOffset, centre.y - r.yOffset, m_res.markWidth(), m_res.markHeight());
}

QRect UdDisplay::labelRect(PicPoint centre) const
{
    const int32_t w = m_res.glyphs.boxWidth;
    const int32_t h = m_res.glyphs.boxHeight;
    return QRect(centre.x - halfEven((w - 1) / 2.0), centre.y - halfEven((h - 1) / 2.0), w, h);
}

void UdDisplay::uncover(const QRect& rect)
{
    QPainter p(&m_picUd);
    p.setCompositionMode(QPainter::CompositionMode_Source);
    p.drawImage(rect.topLeft(), m_picUdAhead, rect);
    p.end();
    std::erase_if(m_sounding, [&rect](const SoundingMark& mark) { return rect.contains(mark.rect); });
    changed(rect);
}

// A resting mark goes on the resting layer and the ones above it; a sounding one on the displayed
// layer only, and is kept to be drawn again over what changes beneath it.
void UdDisplay::drawMark(const QImage& picture, QPoint topLeft, bool alsoOnResting)
{
    // While the resting layer is drawn whole, the upper ones are built from it afterwards.
    QImage* const layers[] = {alsoOnResting ? &m_picUdClone : nullptr, alsoOnResting && !m_batching ? &m_picUdAhead : nullptr,
                              m_batching ? nullptr : &m_picUd};
    for (QImage* layer : layers) {
        if (!layer)
            continue;
        QPainter p(layer);
        p.drawImage(topLeft, picture);
    }
    if (!alsoOnResting) {
        if (m_sounding.size() == kMostSoundingMarks)
            m_sounding.erase(m_sounding.begin());
        m_sounding.push_back({QRect(topLeft, picture.size()), picture});
    }
    changed(QRect(topLeft, picture.size()));
}

int32_t UdDisplay::drawCircleMark(int32_t note, int32_t cents, bool alsoOnResting, bool scaleMark)
{
    const auto point = pointOfPitch(note, cents);
    if (!point)
        return 0;
    const int32_t cell = scaleMark ? kRestingMarkCell : m_model->fingerForPitch(note, cents);
    if (cell < 0 || cell >= kMarkCellCount)
        return 0;
    const MarkRecord& r = m_res.marks[static_cast<size_t>(cell)];
    // The strip's transparent colour was made alpha 0 on loading, so blending skips it.
    drawMark(m_markCells[static_cast<size_t>(cell)], QPoint(point->x - r.xOffset, point->y - r.yOffset), alsoOnResting);
    return 1;
}

void UdDisplay::eraseCircleMark(int32_t note, int32_t cents)
{
    if (const auto point = pointOfPitch(note, cents))
        uncover(circleMarkRect(*point));
}

QImage UdDisplay::buildLabel(bool highlighted, int32_t letter, int32_t accidental) const
{
    const GlyphTable& g = m_res.glyphs;
    const int32_t letterGlyph = m_presentation.nameSystem + 2 * letter;
    const int32_t accidentalGlyph = accidentalGlyphIndex(accidental);
    int32_t w = g.letterWidths[static_cast<size_t>(letterGlyph)];
    if (accidentalGlyph >= 0)
        w += kLetterGap + g.accidentalWidth;

    QImage box(g.boxWidth, g.boxHeight, QImage::Format_RGB32);
    // Light yellow takes the place of white on a highlighted label; the glyphs blend onto the
    // fill, so their soft edges match it.
    box.fill(highlighted ? kHighlightFill : QColor(Qt::white));
    QPainter p(&box);
    const int32_t x = halfEven((g.boxWidth + 1 - w) / 2.0);
    const int32_t y = halfEven((g.boxHeight - g.height) / 2.0);
    const int32_t letterW = g.letterWidths[static_cast<size_t>(letterGlyph)];
    p.drawImage(QPoint(x, y), m_res.glyphStrip, QRect(g.letterX(letterGlyph), 0, letterW, g.height));
    if (accidentalGlyph >= 0)
        p.drawImage(QPoint(x + letterW + kLetterGap, y), m_res.glyphStrip,
                    QRect(g.accidentalX(accidentalGlyph), 0, g.accidentalWidth, g.height));
    p.setPen(highlighted ? kHighlightFrame : kRestingFrame);
    p.setBrush(Qt::NoBrush);
    p.drawRect(0, 0, g.boxWidth - 1, g.boxHeight - 1);
    p.end();
    return box;
}

int32_t UdDisplay::drawNameLabel(int32_t note, int32_t cents, bool highlighted, int32_t letter, int32_t accidental,
                                 bool alsoOnResting)
{
    const auto point = pointOfPitch(note, cents);
    if (!point)
        return 0;
    if (letter < 0 || letter > 6 || (m_presentation.nameSystem != kNamesWestern &&
                                     m_presentation.nameSystem != kNamesSolfege))
        return 0;
    drawMark(buildLabel(highlighted, letter, accidental), labelRect(*point).topLeft(), alsoOnResting);
    return 1;
}

void UdDisplay::eraseNameLabel(int32_t note, int32_t cents)
{
    if (const auto point = pointOfPitch(note, cents))
        uncover(labelRect(*point));
}

int32_t UdDisplay::rangeSide(int32_t note, int32_t cents) const
{
    if (!ready())
        return kRangeUnknown;
    const int32_t low = m_model->lowestNote();
    const int32_t lowCents = m_model->lowestCents();
    const int32_t high = m_model->highestNote();
    if (note < low || (note == low && cents < lowCents))
        return kRangeBelow;
    // The top of the range is measured against the lowest string's cents, not the top string's.
    if (note > high || (note == high && cents > lowCents))
        return kRangeAbove;
    return kRangeInside;
}

void UdDisplay::drawResting(int32_t mode, int32_t note, int32_t cents, SpelledNote spelling)
{
    if (mode == kPresNames)
        drawNameLabel(note, cents, false, spelling.letterIndex, spelling.accidental, true);
    else if (mode == kPresCircles)
        drawCircleMark(note, cents, true, true);
}

void UdDisplay::redrawResting()
{
    m_picUdClone = m_picUdCloneUnmarked.copy();
    const RestingScale scale = restingScale();
    const int32_t mode = m_presentation.atRest(scale.maqamSelected);
    if (ready() && mode != kPresNothing) {
        // Each degree is spelled once; its octaves share the spelling.
        std::array<SpelledNote, 12> spellings{};
        for (int32_t d = 0; d < scale.degreeCount(); ++d) {
            const NotePitch pitch = scale.degree(d);
            spellings[static_cast<size_t>(d)] = m_speller ? m_speller(pitch.note, pitch.cents) : SpelledNote{-1, kNatural};
        }
        m_batching = true;
        for (const RestingMark& mark : restingMarks(*m_model, scale))
            drawResting(mode, mark.note, mark.cents, spellings[static_cast<size_t>(mark.degree)]);
        m_batching = false;
    }
    rebuildUpperLayers();
}

int32_t UdDisplay::playMode() const
{
    return m_presentation.whilePlaying(restingScale().maqamSelected);
}

int32_t UdDisplay::noteOnDisplay(int32_t note, int32_t cents, bool shown)
{
    if (!shown)
        return kRangeInside;
    const int32_t mode = playMode();
    int32_t drawn = 0;
    if (mode == kPresNames && m_speller) {
        const SpelledNote s = m_speller(note, cents);
        drawn = drawNameLabel(note, cents, true, s.letterIndex, s.accidental, false);
    } else if (mode == kPresCircles) {
        drawn = drawCircleMark(note, cents, false, false);
    }
    return drawn ? kRangeInside : rangeSide(note, cents);
}

bool UdDisplay::noteOffDisplay(int32_t note, int32_t cents, bool shown)
{
    if (!shown)
        return false;
    const int32_t mode = playMode();
    if (mode == kPresNames)
        eraseNameLabel(note, cents);
    else if (mode == kPresCircles)
        eraseCircleMark(note, cents);
    return true;
}

void UdDisplay::placeLookAhead()
{
    m_lookAheadRects.clear();
    for (const LookAheadMark& mark : m_lookAhead) {
        const auto point = pointOfPitch(mark.note, mark.cents);
        // A ring around the place, so that a sounding mark there still shows it.
        m_lookAheadRects.push_back(point ? circleMarkRect(*point).adjusted(-kLookAheadMargin, -kLookAheadMargin,
                                                                           kLookAheadMargin, kLookAheadMargin)
                                         : QRect());
    }
}

const QImage& UdDisplay::lookAheadPictureOf(const LookAheadMark& mark)
{
    const int32_t moment = std::clamp(mark.moment, 1, kLookAheadMostMoments);
    const int32_t level = std::clamp(mark.level, 1, kLookAheadLevels);
    QImage& picture = m_lookAheadPictures[static_cast<size_t>(moment - 1)][static_cast<size_t>(level - 1)];
    if (picture.isNull())
        picture = lookAheadPicture(moment, level,
                                   QSize(m_res.markWidth() + 2 * kLookAheadMargin, m_res.markHeight() + 2 * kLookAheadMargin));
    return picture;
}

// The later moments first, so the nearer ones lie on top; a place already marked for an earlier
// (or the same) moment is not marked again.
void UdDisplay::paintLookAhead(QPainter& painter, const QRect& area)
{
    for (size_t i = m_lookAhead.size(); i-- > 0;) {
        const QRect& rect = m_lookAheadRects[i];
        if (rect.isEmpty() || !rect.intersects(area))
            continue;
        const auto earlier = m_lookAheadRects.begin() + static_cast<std::ptrdiff_t>(i);
        if (std::find(m_lookAheadRects.begin(), earlier, rect) != earlier)
            continue;
        painter.drawImage(rect.topLeft(), lookAheadPictureOf(m_lookAhead[i]));
    }
}

// One rectangle of the look-ahead layer from the resting one, and of the displayed layer from
// it with the sounding marks there drawn again over it.
void UdDisplay::repaintUpperLayers(const QRect& rect)
{
    QPainter ahead(&m_picUdAhead);
    ahead.setCompositionMode(QPainter::CompositionMode_Source);
    ahead.drawImage(rect.topLeft(), m_picUdClone, rect);
    ahead.setCompositionMode(QPainter::CompositionMode_SourceOver);
    ahead.setClipRect(rect);
    paintLookAhead(ahead, rect);
    ahead.end();

    QPainter shown(&m_picUd);
    shown.setCompositionMode(QPainter::CompositionMode_Source);
    shown.drawImage(rect.topLeft(), m_picUdAhead, rect);
    shown.setCompositionMode(QPainter::CompositionMode_SourceOver);
    shown.setClipRect(rect);
    for (const SoundingMark& mark : m_sounding)
        if (mark.rect.intersects(rect))
            shown.drawImage(mark.rect.topLeft(), mark.picture);
    shown.end();
    changed(rect);
}

void UdDisplay::showLookAhead(const std::vector<LookAheadMark>& marks)
{
    if (marks == m_lookAhead)
        return;
    const std::vector<LookAheadMark> before = m_lookAhead;
    const std::vector<QRect> rectsBefore = m_lookAheadRects;
    m_lookAhead = marks;
    placeLookAhead();
    // Only the places of marks that came, went or changed are drawn again.
    std::vector<QRect> dirty;
    const auto changedMarks = [this, &dirty](const std::vector<LookAheadMark>& these,
                                             const std::vector<QRect>& theirRects,
                                             const std::vector<LookAheadMark>& others,
                                             const std::vector<QRect>& otherRects) {
        for (size_t i = 0; i < these.size(); ++i) {
            bool kept = false;
            for (size_t j = 0; j < others.size() && !kept; ++j)
                kept = these[i] == others[j] && theirRects[i] == otherRects[j];
            const QRect rect = theirRects[i].intersected(QRect(QPoint(0, 0), m_picUd.size()));
            if (!kept && !rect.isEmpty() && std::find(dirty.begin(), dirty.end(), rect) == dirty.end())
                dirty.push_back(rect);
        }
    };
    changedMarks(before, rectsBefore, m_lookAhead, m_lookAheadRects);
    changedMarks(m_lookAhead, m_lookAheadRects, before, rectsBefore);
    for (const QRect& rect : dirty)
        repaintUpperLayers(rect);
}

}  // namespace tarabix
