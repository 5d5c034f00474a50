// Every shipped piece started inside itself sounds its next notes exactly as when played from the
// beginning: same program, same quarter tone, same volume, pan and expression on the device.
#include "PitchEstimator.h"
#include "TestFiles.h"
#include "midi/MergedTracks.h"
#include "midi/MidiBytes.h"
#include "playback/MidiPlayer.h"
#include "playback/PieceRender.h"
#include "playback/PieceRouter.h"
#include "playback/RecorderPort.h"
#include "playback/VirtualClock.h"
#include "playback/SoundFontLocator.h"
#include "playback/mMidiMain.h"
#include "tests/common/SamplePieces.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <ostream>
#include <sstream>
#include <string>
#include <vector>

namespace tarabix {
namespace {

constexpr int32_t kListenMs = 3000;  // how much is compared after each start

struct HeardNote {
    int32_t atMs;
    int32_t cents;
    std::string how;  // channel, note, velocity and the channel's sound settings
    bool operator==(const HeardNote&) const = default;
};

std::ostream& operator<<(std::ostream& out, const HeardNote& n)
{
    return out << n.atMs << " ms " << n.how << " cents " << n.cents;
}

// What a General MIDI device does with the recorded words: each note-on with the state of its
// channel at that moment.
std::vector<HeardNote> heardNotes(const std::vector<RecordedMessage>& sent)
{
    struct Channel {
        int program = 0;
        int32_t cents = 0;
        std::array<int, 128> cc{};
    };
    std::array<Channel, 16> channels;
    std::vector<HeardNote> notes;
    for (const RecordedMessage& m : sent) {
        const uint32_t kind = m.message & 0xF0;
        Channel& ch = channels[m.message & 0x0F];
        const uint32_t c1 = (m.message >> 8) & 0x7F;
        const uint32_t c2 = (m.message >> 16) & 0x7F;
        if (kind == 0xC0) {
            ch.program = static_cast<int>(c1);
        } else if (kind == 0xB0) {
            ch.cc[c1] = static_cast<int>(c2);
        } else if (kind == 0xE0) {
            ch.cents = wheelToCents(static_cast<int32_t>(c2 * 128 + c1));
        } else if (kind == 0x90 && c2 != 0) {
            std::ostringstream how;
            how << "ch" << (m.message & 0x0F) << " note " << c1 << " vel " << c2 << " program " << ch.program
                << " bank " << ch.cc[0] << "/" << ch.cc[32] << " vol " << ch.cc[7] << " pan " << ch.cc[10]
                << " expr " << ch.cc[11];
            notes.push_back({m.timeMs, ch.cents, how.str()});
        }
    }
    return notes;
}

// The piece played on the virtual clock from fromMs until untilMs of piece time, into a recorder;
// the recorded times are piece times.
std::vector<RecordedMessage> playSpan(const MidiFile& piece, int32_t fromMs, int32_t untilMs)
{
    resetMidiMainState();
    VirtualClock clock;
    auto recording = std::make_shared<MidiRecording>();
    setMidiOutBackend({[] { return std::vector<std::string>{}; },
                       [&](int32_t) { return std::make_unique<RecorderPort>(recording, [&] { return clock.now(); }); }});
    EXPECT_EQ(reopenMidiOut(), kMidiOutOk);
    MidiPlayer player(clock.playerClock());
    PieceRouter router;
    player.resetPlayState();
    player.setTheMidi(&piece);
    player.setStartOffsetMSecMidi(fromMs);
    player.msg = [&](uint8_t status, uint8_t c1, uint8_t c2, int32_t) { router.route(status, c1, c2); };
    player.chase = [&](int32_t startMs) { router.startFrom(&piece, startMs); };
    clock.at(untilMs - fromMs, [&] { player.stopPlaying(); });
    player.play();
    resetMidiMainState();
    std::vector<RecordedMessage> sent = recording->messages();
    for (RecordedMessage& m : sent)
        m.timeMs += fromMs;
    return sent;
}

TEST(SamplePiecesChase, NotesAfterAStartInsideThePieceSoundAsInTheWholePiece)
{
    int quarterTonesCompared = 0;
    for (const std::string& path : test::samplePiecePaths()) {
        MidiFile piece;
        ASSERT_EQ(test::readPiece(path, piece), 0) << path;
        const int32_t length = piece.allLastAbsMSec();
        const std::vector<HeardNote> wholeHeard = heardNotes(playSpan(piece, 0, length));
        for (const int32_t fromMs : {length / 4 + 7, length / 2 + 333, length * 3 / 4 + 1}) {
            SCOPED_TRACE(path + " from " + std::to_string(fromMs) + " ms");
            std::vector<HeardNote> expected;
            for (const HeardNote& n : wholeHeard)
                if (n.atMs >= fromMs && n.atMs < fromMs + kListenMs)
                    expected.push_back(n);
            ASSERT_FALSE(expected.empty());
            EXPECT_EQ(heardNotes(playSpan(piece, fromMs, fromMs + kListenMs)), expected);
            for (const HeardNote& n : expected)
                quarterTonesCompared += n.cents % 100 != 0;
        }
    }
    EXPECT_GT(quarterTonesCompared, 10);  // the comparison covers notes off the semitone grid
}

struct AskedNote {
    int32_t onMs = 0;
    int32_t offMs = -1;
    int note = 0;
    double cents = 0;  // the channel's wheel then, bent over two semitones, not rounded
};

// The first note of a pitched channel at or after fromMs that lies a quarter tone off the
// semitones, lasts long enough to measure, and sounds with no other pitched note (the drums may
// play). Worked out from the piece's own events, apart from the program's chase.
std::optional<AskedNote> firstLoneQuarterTone(const MidiFile& piece, int32_t fromMs)
{
    constexpr int kPercussion = 9;
    std::array<int, 16> wheel;
    wheel.fill(8192);
    std::vector<AskedNote> notes;
    MergedTracks walk(&piece);
    walk.seek(0);
    for (int32_t t = walk.nextTrack(); t >= 0; t = walk.nextTrack()) {
        const MidiEvent& e = walk.nextEvent(t);
        walk.advance(t);
        if (e.eType != MidiEvent::kChannelMessage || e.eData.size() < 3)
            continue;
        const int channel = e.eData[0] & 0x0F;
        const int kind = static_cast<uint8_t>(e.eData[0]) & 0xF0;
        const int d1 = static_cast<uint8_t>(e.eData[1]);
        const int d2 = static_cast<uint8_t>(e.eData[2]);
        if (kind == 0xE0)
            wheel[static_cast<size_t>(channel)] = d1 | d2 << 7;
        if (channel == kPercussion)
            continue;
        if (kind == 0x90 && d2 > 0) {
            notes.push_back({e.absMS, -1, d1, (wheel[static_cast<size_t>(channel)] - 8192) / 8192.0 * 200.0});
        } else if (kind == 0x80 || kind == 0x90) {
            const auto open = std::find_if(notes.begin(), notes.end(), [&](const AskedNote& n) {
                return n.offMs < 0 && n.note == d1;
            });
            if (open != notes.end())
                open->offMs = e.absMS;
        }
    }
    for (const AskedNote& n : notes) {
        if (n.onMs < fromMs || n.offMs - n.onMs < 250 || std::fmod(std::abs(n.cents), 100.0) < 25.0)
            continue;
        if (std::none_of(notes.begin(), notes.end(), [&](const AskedNote& o) {
                return &o != &n && o.onMs < n.offMs && (o.offMs < 0 || o.offMs > n.onMs);
            }))
            return n;
    }
    return std::nullopt;
}

// What a learner hears, not only what reaches the device: each sample rendered from three places
// inside it sounds its next lone quarter tone in tune (a start that forgot the wheel is 50 cents off).
TEST(SamplePiecesChase, ARenderFromInsideThePieceIsHeardAtItsQuarterTones)
{
    if (findSoundFont().empty())
        GTEST_SKIP() << "no General MIDI SoundFont installed";
    const std::string wavPath = test::scratchPath("render-from-inside.wav");
    int measured = 0;
    for (const std::string& path : test::samplePiecePaths()) {
        MidiFile piece;
        ASSERT_EQ(test::readPiece(path, piece), 0) << path;
        const int32_t length = piece.allLastAbsMSec();
        for (const int32_t fromMs : {length / 4 + 7, length / 2 + 333, length * 3 / 4 + 1}) {
            const std::optional<AskedNote> asked = firstLoneQuarterTone(piece, fromMs);
            if (!asked)
                continue;  // no quarter tone after this start (a maqam without them)
            SCOPED_TRACE(path + " from " + std::to_string(fromMs) + " ms, note " + std::to_string(asked->note));
            PieceRenderOptions options;
            options.fromMs = fromMs;
            options.lengthMs = asked->offMs - fromMs;
            options.tailMs = 0;
            const PieceRenderResult result = renderPieceToWav(piece, wavPath, options);
            ASSERT_TRUE(result.ok) << result.error;
            const double heardHz = test::stereoFundamentalHz(test::wavSamples16(test::readBytes(wavPath)), 44100, (asked->onMs - fromMs + 80) / 1000.0,
                                                             (asked->offMs - fromMs - 30) / 1000.0);
            const double askedHz = 440.0 * std::pow(2.0, (asked->note - 69 + asked->cents / 100.0) / 12.0);
            EXPECT_NEAR(test::centsBetween(heardHz, askedHz), 0.0, 8.0) << heardHz << " Hz against " << askedHz;
            ++measured;
        }
    }
    std::filesystem::remove(wavPath);
    EXPECT_GE(measured, 20);  // most starts of the quarter-tone maqams are measured
}

}  // namespace
}  // namespace tarabix
