#pragma once

#include "midi/MidiTrack.h"

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

namespace tarabix {

class StringStreamIn;

// One event for setFromList: the track it belongs to and its time in ticks from the start.
struct ListedEvent {
    int32_t track = 0;
    int32_t absTick = 0;
    MidiEvent event;  // eType and eData are used
};

// A Standard MIDI File in memory: header values and tracks. Reading stamps every event with its
// absolute tick and its time in milliseconds at normal speed, which the player schedules by.
class MidiFile {
public:
    // readMidi statuses of its own; the track statuses and run-time error numbers come back too.
    static constexpr int32_t kNotAHeaderChunk = -1;
    static constexpr int32_t kShortHeader = -2;
    static constexpr int16_t kDefaultDivision = static_cast<int16_t>(0xE728);  // 1000 ticks a second
    static constexpr int32_t kDefaultTempo = 500000;  // microseconds per quarter note until a tempo event

    // The tempo map's two rules, shared by the stamping of events and the beat grid: the length of
    // a quarter note a tempo event (FF 51) sets, and the time of a tick `ticksSinceTempo` ticks
    // after the last tempo change, which fell at tempoMs (before rounding to whole milliseconds).
    static double msPerQuarterOf(const MidiEvent& tempoEvent);
    static double msAfterTempo(int32_t tempoMs, double ticksSinceTempo, double msPerQuarter, int32_t division)
    {
        return tempoMs + ticksSinceTempo * msPerQuarter / division;
    }

    MidiFile() { clear(); }

    int16_t numOfTracks() const { return static_cast<int16_t>(m_tracks.size()); }
    MidiTrack* tracks(int32_t i);  // null outside 0 .. numOfTracks - 1
    const MidiTrack* tracks(int32_t i) const;
    // Resizes the track array keeping the existing tracks; also the header's track count. A count
    // below 1 raises kSubscriptOutOfRange.
    void setNTracks(int16_t n);

    int16_t midiFileFormat() const { return m_format; }
    void setMidiFileFormat(int16_t format) { m_format = format; }
    int16_t midiHdrDivision() const { return m_division; }  // raw: bit 15 set means SMPTE timing
    void setMidiHdrDivision(int16_t division) { m_division = division; }

    // The length of the piece in milliseconds: the latest last event over all tracks.
    int32_t allLastAbsMSec() const;

    // One empty track, format 1, one tick per millisecond.
    void clear();

    // Never throws. When the file cannot be opened at all the object is left as it was and the
    // status is 0; a missing file in an existing folder is created empty and fails as too short.
    int32_t readMidiFile(const std::string& path);
    // Never throws: 0 when the file was read and timed, otherwise a status; the tracks read so far
    // stay, without millisecond times.
    int32_t readMidi(StringStreamIn& stream);

    void copyFrom(const MidiFile& other);
    // Raises MidiError kInvalidArgument for a meta event the dump cannot describe.
    std::string toText() const;

    // Every event of every track in playing order (earliest tick first, the lower track first on
    // equal ticks), copied with its stored delta.
    MidiTrack make1TrackMidi() const;

    int32_t setEvtsAbsTicks();  // 0, or kOverflow when a track's ticks pass 32 bits
    // 0, kOverflow, or kDivisionByZero for a division of 0 ticks per quarter note.
    int32_t setEvtsAbsMSecs();

    // Called every few milliseconds while a long file is timed, so a window can stay responsive;
    // the clock is looked at every few thousand events, not per event.
    void setYieldHook(std::function<void()> hook, int32_t intervalMs = 10);

    // Replaces the tracks by the listed events (format and division stay): the tracks needed for
    // the highest track index, each track's events ordered by tick (list order on equal ticks), the
    // deltas from the ticks, an end-of-track after the last event of every track, then the times.
    // Returns kSubscriptOutOfRange for a track index outside 0..32766, kInvalidArgument for a
    // negative tick, otherwise the status of setEvtsAbsMSecs.
    int32_t setFromList(std::span<const ListedEvent> events);

    std::string makeMidiStr() const;
    // Replaces any file at path. Returns 0, kPathFileAccessError when it cannot be created, or
    // kDeviceIoError when writing fails.
    int32_t toFile(const std::string& path) const;

    // Hands the channel messages of a track to sink.addGenShortMsg(delta, packed), packed as an
    // output port takes it. The deltas of skipped meta and system exclusive events are carried to
    // the next message, so the timing stays.
    template <class Sink>
    static void track2extrObj(const MidiTrack& track, Sink& sink)
    {
        int32_t carried = 0;
        for (const MidiEvent& e : track.events()) {
            carried += e.deltaTick;
            if (e.eType != MidiEvent::kChannelMessage || e.eData.size() < 3)
                continue;
            const int32_t packed = static_cast<uint8_t>(e.eData[0]) | static_cast<uint8_t>(e.eData[1]) << 8 |
                                   static_cast<uint8_t>(e.eData[2]) << 16;
            sink.addGenShortMsg(carried, packed);
            carried = 0;
        }
    }

private:
    int32_t stampTicksPerQuarter();
    int32_t stampSmpte();
    void maybeYield(int32_t& eventsSinceCheck);

    std::vector<MidiTrack> m_tracks;
    int16_t m_format = 1;
    int16_t m_division = kDefaultDivision;
    std::function<void()> m_yieldHook;
    int32_t m_yieldIntervalMs = 10;
    int32_t m_lastYieldMs = 0;
};

}  // namespace tarabix
