// tarabix-soak-pieces OUT_DIR COUNT [SEED]: writes COUNT short random but valid Standard MIDI Files
// through our own MIDI writer, for the soak run (scripts/soak). Each piece lasts about 1 to 5 s
// and mixes what real pieces carry: several tracks, tempo changes, notes on every channel
// (drums too), program changes, pitch wheels in quarter tones, text markers with "Q:" maqam
// choices (known, unknown, malformed), lyrics, names, system exclusive messages, and every kind
// of division (ticks per quarter note and SMPTE frames).
#include "midi/EventList.h"
#include "midi/MidiBytes.h"
#include "midi/MidiFile.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace tarabix;

// SMPTE: high byte the negative frame rate, low byte ticks per frame.
constexpr int16_t smpte(int framesPerSecond, int ticksPerFrame)
{
    return static_cast<int16_t>(static_cast<uint16_t>((256 - framesPerSecond) << 8 | ticksPerFrame));
}

const int16_t kDivisions[] = {24, 96, 120, 480, 960, 1, smpte(24, 40), smpte(25, 40), smpte(29, 80), smpte(30, 100)};

// SMPTE divisions ignore the tempo.
double msPerTickAtDefaultTempo(int16_t division)
{
    return division > 0 ? 500.0 / division : 1000.0 / ((256 - (static_cast<uint16_t>(division) >> 8)) * (division & 0xFF));
}

const char* const kMarkers[] = {"Q:Rast/0", "Q:Bayati/2", "q:saba/7",  "Q:Hijaz/11", "Q:Nahawand/5",
                                "Q:Sikah/4", "Q:Unknown/3", "Q:Rast/12", "Q:Rast/x",  "Q:/1",
                                "Q:Kurd/-1", "Q:Huzam/ 4",  "verse 2",   "Q:",        "Q:Ajam/0/1"};

class PieceMaker {
public:
    explicit PieceMaker(uint32_t seed) : m_rng(seed) {}

    std::string make()
    {
        m_events.clear();
        const int16_t division = kDivisions[pick(0, std::size(kDivisions) - 1)];
        const int tracks = pick(1, 5);
        const bool format0 = tracks == 1 && pick(0, 1) == 0;
        // Ticks for 1 to 5 s at the default tempo; tempo changes keep within half to twice it.
        const int32_t lastTick = static_cast<int32_t>(pick(1000, 5000) / msPerTickAtDefaultTempo(division)) + 1;

        if (pick(0, 1))
            m_events.meta(0, 0, midimeta::kTrackName, "soak piece");
        m_events.meta(0, 0, midimeta::kTimeSignature, std::string{4, 2, 24, 8});
        // SMPTE pieces carry tempo events too: their timing must ignore them.
        for (int changes = pick(0, 4); changes > 0; --changes)
            m_events.tempo(0, pick(0, lastTick), pick(250000, 1000000));
        for (int t = 0; t < tracks; ++t)
            fillTrack(t, lastTick);

        MidiFile file;
        file.setMidiFileFormat(format0 ? 0 : 1);
        file.setMidiHdrDivision(division);
        if (const int32_t status = file.setFromList(m_events.events())) {
            std::fprintf(stderr, "tarabix-soak-pieces: setFromList status %d\n", status);
            return {};
        }
        // Our writer leaves system exclusive messages out, as the player never sends them; a piece
        // from elsewhere may still carry them, so some pieces get a track of them added by hand.
        return !format0 && pick(0, 2) == 0 ? withSysExTrack(file.makeMidiStr(), lastTick) : file.makeMidiStr();
    }

private:
    int pick(int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(m_rng); }

    void channel(int32_t track, int32_t tick, int status, int d1, int d2)
    {
        m_events.channel(track, tick, static_cast<uint8_t>(status), static_cast<uint8_t>(d1), static_cast<uint8_t>(d2));
    }

    void fillTrack(int32_t track, int32_t lastTick)
    {
        const int ch = pick(0, 15);
        m_events.meta(track, 0, midimeta::kTrackName, "track " + std::to_string(track));
        if (pick(0, 1))
            m_events.meta(track, 0, midimeta::kInstrumentName, "oud");
        channel(track, 0, midistatus::kProgramChange | ch, pick(0, 127), 0);
        for (int notes = pick(0, 40); notes > 0; --notes) {
            const int32_t on = pick(0, lastTick);
            const int32_t off = std::min(lastTick, on + pick(0, lastTick / 4 + 1));
            const int key = pick(0, 127);
            const int noteCh = pick(0, 5) == 0 ? pick(0, 15) : ch;
            if (pick(0, 3) == 0)  // a quarter tone: the wheel moves while the channel is silent, then comes back
                m_events.pitchWheel(track, on, static_cast<uint8_t>(noteCh), pick(-4, 4) * 50);
            channel(track, on, midistatus::kNoteOn | noteCh, key, pick(1, 127));
            // Half the notes end with a note-on of velocity 0, as many writers do.
            const bool noteOff = pick(0, 1) != 0;
            channel(track, off, (noteOff ? midistatus::kNoteOff : midistatus::kNoteOn) | noteCh, key, noteOff ? pick(0, 127) : 0);
        }
        for (int others = pick(0, 10); others > 0; --others) {
            const int32_t tick = pick(0, lastTick);
            switch (pick(0, 6)) {
            case 0: channel(track, tick, midistatus::kProgramChange | pick(0, 15), pick(0, 127), 0); break;
            case 1: channel(track, tick, midistatus::kController | pick(0, 15), pick(0, 127), pick(0, 127)); break;
            case 2: channel(track, tick, midistatus::kPitchWheel | pick(0, 15), pick(0, 127), pick(0, 127)); break;
            case 3: channel(track, tick, midistatus::kChannelPressure | pick(0, 15), pick(0, 127), 0); break;
            case 4: channel(track, tick, midistatus::kKeyPressure | pick(0, 15), pick(0, 127), pick(0, 127)); break;
            case 5: m_events.meta(track, tick, midimeta::kLyric, "la"); break;
            default: m_events.meta(track, tick, pick(0, 1) ? midimeta::kText : midimeta::kMarker, kMarkers[pick(0, std::size(kMarkers) - 1)]); break;
            }
        }
    }

    static std::string vlq(uint32_t n)
    {
        std::string out(1, static_cast<char>(n & 0x7F));
        while (n >>= 7)
            out.insert(out.begin(), static_cast<char>(0x80 | (n & 0x7F)));
        return out;
    }

    std::string withSysExTrack(std::string smf, int32_t lastTick)
    {
        std::string body;
        const int messages = pick(1, 4);
        for (int i = 0; i < messages; ++i) {
            std::string data(static_cast<size_t>(pick(0, 20)), '\0');
            for (char& b : data)
                b = static_cast<char>(pick(0, 127));
            data += '\xF7';
            body += vlq(static_cast<uint32_t>(pick(0, lastTick / messages))) + '\xF0' + vlq(static_cast<uint32_t>(data.size())) + data;
        }
        body += std::string("\x00\xFF\x2F\x00", 4);
        smf += "MTrk";
        appendBigEndian(smf, static_cast<uint32_t>(body.size()), 4);
        smf += body;
        // One more track in the header's count (bytes 10-11).
        smf.replace(10, 2, bigEndianBytes(readBigEndian(std::string_view(smf).substr(10, 2)) + 1, 2));
        return smf;
    }

    std::mt19937 m_rng;
    EventList m_events;
};

}  // namespace

int main(int argc, char* argv[])
{
    if (argc < 3) {
        std::fputs("usage: tarabix-soak-pieces OUT_DIR COUNT [SEED]\n", stderr);
        return 2;
    }
    const std::string dir = argv[1];
    const int count = std::atoi(argv[2]);
    PieceMaker maker(argc > 3 ? static_cast<uint32_t>(std::strtoul(argv[3], nullptr, 10)) : 1);
    for (int i = 0; i < count; ++i) {
        const std::string bytes = maker.make();
        char name[32];
        std::snprintf(name, sizeof name, "/random-%04d.mid", i);
        const std::string path = dir + name;
        std::ofstream out(path, std::ios::binary);
        if (bytes.empty() || !out.write(bytes.data(), static_cast<std::streamsize>(bytes.size())) || (out.close(), !out)) {
            std::fprintf(stderr, "tarabix-soak-pieces: cannot write %s\n", path.c_str());
            return 1;
        }
    }
    return 0;
}
