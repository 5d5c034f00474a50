#include "tools/samples/PieceMidi.h"

#include "midi/EventList.h"
#include "midi/MidiBytes.h"

#include <cmath>

namespace tarabix::samples {

namespace {

constexpr uint8_t kOudChannel = 0;
constexpr uint8_t kDrumChannel = kMidiPercussionChannel;
constexpr int32_t kConductorTrack = 0;
constexpr int32_t kOudTrack = 1;
constexpr int32_t kDrumTrack = 2;

// General MIDI drum keys that come closest to a darbuka: the low conga under a soft bass drum for
// the doum, the high bongo for the tek, the muted conga for the quiet ornaments.
constexpr uint8_t kDoumKey = 64;
constexpr uint8_t kDoumBodyKey = 35;
constexpr uint8_t kTekKey = 60;
constexpr uint8_t kKaKey = 62;

std::string timeSignatureBytes(const Rhythm& r)
{
    const auto denPower = static_cast<char>(std::lround(std::log2(r.den)));
    return {static_cast<char>(r.num), denPower, 24, 8};
}

// Louder on the bar's first beat, a little on the other beats, softer between them: the accents
// an oud player gives a dance tune.
uint8_t velocityAt(int32_t tickInBar)
{
    if (tickInBar == 0)
        return 100;
    return tickInBar % kTicksPerQuarter == 0 ? 88 : 76;
}

void addMelody(const ParsedPiece& parsed, int32_t barTicks, EventList& out)
{
    const Piece& piece = *parsed.piece;
    int32_t tick = 0;
    int32_t wheelCents = 0;
    int32_t soundingKey = -1;
    bool continuesTie = false;
    for (size_t s = 0; s < piece.sections.size(); ++s) {
        const Section& section = piece.sections[s];
        for (int32_t r = 0; r < section.repeats; ++r) {
            if (r == 0 && !section.maqamChange.empty())
                out.meta(kOudTrack, tick, midimeta::kText, "Q:" + section.maqamChange);
            int32_t sectionTick = 0;
            for (const MelodyNote& note : parsed.sections[s]) {
                if (note.key >= 0 && !continuesTie) {
                    // The wheel moves only between notes, so a sounding note never slides.
                    if (note.cents != wheelCents) {
                        out.pitchWheel(kOudTrack, tick, kOudChannel, note.cents);
                        wheelCents = note.cents;
                    }
                    out.channel(kOudTrack, tick, midistatus::kNoteOn | kOudChannel, static_cast<uint8_t>(note.key),
                                velocityAt(sectionTick % barTicks));
                    soundingKey = note.key;
                }
                tick += note.ticks;
                sectionTick += note.ticks;
                continuesTie = note.key >= 0 && note.tiedToNext;
                if (soundingKey >= 0 && !continuesTie) {
                    out.channel(kOudTrack, tick, midistatus::kNoteOff | kOudChannel, static_cast<uint8_t>(soundingKey), 64);
                    soundingKey = -1;
                }
            }
        }
    }
    if (wheelCents != 0)
        out.pitchWheel(kOudTrack, tick, kOudChannel, 0);
}

void addStroke(EventList& out, int32_t tick, char stroke, int32_t length)
{
    const auto hit = [&](uint8_t key, uint8_t velocity) {
        out.channel(kDrumTrack, tick, midistatus::kNoteOn | kDrumChannel, key, velocity);
        out.channel(kDrumTrack, tick + length, midistatus::kNoteOff | kDrumChannel, key, 64);
    };
    switch (stroke) {
    case 'D':
        hit(kDoumKey, 96);
        hit(kDoumBodyKey, 70);
        break;
    case 'T': hit(kTekKey, 92); break;
    case 'k': hit(kKaKey, 58); break;
    default: break;
    }
}

void addDrums(const ParsedPiece& parsed, int32_t barTicks, EventList& out)
{
    const Piece& piece = *parsed.piece;
    const Rhythm& rhythm = *piece.rhythm;
    const int32_t step = 4 * kTicksPerQuarter / rhythm.unit;
    int32_t tick = 0;
    for (size_t s = 0; s < piece.sections.size(); ++s) {
        const Section& section = piece.sections[s];
        int32_t sectionTicks = 0;
        for (const MelodyNote& note : parsed.sections[s])
            sectionTicks += note.ticks;
        const int32_t bars = sectionTicks / barTicks;
        const bool lastSection = s + 1 == piece.sections.size();
        for (int32_t r = 0; r < section.repeats; ++r) {
            const bool lastRepeat = r + 1 == section.repeats;
            for (int32_t b = 0; b < bars; ++b) {
                const bool lastBar = lastRepeat && b + 1 == bars;
                if (lastBar && lastSection) {
                    addStroke(out, tick, 'D', barTicks / 2);  // the closing doum, let ring
                    tick += barTicks;
                    continue;
                }
                const std::string& strokes = lastBar ? rhythm.fill : rhythm.pattern;
                for (size_t i = 0; i < strokes.size(); ++i)
                    addStroke(out, tick + static_cast<int32_t>(i) * step, strokes[i], step / 2);
                tick += barTicks;
            }
        }
    }
}

}  // namespace

bool parsePiece(const Piece& piece, ParsedPiece& parsed, std::string& error)
{
    parsed.piece = &piece;
    parsed.sections.clear();
    const int32_t barTicks = barTicksOf(piece.rhythm->num, piece.rhythm->den);
    if (static_cast<int32_t>(piece.rhythm->pattern.size()) * 4 * kTicksPerQuarter / piece.rhythm->unit != barTicks) {
        error = piece.rhythm->name + ": the pattern does not fill one bar";
        return false;
    }
    for (const Section& section : piece.sections) {
        std::vector<MelodyNote> notes;
        if (!parseMelody(section.melody, barTicks, notes, error)) {
            error = piece.fileName + ", section " + section.label + ": " + error;
            return false;
        }
        parsed.sections.push_back(std::move(notes));
    }
    return true;
}

int32_t buildPieceMidi(const ParsedPiece& parsed, MidiFile& midi)
{
    const Piece& piece = *parsed.piece;
    const int32_t barTicks = barTicksOf(piece.rhythm->num, piece.rhythm->den);
    EventList out;

    out.meta(kConductorTrack, 0, midimeta::kTrackName, piece.title);
    out.meta(kConductorTrack, 0, midimeta::kTimeSignature, timeSignatureBytes(*piece.rhythm));
    int32_t tick = 0;
    for (size_t s = 0; s < piece.sections.size(); ++s) {
        const Section& section = piece.sections[s];
        if (s == 0 || section.bpm != piece.sections[s - 1].bpm)
            out.tempo(kConductorTrack, tick, 60'000'000 / section.bpm);
        for (const MelodyNote& note : parsed.sections[s])
            tick += note.ticks * section.repeats;
    }

    out.meta(kOudTrack, 0, midimeta::kTrackName, "Oud");
    out.meta(kOudTrack, 0, midimeta::kText, "Q:" + piece.maqam + "/" + std::to_string(piece.tonic));
    out.channel(kOudTrack, 0, midistatus::kProgramChange | kOudChannel, static_cast<uint8_t>(piece.program), 0);
    // Pitch-bend range of two semitones (registered parameter 0), then back to no parameter.
    using namespace midicc;
    for (const auto& [cc, value] : {std::pair{kRegisteredMsb, 0}, {kRegisteredLsb, 0}, {kDataEntryMsb, 2}, {kDataEntryLsb, 0},
                                    {kRegisteredMsb, kNoParameter}, {kRegisteredLsb, kNoParameter}})
        out.channel(kOudTrack, 0, midistatus::kController | kOudChannel, cc, static_cast<uint8_t>(value));
    out.channel(kOudTrack, 0, midistatus::kController | kOudChannel, kVolume, 110);
    out.channel(kOudTrack, 0, midistatus::kController | kOudChannel, kReverb, 40);
    addMelody(parsed, barTicks, out);

    out.meta(kDrumTrack, 0, midimeta::kTrackName, "Darbuka");
    out.channel(kDrumTrack, 0, midistatus::kController | kDrumChannel, midicc::kVolume, 90);
    addDrums(parsed, barTicks, out);

    midi.clear();
    midi.setMidiFileFormat(1);
    midi.setMidiHdrDivision(static_cast<int16_t>(kTicksPerQuarter));
    return midi.setFromList(out.events());
}

}  // namespace tarabix::samples
