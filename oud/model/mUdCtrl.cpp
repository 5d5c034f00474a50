#include "oud/model/mUdCtrl.h"

#include <algorithm>

#include "base/ReadWholeFile.h"
#include "base/Rounding.h"

namespace tarabix {

namespace {

const std::string& caption(const TuningRec& rec, int32_t nameSystem)
{
    return nameSystem == kNamesWestern ? rec.name : rec.nameSolfege;
}

}  // namespace

mUdCtrl::mUdCtrl()
{
    setDefaultTuning();
}

int32_t mUdCtrl::loadTunings(const std::string& path)
{
    std::string text;
    if (readWholeFile(path, text) != 0) {
        setDefaultTuning();
        return kTuningsBuiltIn;
    }
    return loadTuningsText(text);
}

int32_t mUdCtrl::loadTuningsText(const std::string& text)
{
    return parseTunings(text, m_tunings);
}

void mUdCtrl::setDefaultTuning()
{
    m_tunings = {builtInTuning()};
}

int32_t mUdCtrl::tuningCount() const
{
    return static_cast<int32_t>(m_tunings.size());
}

std::string mUdCtrl::tuningAt(int32_t index, int32_t nameSystem, int32_t& id) const
{
    if (index < 0 || index >= tuningCount()) {
        id = -1;
        return {};
    }
    const TuningRec& rec = m_tunings[static_cast<size_t>(index)];
    id = rec.id;
    return caption(rec, nameSystem);
}

std::string mUdCtrl::tuningById(int32_t id, int32_t nameSystem, int32_t& index) const
{
    const auto it = std::find_if(m_tunings.begin(), m_tunings.end(), [id](const TuningRec& r) { return r.id == id; });
    if (it == m_tunings.end())
        return {};
    index = static_cast<int32_t>(it - m_tunings.begin());
    return caption(*it, nameSystem);
}

void mUdCtrl::applyTuning(int32_t id, int32_t octShift)
{
    if (id == m_curTuningId && octShift == m_curTuneOctShift && m_curTuningId != -1)
        return;
    const int32_t previousId = m_curTuningId;

    // An id the list no longer holds (a remembered setting from another tunings.ini) falls back
    // to the first tuning, which then becomes the current id.
    auto it = std::find_if(m_tunings.begin(), m_tunings.end(), [id](const TuningRec& r) { return r.id == id; });
    const TuningRec& rec = it != m_tunings.end() ? *it : m_tunings.front();

    m_curTuneOctShift = octShift;
    m_curTuningId = rec.id;
    m_curNumStrings = std::clamp(rec.numStrings, 0, kMaxStrings);
    m_curStringPitch = {};
    m_curStringCents = {};
    for (int32_t i = 0; i < m_curNumStrings; ++i) {
        const size_t s = static_cast<size_t>(i);
        // Saturating: an absurd octave shift leaves the string outside the table instead of wrapping.
        const int64_t pitch = int64_t{rec.stringPitch[s]} + int64_t{12} * octShift;
        m_curStringPitch[s] = static_cast<int32_t>(std::clamp<int64_t>(pitch, INT32_MIN, INT32_MAX));
        m_curStringCents[s] = rec.stringCents[s];
    }

    buildPositionTable();
    if (id != previousId && onRestorePicture)
        onRestorePicture();
}

// Strings need not be strung in ascending pitch (a bass string beside the highest course): the
// range ends are looked for. Ties go to the first lowest and the last highest string, which are
// string 0 and the top string on an oud strung in ascending order.
size_t mUdCtrl::lowestString() const
{
    size_t low = 0;
    for (size_t s = 1; s < static_cast<size_t>(m_curNumStrings); ++s)
        if (m_curStringPitch[s] < m_curStringPitch[low])
            low = s;
    return low;
}

size_t mUdCtrl::highestString() const
{
    size_t high = 0;
    for (size_t s = 1; s < static_cast<size_t>(m_curNumStrings); ++s)
        if (m_curStringPitch[s] >= m_curStringPitch[high])
            high = s;
    return high;
}

int32_t mUdCtrl::lowestNote() const
{
    return m_curStringPitch[lowestString()];
}

int32_t mUdCtrl::lowestCents() const
{
    return m_curStringCents[lowestString()];
}

int32_t mUdCtrl::highestNote() const
{
    return m_curStringPitch[highestString()] + 7;
}

int32_t mUdCtrl::highestCents() const
{
    return m_curStringCents[highestString()];
}

void mUdCtrl::setOrientation(int32_t newValue, bool redrawMarks)
{
    if (newValue < kRightPlayerView || newValue > kLeftMirrorView)
        return;
    const int32_t oldValue = m_orientation;
    for (size_t s = 0; s < kMaxStrings; ++s) {
        m_curStringA[s] = orientPoint(kStringNut[s], newValue);
        m_curStringB[s] = orientPoint(kStringEnd[s], newValue);
    }
    m_orientation = newValue;
    if (redrawMarks)
        buildPositionTable();
    // Told once the places are those of the new view: the display puts what it keeps there.
    if (newValue != oldValue && onOrientationChanged)
        onOrientationChanged(oldValue, newValue);
}

int32_t mUdCtrl::buildPositionTable()
{
    m_posTable.fill(PositionEntry{});
    m_tableStatus = 0;
    // Where two strings can stop a pitch, the one that stops it nearer the nut keeps it (an open
    // string first): that is where an oud player takes it. On a tie the higher-numbered string keeps
    // it. On an oud strung in ascending order this is always the higher string.
    for (int32_t s = 0; s < m_curNumStrings; ++s) {
        const size_t si = static_cast<size_t>(s);
        const int32_t pitch = m_curStringPitch[si];
        if (pitch < 0 || 2 * int64_t{pitch} + kZoneQuarterTones >= kPositionCount) {
            m_tableStatus = kStringOutsideTable;
            continue;
        }
        const PicPoint a = m_curStringA[si];
        const PicPoint b = m_curStringB[si];
        const size_t q0 = static_cast<size_t>(2 * pitch);
        for (int32_t j = 0; j <= kZoneQuarterTones; ++j) {
            PositionEntry& entry = m_posTable[q0 + static_cast<size_t>(j)];
            if (entry.string >= 0 && quarterTonesAbove(entry.string, 2 * pitch + j) < j)
                continue;
            const PicPoint at = stopPoint(a, b, j);
            entry = {at.x, at.y, s};
        }
    }
    return m_tableStatus;
}

std::optional<PicPoint> mUdCtrl::stringStopPoint(int32_t string, int32_t quarterTones) const
{
    if (string < 0 || string >= m_curNumStrings || quarterTones < 0)
        return std::nullopt;
    const size_t si = static_cast<size_t>(string);
    return stopPoint(m_curStringA[si], m_curStringB[si], quarterTones);
}

PositionEntry mUdCtrl::positionAt(int32_t q) const
{
    if (q < 0 || q >= kPositionCount)
        return {};
    return m_posTable[static_cast<size_t>(q)];
}

int32_t mUdCtrl::entryOfPitch(int64_t totalCents) const
{
    if (totalCents % 50 == 0) {
        const int64_t q = totalCents / 50;
        return q >= 0 && q < kPositionCount && m_posTable[static_cast<size_t>(q)].playable() ? static_cast<int32_t>(q) : -1;
    }
    // Off the grid: the string of the nearest quarter tone, unless the pitch falls just below its
    // nut (or past its zone); then the other neighbour's string, where it is still stopped.
    const int64_t below = totalCents >= 0 ? totalCents / 50 : (totalCents - 49) / 50;
    const int64_t nearest = static_cast<int64_t>(roundHalfEven(static_cast<double>(totalCents) / 50.0));
    for (const int64_t q : {nearest, nearest == below ? below + 1 : below}) {
        const PositionEntry entry = positionAt(q >= 0 && q < kPositionCount ? static_cast<int32_t>(q) : -1);
        if (!entry.playable())
            continue;
        const int64_t centsAboveOpen = totalCents - int64_t{100} * m_curStringPitch[static_cast<size_t>(entry.string)];
        if (centsAboveOpen >= 0 && centsAboveOpen <= 50 * kZoneQuarterTones)
            return static_cast<int32_t>(q);
    }
    return -1;
}

std::optional<PitchPlace> mUdCtrl::placeOfPitch(int32_t note, int32_t cents) const
{
    const int64_t total = int64_t{100} * note + cents;
    const int32_t q = entryOfPitch(total);
    if (q < 0)
        return std::nullopt;
    const PositionEntry entry = m_posTable[static_cast<size_t>(q)];
    if (total % 50 == 0)
        return PitchPlace{{entry.x, entry.y}, entry.string};
    const size_t s = static_cast<size_t>(entry.string);
    const double quarterTonesAboveOpen = static_cast<double>(total - int64_t{100} * m_curStringPitch[s]) / 50.0;
    return PitchPlace{stopPoint(m_curStringA[s], m_curStringB[s], quarterTonesAboveOpen), entry.string};
}

int32_t mUdCtrl::quarterTonesAbove(int32_t string, int32_t q) const
{
    return q - 2 * m_curStringPitch[static_cast<size_t>(string)];
}

int32_t mUdCtrl::fingerAtEntry(int32_t q) const
{
    const PositionEntry entry = positionAt(q);
    if (!entry.playable())
        return -1;
    const int32_t steps = quarterTonesAbove(entry.string, q);
    const int32_t semitones = steps / 2;
    const bool quarter = steps % 2 != 0;
    if (semitones == 0)
        return quarter ? 1 : 0;
    if (semitones == 3)
        return quarter ? 4 : 3;
    return std::min(semitones, 4);
}

int32_t mUdCtrl::fingerFor(int32_t note, bool quarter) const
{
    if (note < 0 || note > (kPositionCount - 1) / 2)
        return -1;
    return fingerAtEntry(2 * note + (quarter ? 1 : 0));
}

int32_t mUdCtrl::fingerForPitch(int32_t note, int32_t cents) const
{
    return fingerAtEntry(entryOfPitch(int64_t{100} * note + cents));
}

FoundPitch mUdCtrl::pitchAtPoint(PicPointF point, bool snapToQuarterTones, double radius) const
{
    int32_t best = -1;
    double bestDist2 = 1000000.0;
    double bestT = 0.0;
    for (int32_t s = 0; s < m_curNumStrings; ++s) {
        const PicPoint a = m_curStringA[static_cast<size_t>(s)];
        const PicPoint b = m_curStringB[static_cast<size_t>(s)];
        const double abx = b.x - a.x, aby = b.y - a.y;
        const double apx = point.x - a.x, apy = point.y - a.y;
        const double len2 = abx * abx + aby * aby;
        const double cross = apx * aby - apy * abx;
        const double dist2 = cross * cross / len2;
        const double t = (apx * abx + apy * aby) / len2;
        // The loose lower limit lets a click left of the nut still find its string.
        if (t >= -14.0 && dist2 < bestDist2) {
            best = s;
            bestDist2 = dist2;
            bestT = t;
        }
    }
    if (best < 0 || bestDist2 > radius * radius || m_curStringPitch[static_cast<size_t>(best)] < 0)
        return {};

    const auto stopped = centsAtZoneFraction(std::max(bestT, 0.0));
    if (!stopped)
        return {};
    int32_t cents = *stopped;
    if (snapToQuarterTones) {
        const int32_t r = cents % 50;
        if (r >= 25)
            cents += 50;
        cents -= r;
    }
    FoundPitch found;
    found.string = best;
    found.note = m_curStringPitch[static_cast<size_t>(best)] + cents / 100;
    found.cents = cents % 100 + m_curStringCents[static_cast<size_t>(best)];
    normalizePitch(found.note, found.cents);
    return found;
}

FoundPitch mUdCtrl::pitchAtGridCell(GridCell cell, int32_t stringShift, int32_t positionShift,
                                    int32_t orientation, bool skipTopString) const
{
    const bool upsideDown = (orientation & kFlipVertical) != 0;
    const bool leftHanded = (orientation & kFlipHorizontal) != 0;
    const int64_t s = upsideDown ? int64_t{cell.row} + stringShift : 5 - int64_t{cell.row} - stringShift;
    const int64_t p = leftHanded ? 9 - int64_t{cell.column} - positionShift : int64_t{cell.column} + positionShift;
    if (s < 0 || s >= m_curNumStrings || (s == kMaxStrings - 1 && skipTopString))
        return {};
    // Shifts far beyond the neck name no pitch rather than overflow.
    if (p < -kPositionCount || p > kPositionCount)
        return {};
    const size_t si = static_cast<size_t>(s);
    const int32_t total = static_cast<int32_t>(50 * p) + m_curStringCents[si];
    FoundPitch found;
    found.note = m_curStringPitch[si] + total / 100;
    found.cents = total % 100;
    found.string = static_cast<int32_t>(s);
    found.position = static_cast<int32_t>(p);
    return found;
}

}  // namespace tarabix
