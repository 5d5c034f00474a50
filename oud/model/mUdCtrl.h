#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "oud/model/FingerboardGeometry.h"
#include "oud/model/NoteNames.h"
#include "oud/model/Tunings.h"

namespace tarabix {

// A string the position table cannot hold (its open string at MIDI note 121 or more, or below 0)
// was left out of it: the number of a subscript out of range.
inline constexpr int32_t kStringOutsideTable = 9;

// One entry of the position table: where a quarter-tone pitch is played. x = y = -1: not playable.
struct PositionEntry {
    int32_t x = -1;
    int32_t y = -1;
    int32_t string = -1;
    bool playable() const { return x != -1 || y != -1; }
    bool operator==(const PositionEntry&) const = default;
};

// A pitch found at a point or grid cell; note = cents = -1 (and string -1) when there is none.
struct FoundPitch {
    int32_t note = -1;
    int32_t cents = -1;
    int32_t string = -1;
    int32_t position = -1;  // grid cells only: quarter tones above the open string
    bool found() const { return note != -1 || cents != -1; }
};

// Where a pitch is stopped: its point in the picture as currently oriented, and the string.
struct PitchPlace {
    PicPoint point;
    int32_t string = -1;
    bool operator==(const PitchPlace&) const = default;
};

struct GridCell {
    int32_t row = 0;
    int32_t column = 0;
};

// The oud model: the list of tunings, the tuning and orientation in use, and the fingerboard
// geometry that follows from them. The window owns one; it reads the state through the getters and
// changes it only through applyTuning and setOrientation.
//
// A tuning with fewer than six strings uses strings 0 .. numStrings-1 of the picture; the others
// are absent: they get no position-table entries, are never hit by a click or a grid key, and hold
// pitch and cents 0.
class mUdCtrl {
public:
    mUdCtrl();

    // Display hooks. The picture belongs to the display; the model only says when it must change.
    std::function<void()> onRestorePicture;                                  // another tuning: drop every mark
    std::function<void(int32_t oldOrient, int32_t newOrient)> onOrientationChanged;  // flip by old XOR new

    // Tunings. The list is never empty: until loadTunings it holds the built-in tuning.
    int32_t loadTunings(const std::string& path);
    int32_t loadTuningsText(const std::string& text);
    void setDefaultTuning();
    int32_t tuningCount() const;
    // Caption of the record at `index` (solfège for any non-zero system) and its id; "" and -1 outside.
    std::string tuningAt(int32_t index, int32_t nameSystem, int32_t& id) const;
    // Caption and array index of the first record with `id`; "" and `index` untouched when none.
    std::string tuningById(int32_t id, int32_t nameSystem, int32_t& index) const;
    const std::vector<TuningRec>& tunings() const { return m_tunings; }

    void applyTuning(int32_t id, int32_t octShift);
    int32_t curTuningId() const { return m_curTuningId; }
    int32_t curTuneOctShift() const { return m_curTuneOctShift; }
    int32_t curNumStrings() const { return m_curNumStrings; }
    const std::array<int32_t, kMaxStrings>& curStringPitch() const { return m_curStringPitch; }
    const std::array<int32_t, kMaxStrings>& curStringCents() const { return m_curStringCents; }

    // The range of the instrument: the lowest open string to the seventh semitone of the highest
    // one, whichever strings they are.
    int32_t lowestNote() const;
    int32_t lowestCents() const;
    int32_t highestNote() const;
    int32_t highestCents() const;

    // Orientation 0..3; any other value is ignored. redrawMarks false (start-up, before the first
    // tuning) leaves the position table as it is.
    void setOrientation(int32_t newValue, bool redrawMarks);
    int32_t orientation() const { return m_orientation; }
    const std::array<PicPoint, kMaxStrings>& curStringA() const { return m_curStringA; }
    const std::array<PicPoint, kMaxStrings>& curStringB() const { return m_curStringB; }

    // 0, or kStringOutsideTable when a string had to be left out (the others are still placed).
    int32_t buildPositionTable();
    int32_t positionTableStatus() const { return m_tableStatus; }
    const std::array<PositionEntry, kPositionCount>& posTable() const { return m_posTable; }
    // The entry for quarter-tone pitch number q; an unplayable entry outside 0..254.
    PositionEntry positionAt(int32_t q) const;

    // Where string `string` is stopped `quarterTones` above its open string, whichever string the
    // position table shows that pitch on; empty for an absent string.
    std::optional<PicPoint> stringStopPoint(int32_t string, int32_t quarterTones) const;

    // Where `note` shifted by `cents` is stopped; empty off the fingerboard. A pitch on the
    // quarter-tone grid (cents a multiple of 50, either sign) takes its own position-table entry, so
    // (64, -50) lies where (63, 50) does; any other pitch lies on the string of its nearest entry
    // that reaches it, by the same fret-spacing law as the table.
    std::optional<PitchPlace> placeOfPitch(int32_t note, int32_t cents) const;

    // Finger that stops `note` (plus a quarter tone when `quarter`): 0 open string .. 4, -1 none.
    int32_t fingerFor(int32_t note, bool quarter) const;
    // The finger of the place of `note` shifted by `cents` (of the entry whose string it lies on).
    int32_t fingerForPitch(int32_t note, int32_t cents) const;
    // Mouse hit-testing on the picture as currently oriented (radius 8.0 in the window).
    FoundPitch pitchAtPoint(PicPointF point, bool snapToQuarterTones, double radius) const;
    // Computer-keyboard grid: row 0 is the string nearest the top of the shown picture.
    FoundPitch pitchAtGridCell(GridCell cell, int32_t stringShift, int32_t positionShift,
                               int32_t orientation, bool skipTopString) const;

private:
    // How many quarter tones quarter-tone pitch q lies above the open string of `string`.
    int32_t quarterTonesAbove(int32_t string, int32_t q) const;
    int32_t fingerAtEntry(int32_t q) const;
    // The position-table entry whose string stops a pitch given in cents above MIDI note 0; -1 off
    // the fingerboard.
    int32_t entryOfPitch(int64_t totalCents) const;
    size_t lowestString() const;
    size_t highestString() const;

    std::vector<TuningRec> m_tunings;
    int32_t m_curTuningId = -1;
    int32_t m_curTuneOctShift = 0;
    int32_t m_curNumStrings = 0;
    std::array<int32_t, kMaxStrings> m_curStringPitch{};
    std::array<int32_t, kMaxStrings> m_curStringCents{};

    int32_t m_orientation = kRightPlayerView;
    std::array<PicPoint, kMaxStrings> m_curStringA = kStringNut;
    std::array<PicPoint, kMaxStrings> m_curStringB = kStringEnd;
    std::array<PositionEntry, kPositionCount> m_posTable{};
    int32_t m_tableStatus = 0;
};

}  // namespace tarabix
