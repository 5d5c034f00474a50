#include "tools/samples/NoteText.h"

#include <array>
#include <numeric>
#include <sstream>

namespace tarabix::samples {

namespace {

constexpr std::array<int32_t, 7> kLetterSemitones = {0, 2, 4, 5, 7, 9, 11};  // C D E F G A B
constexpr std::array<const char*, 7> kItalianNames = {"do", "re", "mi", "fa", "sol", "la", "si"};

int32_t letterIndex(char c)
{
    static constexpr std::string_view letters = "CDEFGAB";
    const size_t i = letters.find(c);
    return i == std::string_view::npos ? -1 : static_cast<int32_t>(i);
}

// "/8." -> ticks and the engraver's "8."; false on anything else.
bool parseDuration(std::string_view text, int32_t& ticks, std::string& lily)
{
    const bool dotted = !text.empty() && text.back() == '.';
    if (dotted)
        text.remove_suffix(1);
    int32_t base = 0;
    if (text == "1")
        base = 4 * kTicksPerQuarter;
    else if (text == "2")
        base = 2 * kTicksPerQuarter;
    else if (text == "4")
        base = kTicksPerQuarter;
    else if (text == "8")
        base = kTicksPerQuarter / 2;
    else if (text == "16")
        base = kTicksPerQuarter / 4;
    else
        return false;
    ticks = dotted ? base + base / 2 : base;
    lily = std::string(text) + (dotted ? "." : "");
    return true;
}

std::string lilyOctave(int32_t octave)
{
    // The engraver's unmarked octave starts at C3; each ' goes up one, each , down one.
    return octave >= 3 ? std::string(static_cast<size_t>(octave - 3), '\'') : std::string(static_cast<size_t>(3 - octave), ',');
}

bool parsePitch(std::string_view text, MelodyNote& note)
{
    if (text.size() < 2)
        return false;
    const int32_t letter = letterIndex(text[0]);
    if (letter < 0)
        return false;
    size_t pos = 1;
    int32_t semis = 0;
    std::string suffix;
    switch (text[pos]) {
    case '#': semis = 1; suffix = "d"; ++pos; break;
    case 'b': semis = -1; suffix = "b"; ++pos; break;
    case '+': note.cents = 50; suffix = "sd"; ++pos; break;
    case '-': note.cents = -50; suffix = "sb"; ++pos; break;
    default: break;
    }
    if (pos + 1 != text.size() || text[pos] < '0' || text[pos] > '8')
        return false;
    const int32_t octave = text[pos] - '0';
    note.key = 12 * (octave + 1) + kLetterSemitones[static_cast<size_t>(letter)] + semis;
    note.lily = std::string(kItalianNames[static_cast<size_t>(letter)]) + suffix + lilyOctave(octave);
    return note.key >= 0 && note.key <= 127;
}

}  // namespace

int32_t barTicksOf(int32_t num, int32_t den)
{
    return num * 4 * kTicksPerQuarter / den;
}

bool parseMelody(std::string_view text, int32_t barTicks, std::vector<MelodyNote>& notes, std::string& error)
{
    // A bar line needs no blanks around it, so texts can be joined across source lines.
    std::string spaced;
    for (const char c : text)
        spaced += c == '|' ? std::string(" | ") : std::string(1, c);
    std::istringstream in{spaced};
    std::string token;
    int32_t ticks = kTicksPerQuarter;
    std::string lilyDuration = "4";
    int32_t inBar = 0;
    int32_t bar = 1;
    while (in >> token) {
        const auto fail = [&](const std::string& why) {
            error = "bar " + std::to_string(bar) + ", \"" + token + "\": " + why;
            return false;
        };
        if (token == "|") {
            if (inBar != 0)
                return fail("the bar holds " + std::to_string(inBar) + " ticks, not " + std::to_string(barTicks));
            continue;
        }
        MelodyNote note;
        std::string_view body = token;
        if (body.back() == '~') {
            note.tiedToNext = true;
            body.remove_suffix(1);
        }
        if (body == "R") {
            if (inBar != 0)
                return fail("a whole-bar rest must start a bar");
            note.wholeBarRest = true;
            note.ticks = barTicks;
            const int32_t whole = 4 * kTicksPerQuarter;
            const int32_t common = std::gcd(barTicks, whole);
            note.lily = "R1*" + std::to_string(barTicks / common) + "/" + std::to_string(whole / common);
        } else {
            const size_t slash = body.find('/');
            if (slash != std::string_view::npos && !parseDuration(body.substr(slash + 1), ticks, lilyDuration))
                return fail("unknown duration");
            const std::string_view pitch = body.substr(0, slash);
            if (pitch == "r")
                note.lily = "r";
            else if (!parsePitch(pitch, note))
                return fail("unknown note");
            note.ticks = ticks;
            note.lily += lilyDuration;
            if (note.tiedToNext)
                note.lily += "~";
        }
        if (!notes.empty() && notes.back().tiedToNext && notes.back().key != note.key)
            return fail("a tie joins notes of different pitch");
        inBar += note.ticks;
        if (inBar > barTicks)
            return fail("the note crosses the bar line");
        if (inBar == barTicks) {
            inBar = 0;
            ++bar;
        }
        notes.push_back(std::move(note));
    }
    if (inBar != 0) {
        error = "the last bar holds " + std::to_string(inBar) + " ticks, not " + std::to_string(barTicks);
        return false;
    }
    return true;
}

}  // namespace tarabix::samples
