#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "oud/model/MaqamRec.h"
#include "oud/model/NoteNames.h"

namespace tarabix {

// A maqam's home tonic: its pitch class and its shift in quarter tones.
struct MaqamTonic {
    int32_t pitchClass = 0;
    int32_t quarterShift = 0;
    bool operator==(const MaqamTonic&) const = default;
};

// What a "Q:" marker of a piece names: the maqam's list position (1-based) and the tonic 0..11.
struct MaqamMarker {
    int32_t index = 0;
    int32_t tonic = 0;
    bool operator==(const MaqamMarker&) const = default;
};

// The maqams of maqams.ini and the one currently chosen. The window owns one; maqam indices are
// list positions: 1 .. maqamCount(), 0 (or less) meaning no maqam.
class mMaqams {
public:
    // Reads the maqams of the INI file at `path`: every section whose name starts with "q_" in any
    // letter case, in file order. Returns "" on success, otherwise the text of the first fault, and
    // then leaves no maqam at all. Either way no maqam is selected afterwards.
    std::string loadMaqams(const std::string& path);

    int32_t maqamCount() const { return static_cast<int32_t>(m_maqams.size()); }
    // Empty name, zero tonic and zero tonic spellings for an index outside 1 .. maqamCount().
    std::string maqamName(int32_t index) const;
    MaqamTonic maqamHomeTonic(int32_t index) const;
    // The twelve tonic choices (pitch class 0 = C first) spelled for this maqam.
    std::array<SpelledNote, 12> maqamTonics(int32_t index) const;
    const MaqamRec* maqamAt(int32_t index) const;
    // The index of the maqam called `name` in any letter case, or 0 when there is none.
    int32_t findMaqam(std::string_view name) const;

    // Makes maqam `index` current on `tonic` (a pitch class); an index outside 1 .. maqamCount()
    // selects no maqam.
    void selectMaqam(int32_t index, int32_t tonic);
    bool isMaqamSelected() const { return m_curMaqamIndex >= 1; }
    int32_t curMaqamIndex() const { return m_curMaqamIndex; }
    // The selected maqam with its pitch classes moved to the chosen tonic.
    const MaqamRec& curMaqam() const { return m_curMaqam; }
    // The degree (0..6) of the current maqam on `pitchClass`, or -1 (also with no maqam).
    int32_t curDegreeOf(int32_t pitchClass) const;

    // The name of a note `note` shifted by `cents`, in the current maqam's spelling.
    SpelledNote spellPitch(int32_t note, int32_t cents) const;

    // A piece's text "Q:<maqam name>/<tonic>": the maqam (name in any letter case) and tonic it
    // names, or nothing when the text is no such marker, the name is unknown or the tonic is not 0..11.
    std::optional<MaqamMarker> parseMaqamMarker(std::string_view text) const;
    // The same, and the maqam it names becomes current.
    std::optional<MaqamMarker> applyMaqamMarker(std::string_view text);

private:
    std::vector<MaqamRec> m_maqams;  // m_maqams[0] is maqam 1
    int32_t m_curMaqamIndex = 0;
    MaqamRec m_curMaqam;
    StepSpelling m_plainSteps = plainStepSpelling();
};

}  // namespace tarabix
