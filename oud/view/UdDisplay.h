#pragma once

#include "oud/model/NoteNames.h"
#include "oud/model/RestingMarks.h"
#include "oud/model/mMaqams.h"
#include "oud/model/mUdCtrl.h"
#include "oud/view/LookAheadMarks.h"
#include "oud/view/UdResources.h"
#include "settings/NotePresentation.h"

#include <QImage>
#include <QRect>

class QPainter;

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace tarabix {

// How a pitch is spelled in the current maqam context.
using PitchSpeller = std::function<SpelledNote(int32_t note, int32_t cents)>;

// Range sides of a pitch against the instrument.
inline constexpr int32_t kRangeUnknown = -99;
inline constexpr int32_t kRangeBelow = -1;
inline constexpr int32_t kRangeInside = 0;
inline constexpr int32_t kRangeAbove = 1;

// The fingerboard display: picture layers and the marks and labels drawn on them. It only draws;
// sending the note is the window's business. Drawing never fails loudly: a pitch off the
// fingerboard, or a model without a tuning yet, draws nothing and answers 0.
//
// The layers, each the one before with more on it: the clean picture (as oriented), the resting
// layer (the resting scale's marks or names), the look-ahead layer (the marks of coming notes)
// and the displayed layer (the marks of sounding notes). Taking a sounding mark off copies its
// rectangle back from the look-ahead layer; a change of the look-ahead marks redraws their
// rectangles on both upper layers, the sounding marks there included, so either comes and goes
// without a remnant of the other.
class UdDisplay {
public:
    explicit UdDisplay(UdResources resources);

    // Hooks itself into the model's picture restore and orientation flip. The model must outlive
    // this display or be detached by attaching another.
    void attach(mUdCtrl* model);

    void setPresentation(const NotePresentation& presentation) { m_presentation = presentation; }
    const NotePresentation& presentation() const { return m_presentation; }
    void setRestingScale(const RestingScale& scale) { m_scale = scale; }
    void setSpeller(PitchSpeller speller) { m_speller = std::move(speller); }
    // From now on the resting scale and every spelling come from the maqam current in `maqams`
    // (which must outlive this display), whatever setRestingScale and setSpeller gave.
    void followMaqams(const mMaqams* maqams);
    RestingScale restingScale() const;

    // Told every rectangle of picUd that changed, in picture pixels.
    std::function<void(const QRect&)> onChanged;

    const QImage& picUd() const { return m_picUd; }
    const QImage& picUdClone() const { return m_picUdClone; }
    const QImage& picUdCloneUnmarked() const { return m_picUdCloneUnmarked; }
    const QImage& picUdAhead() const { return m_picUdAhead; }

    // The clean picture turned by (old XOR new) orientation, shown without marks.
    void flipPicture(int32_t oldOrientation, int32_t newOrientation);
    // Every mark dropped: the clean picture on the resting and displayed layers. The look-ahead
    // marks stay, at the places of their pitches now.
    void restorePicture();

    // The marks of coming notes, in place of those shown before; an empty list takes them all
    // off. A pitch off the fingerboard gets none; of marks at one place the earliest moment
    // shows. The same list again draws nothing.
    void showLookAhead(const std::vector<LookAheadMark>& marks);
    const std::vector<LookAheadMark>& lookAhead() const { return m_lookAhead; }

    int32_t drawCircleMark(int32_t note, int32_t cents, bool alsoOnResting, bool scaleMark);
    void eraseCircleMark(int32_t note, int32_t cents);
    int32_t drawNameLabel(int32_t note, int32_t cents, bool highlighted, int32_t letter, int32_t accidental,
                          bool alsoOnResting);
    void eraseNameLabel(int32_t note, int32_t cents);
    int32_t rangeSide(int32_t note, int32_t cents) const;
    void redrawResting();

    // A sounding note on a channel whose notes are shown or not. Returns the rangeSide to indicate
    // in the window when nothing could be drawn, else 0.
    int32_t noteOnDisplay(int32_t note, int32_t cents, bool shown);
    // The note ends; true when the window should clear its out-of-range indication.
    bool noteOffDisplay(int32_t note, int32_t cents, bool shown);

    // Where a pitch is drawn in the picture as currently oriented (the model's place of it); empty
    // off the fingerboard or before the model has a tuning.
    std::optional<PicPoint> pointOfPitch(int32_t note, int32_t cents) const;

    QRect circleMarkRect(PicPoint centre) const;
    QRect labelRect(PicPoint centre) const;

private:
    // A sounding note's mark as drawn on the displayed layer, to draw again over a look-ahead
    // change beneath it.
    struct SoundingMark {
        QRect rect;
        QImage picture;
    };

    bool ready() const;
    int32_t playMode() const;
    void changed(const QRect& rect);
    void uncover(const QRect& rect);
    void drawMark(const QImage& picture, QPoint topLeft, bool alsoOnResting);
    QImage buildLabel(bool highlighted, int32_t letter, int32_t accidental) const;
    void drawResting(int32_t mode, int32_t note, int32_t cents, SpelledNote spelling);
    void rebuildUpperLayers();
    void placeLookAhead();
    void paintLookAhead(QPainter& painter, const QRect& area);
    void repaintUpperLayers(const QRect& rect);
    const QImage& lookAheadPictureOf(const LookAheadMark& mark);

    UdResources m_res;
    std::array<QImage, kMarkCellCount> m_markCells;
    QImage m_picUd;
    QImage m_picUdAhead;
    QImage m_picUdClone;
    QImage m_picUdCloneUnmarked;
    std::vector<SoundingMark> m_sounding;
    std::vector<LookAheadMark> m_lookAhead;
    std::vector<QRect> m_lookAheadRects;  // of each mark in m_lookAhead; empty off the fingerboard
    std::array<std::array<QImage, kLookAheadLevels>, kLookAheadMostMoments> m_lookAheadPictures;
    mUdCtrl* m_model = nullptr;
    NotePresentation m_presentation;
    RestingScale m_scale;
    PitchSpeller m_speller;
    const mMaqams* m_maqams = nullptr;
    bool m_batching = false;
};

}  // namespace tarabix
