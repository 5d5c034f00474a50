#include "oud/model/Tunings.h"

#include <string_view>

namespace tarabix {

namespace {

std::vector<std::string_view> splitAt(std::string_view text, std::string_view separator)
{
    std::vector<std::string_view> pieces;
    size_t start = 0;
    for (size_t at; (at = text.find(separator, start)) != std::string_view::npos; start = at + separator.size())
        pieces.push_back(text.substr(start, at - start));
    pieces.push_back(text.substr(start));
    return pieces;
}

// A whole number with an optional sign and nothing else: blanks, fractions and exponents make the
// line unusable rather than silently meaning something else.
std::optional<int32_t> toInt32(std::string_view text)
{
    bool negative = false;
    if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
        negative = text.front() == '-';
        text.remove_prefix(1);
    }
    if (text.empty())
        return std::nullopt;
    int64_t value = 0;
    for (char c : text) {
        if (c < '0' || c > '9')
            return std::nullopt;
        value = value * 10 + (c - '0');
        if (value > int64_t{INT32_MAX} + 1)
            return std::nullopt;
    }
    if (negative)
        value = -value;
    if (value > INT32_MAX)
        return std::nullopt;
    return static_cast<int32_t>(value);
}

}  // namespace

TuningRec builtInTuning()
{
    TuningRec rec;
    rec.id = 0;
    rec.numStrings = 6;
    rec.stringPitch = {0, 0, 0, 0, 0, 0};
    rec.stringCents = {0, 45, 50, 55, 60, 65};
    rec.name = "F2 - A2 - D3 - G3 - C4 - F4";
    rec.nameSolfege = "Fa - La - Re - Sol - Do - Fa";
    return rec;
}

std::optional<TuningRec> parseTuningLine(const std::string& line)
{
    const auto fields = splitAt(line, " :: ");
    if (fields.size() != 4)
        return std::nullopt;
    const auto id = toInt32(fields[0]);
    if (!id)
        return std::nullopt;
    const auto pitches = splitAt(fields[3], " ");
    if (pitches.size() > static_cast<size_t>(kMaxStrings))
        return std::nullopt;

    TuningRec rec;
    rec.id = *id;
    rec.name = fields[1];
    rec.nameSolfege = fields[2];
    rec.numStrings = static_cast<int32_t>(pitches.size());
    for (size_t i = 0; i < pitches.size(); ++i) {
        const auto pitch = toInt32(pitches[i]);
        if (!pitch || *pitch < 0 || *pitch > 127)
            return std::nullopt;
        rec.stringPitch[i] = *pitch;
    }
    return rec;
}

int32_t parseTunings(const std::string& text, std::vector<TuningRec>& tunings)
{
    std::string_view body = text;
    // Editors on Windows like to put a byte-order mark in front of UTF-8 text.
    if (body.starts_with("\xEF\xBB\xBF"))
        body.remove_prefix(3);

    const auto lines = splitAt(body, "\r\n");
    std::vector<TuningRec> read;
    if (lines.size() > 1) {
        for (std::string_view line : lines) {
            if (line.empty() || line.starts_with("//"))
                continue;
            if (auto rec = parseTuningLine(std::string(line)))
                read.push_back(std::move(*rec));
        }
    }
    if (read.empty()) {
        tunings = {builtInTuning()};
        return kTuningsBuiltIn;
    }
    tunings = std::move(read);
    return kTuningsLoaded;
}

std::string octaveCaption(int32_t octShift)
{
    std::string caption = (octShift >= 0 ? "+" : "") + std::to_string(octShift) + " Octave";
    if (octShift > 1 || octShift < -1)
        caption += "s";
    return caption;
}

}  // namespace tarabix
