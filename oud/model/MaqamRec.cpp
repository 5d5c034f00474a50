#include "oud/model/MaqamRec.h"

#include "settings/TextNumbers.h"

#include <algorithm>

namespace tarabix {
namespace {

bool isNatural(int32_t k)
{
    return k == 0 || k == 2 || k == 4 || k == 5 || k == 7 || k == 9 || k == 11;
}

// Naturals are their own letter with a quarter-tone sharp above; a black key's quarter tone above
// is the next letter a quarter tone flat. Only the spelling of the black key itself differs between
// the plain table and a maqam's.
template <typename BlackKeySpelling>
StepSpelling buildSteps(BlackKeySpelling blackKey)
{
    StepSpelling steps{};
    for (int32_t k = 0; k < 12; ++k) {
        const size_t step = static_cast<size_t>(2 * k);
        if (isNatural(k)) {
            steps[step] = {(k + 1) / 2, kNatural};
            steps[step + 1] = {(k + 1) / 2, kQuarterSharp};
        } else {
            steps[step] = blackKey(k);
            steps[step + 1] = {(k + 2) / 2, kQuarterFlat};
        }
    }
    return steps;
}

}  // namespace

std::optional<DegreeValues> parseSevenNumbers(std::string_view text)
{
    DegreeValues values{};
    size_t count = 0;
    while (true) {
        const size_t comma = text.find(',');
        const std::string_view piece = text.substr(0, comma);
        if (count == kMaqamDegrees)
            return std::nullopt;
        const auto value = textToInt32(piece);
        if (!value)
            return std::nullopt;
        values[count++] = *value;
        if (comma == std::string_view::npos)
            break;
        text.remove_prefix(comma + 1);
    }
    if (count != kMaqamDegrees)
        return std::nullopt;
    return values;
}

StepSpelling plainStepSpelling()
{
    return buildSteps([](int32_t k) { return SpelledNote{(k + 2) / 2, kFlat}; });
}

StepSpelling maqamStepSpelling(const DegreeValues& pitchClasses)
{
    return buildSteps([&](int32_t k) {
        const bool degreeBelow = std::find(pitchClasses.begin(), pitchClasses.end(), k - 1) != pitchClasses.end();
        return degreeBelow ? SpelledNote{(k + 2) / 2, kFlat} : SpelledNote{k / 2, kSharp};
    });
}

int32_t pitchClassOf(int64_t semitones)
{
    return static_cast<int32_t>(((semitones % 12) + 12) % 12);
}

}  // namespace tarabix
