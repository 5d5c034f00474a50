#pragma once

#include "midi/MidiBytes.h"
#include "midi/MidiEvent.h"

#include <bitset>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tarabix {

class StringStreamIn;

// The events of one track in track order, and what the window needs to know about them: which
// channels and programs occur, the track's name and instrument, its latest maqam marker.
class MidiTrack {
public:
    // readTrk statuses of its own; run-time failures come back as their error numbers.
    static constexpr int32_t kNotATrackChunk = -1;
    static constexpr int32_t kEmptyChunk = -2;
    static constexpr int32_t kNoRunningStatus = -4;
    static constexpr int32_t kUnknownStatusByte = -5;

    std::string trkName;        // data of the last track-name meta event added
    std::string trkInstrument;  // data of the last instrument-name meta event added

    // Entries [0, trkNEvents) are the track; the array holds trkEventsArrSize entries, grown in
    // steps of 100 fresh events. Index errors raise kSubscriptOutOfRange.
    const MidiEvent& trkEvents(int32_t i) const;
    MidiEvent& trkEvents(int32_t i);
    void setTrkEvents(int32_t i, const MidiEvent& evt);
    std::span<const MidiEvent> events() const { return {m_events.data(), static_cast<size_t>(m_nEvents)}; }
    int32_t trkNEvents() const { return m_nEvents; }
    void setTrkNEvents(int32_t n);  // within 0 .. trkEventsArrSize
    int32_t trkEventsArrSize() const { return static_cast<int32_t>(m_events.size()); }

    bool trkChannels(int32_t channel) const;
    void setTrkChannels(int32_t channel, bool on);
    bool trkActInstrs(int32_t program) const;
    void setTrkActInstrs(int32_t program, bool on);
    int32_t trkNChannels() const;
    int32_t trkLastAbsMSec() const { return m_nEvents > 0 ? m_events[m_nEvents - 1].absMS : 0; }

    // The latest text event that selects a maqam: "Q:" (either case), a name, "/" at the fourth
    // character or later, and a tonic 0-11 after it. Empty when there is none, or when the scan
    // meets a marker whose tonic is not a number.
    std::string lastMaqamMetaText() const;

    void clear();
    void copyFrom(const MidiTrack& other);
    // Adds a copy of evt (the caller keeps evt). A program change above 127 is still added and then
    // raises kSubscriptOutOfRange, as no such program can be flagged.
    void addEvent(const MidiEvent& evt);
    void addChanMsg(int32_t deltaTick, uint8_t status, uint8_t data1, uint8_t data2);
    void addSysExEvt(int32_t deltaTick, std::string_view data);  // data begins with 0xF0
    void addMetaEvent(int32_t deltaTick, uint8_t metaType, std::string_view data);
    // A short message packed as an output port takes it: status, data1, data2 from the lowest byte.
    void addGenShortMsg(int32_t deltaTick, int32_t shortMsg);

    // Parses one "MTrk" chunk at the stream's position, adding its events. Never throws: returns 0
    // or a status (see above), the stream's kReadBeyondEnd when the chunk is longer than the input,
    // kInvalidArgument when an event runs past the chunk, kOverflow for a delta or length beyond
    // 32 bits. Events added before a failure stay.
    int32_t readTrk(StringStreamIn& stream);

    // "MTrk", the body length and the events without running status; system exclusive events are
    // left out, and a closing end-of-track is added unless the last event is exactly FF 2F 00.
    std::string makeMidiTrackStr() const;
    // absTick of every event from the deltas; kOverflow when a sum passes 32 bits, otherwise 0.
    int32_t setEvtsAbsTicks();
    // One line per event; raises kInvalidArgument for a meta event the dump cannot describe.
    std::string toText() const;

    void c_addTextE(int32_t dTick, std::string_view text);
    void c_addCopyrightE(int32_t dTick, std::string_view text);
    void c_addTracknameE(int32_t dTick, std::string_view text);
    void c_addInstrNameE(int32_t dTick, std::string_view text);
    void c_addLyricE(int32_t dTick, std::string_view text);
    void c_addEndOfTrack(int32_t dTick);
    void c_addNewTempo(int32_t dTick, int32_t musPerQN);
    // The channel is added to the status unmasked: callers pass 0-15.
    void c_addProgChangeE(int32_t dTick, uint8_t channel, uint8_t instrument);
    void c_addNoteOnE(int32_t dTick, uint8_t channel, uint8_t key, uint8_t force);
    void c_addNoteOffE(int32_t dTick, uint8_t channel, uint8_t key);
    // A shift in cents, clamped to -199..199, sent for a wheel range of two semitones. The text form
    // is a decimal number; anything else raises kTypeMismatch.
    void c_addPitchWheelE(int32_t dTick, uint8_t channel, double shiftCents);
    void c_addPitchWheelE(int32_t dTick, uint8_t channel, std::string_view shiftCents);

private:
    static constexpr int32_t kGrowStep = 100;  // fresh events added when the array is full

    MidiEvent& nextSlot();
    bool noteBookkeeping(const MidiEvent& evt);
    bool appendChannelMessage(int32_t deltaTick, uint8_t status, uint8_t data1, uint8_t data2);
    void appendMeta(int32_t deltaTick, uint8_t metaType, std::string_view data);
    int32_t parseBody(std::string_view body);

    std::vector<MidiEvent> m_events;
    int32_t m_nEvents = 0;
    // Bits rather than bools: a header may announce 32767 tracks before any of them is read.
    std::bitset<kMidiChannels> m_channels;
    std::bitset<128> m_programs;
};

}  // namespace tarabix
