#include "oud/model/mMaqams.h"

#include "base/Rounding.h"
#include "base/Text.h"
#include "settings/TextNumbers.h"
#include "settings/cInifile.h"

#include <algorithm>

namespace tarabix {
namespace {

// Reads one maqam section; returns the fault text, or "" with `rec` filled.
std::string readMaqam(cInifile& ini, const std::string& section, MaqamRec& rec)
{
    ini.setSection(section);
    const auto value = [&](const char* key) {
        ini.setKey(key);
        return std::string(trim(ini.Value()));
    };
    rec.name = value("name");

    const auto ipc = parseSevenNumbers(value("ipc"));
    if (!ipc)
        return "Error in ipc of sec. " + section;
    rec.ipc = *ipc;

    const auto cents = parseSevenNumbers(value("cents"));
    if (!cents)
        return "Error in centShifts of sec. " + section;
    rec.cents = *cents;

    // The ascending and descending lines differ from the plain one only when the file says so.
    const auto optionalLine = [&](const char* key, DegreeValues& line) {
        const std::string text = value(key);
        if (text.empty()) {
            line = rec.cents;
            return true;
        }
        const auto numbers = parseSevenNumbers(text);
        if (numbers)
            line = *numbers;
        return numbers.has_value();
    };
    if (!optionalLine("centsAsc", rec.centsAsc))
        return "Error in centShiftsAsc of sec. " + section;
    if (!optionalLine("centsDes", rec.centsDes))
        return "Error in centShiftsDes of sec. " + section;
    return {};
}

}  // namespace

std::string mMaqams::loadMaqams(const std::string& path)
{
    m_maqams.clear();
    selectMaqam(0, 0);

    cInifile ini;
    ini.setPath(path);
    const std::vector<std::string> sections = ini.EnumerateAllSections();
    if (sections.empty())
        return "No maqams.";

    std::vector<MaqamRec> maqams;
    for (const std::string& section : sections) {
        if (section.size() < 2 || !equalsNoCase(std::string_view(section).substr(0, 2), "q_"))
            continue;
        MaqamRec rec;
        const std::string fault = readMaqam(ini, section, rec);
        if (!fault.empty())
            return fault;
        maqams.push_back(std::move(rec));
    }
    m_maqams = std::move(maqams);
    return {};
}

const MaqamRec* mMaqams::maqamAt(int32_t index) const
{
    if (index < 1 || index > maqamCount())
        return nullptr;
    return &m_maqams[static_cast<size_t>(index - 1)];
}

std::string mMaqams::maqamName(int32_t index) const
{
    const MaqamRec* rec = maqamAt(index);
    return rec ? rec->name : std::string();
}

MaqamTonic mMaqams::maqamHomeTonic(int32_t index) const
{
    const MaqamRec* rec = maqamAt(index);
    if (!rec)
        return {};
    return {rec->ipc[0], roundHalfEvenInt(rec->cents[0] / 50.0)};
}

std::array<SpelledNote, 12> mMaqams::maqamTonics(int32_t index) const
{
    const MaqamRec* rec = maqamAt(index);
    if (!rec)
        return {};
    // Whether the seventh degree lies a semitone under the octave decides sharps or flats.
    const int64_t seventhToOctave = int64_t{rec->ipc[0]} + 12 - rec->ipc[6];
    return spellTonics(rec->cents[0], static_cast<int32_t>(std::clamp<int64_t>(seventhToOctave, INT32_MIN, INT32_MAX)));
}

void mMaqams::selectMaqam(int32_t index, int32_t tonic)
{
    const MaqamRec* rec = maqamAt(index);
    if (!rec) {
        m_curMaqamIndex = 0;
        m_curMaqam = MaqamRec();
        return;
    }
    m_curMaqamIndex = index;
    m_curMaqam = *rec;
    const int32_t shift = pitchClassOf(int64_t{tonic} + 12 - rec->ipc[0]);
    for (int32_t& pitchClass : m_curMaqam.ipc)
        pitchClass = pitchClassOf(int64_t{shift} + pitchClass);
    m_curMaqam.stepSpelling = maqamStepSpelling(m_curMaqam.ipc);
}

int32_t mMaqams::curDegreeOf(int32_t pitchClass) const
{
    if (!isMaqamSelected())
        return -1;
    const auto& ipc = m_curMaqam.ipc;
    const auto found = std::find(ipc.begin(), ipc.end(), pitchClass);
    return found == ipc.end() ? -1 : static_cast<int32_t>(found - ipc.begin());
}

SpelledNote mMaqams::spellPitch(int32_t note, int32_t cents) const
{
    const int32_t quarters = roundHalfEvenInt(cents / 50.0);
    const int32_t pitchClass = pitchClassOf(int64_t{note} + quarters / 2);
    // An odd number of quarter tones lands between two semitones: below the pitch class when the
    // shift is downwards (step 7 is the quarter tone between D sharp and E).
    int32_t step = 2 * pitchClass + quarters % 2;
    if (step < 0)
        step += static_cast<int32_t>(kQuarterSteps);
    const StepSpelling& steps = isMaqamSelected() ? m_curMaqam.stepSpelling : m_plainSteps;
    return steps[static_cast<size_t>(step)];
}

std::optional<MaqamMarker> mMaqams::parseMaqamMarker(std::string_view text) const
{
    if (text.size() < 4 || !equalsNoCase(text.substr(0, 2), "q:"))
        return std::nullopt;
    // The name takes at least one character, so the "/" is looked for from the fourth one on.
    const size_t slash = text.find('/', 3);
    if (slash == std::string_view::npos)
        return std::nullopt;
    const auto tonic = textToInt32(text.substr(slash + 1));
    if (!tonic || *tonic < 0 || *tonic > 11)
        return std::nullopt;
    const int32_t index = findMaqam(text.substr(2, slash - 2));
    if (index == 0)
        return std::nullopt;
    return MaqamMarker{index, *tonic};
}

int32_t mMaqams::findMaqam(std::string_view name) const
{
    for (int32_t index = 1; index <= maqamCount(); ++index)
        if (equalsNoCase(m_maqams[static_cast<size_t>(index - 1)].name, name))
            return index;
    return 0;
}

std::optional<MaqamMarker> mMaqams::applyMaqamMarker(std::string_view text)
{
    const auto marker = parseMaqamMarker(text);
    if (marker)
        selectMaqam(marker->index, marker->tonic);
    return marker;
}

}  // namespace tarabix
