#pragma once

#include "playback/MidiOutPort.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

// The one owner of the program's MIDI output: the device id, the open output, and per channel the
// program and the pitch shift in cents that every (re)opened output is given back. All functions
// run on the user-interface thread.
namespace tarabix {

inline constexpr int32_t kMidiMapperId = -1;
inline constexpr const char* kMidiMapperName = "MIDI Mapper";

struct MidiOutDevice {
    int32_t id;
    std::string name;
    bool operator==(const MidiOutDevice&) const = default;
};

// Where outputs come from: the names of devices 0..n-1, and a fresh output for an id
// (kMidiMapperId included); nullptr when there is no such device.
struct MidiOutBackend {
    std::function<std::vector<std::string>()> deviceNames;
    std::function<std::unique_ptr<MidiOutPort>(int32_t id)> makePort;
    // Why the system offers no devices at all (no MIDI sequencer), asked after deviceNames();
    // may be left empty.
    std::function<std::string()> devicesProblem = {};
};

int32_t getMidiDeviceId();
void setMidiDeviceId(int32_t id);

// Closes the output, opens the device id and gives every channel, in ascending order, its
// program and its pitch wheel. Returns the open's code untouched; on failure nothing is sent.
int32_t reopenMidiOut();
int32_t closeMidiOut();

void setChannelBendCents(int ch, int32_t cents);
void midiNoteOn(int ch, int note, int32_t cents, int velocity);
void midiNoteOff(int ch, int note);

// Any other message of a piece (program change, controllers, aftertouch), sent unchanged.
void midiOutShortMsg(uint32_t message);

// Silences the output: sustain off and all notes off on every channel.
void midiOutReset();

// While one lives, every message sent carries the player's due time of the event being
// delivered, so the built-in synthesizer sounds it at that moment even when the sending thread
// is late. Messages sent without one (notes played by hand, resets) play now. The player's owner
// opens one around routing each due event.
class MidiOutDueTime {
public:
    explicit MidiOutDueTime(int32_t dueMs);
    ~MidiOutDueTime();
    MidiOutDueTime(const MidiOutDueTime&) = delete;
    MidiOutDueTime& operator=(const MidiOutDueTime&) = delete;

private:
    std::optional<int32_t> m_outer;
};

// How long after its due time a message sent under a MidiOutDueTime is heard, in ms (the open
// output's heardDelayMs); 0 when nothing is open. It can change as the output's audio restarts,
// so it is asked again for every event.
int32_t midiOutHeardDelayMs();

// What the open output plays through (the device dialog shows it); empty when nothing is open.
std::string midiOutDescription();

// Why the output gives no sound ("no audio output device", ...): the last reopenMidiOut's
// failure, or a failure the output met after it opened (the built-in synthesizer's SoundFont
// refused while loading); empty while it plays.
std::string midiOutFailureReason();

// What the learner should know although the output plays (the system's SoundFont stands in for
// theirs); empty when there is nothing.
std::string midiOutNotice();

// Why there are no devices beside "MIDI Mapper" (no MIDI sequencer); empty when there is no
// such reason. Meaningful after listMidiOutDevices().
std::string midiOutDevicesProblem();

// "MIDI Mapper" as id -1, then devices 0..n-1 by name.
std::vector<MidiOutDevice> listMidiOutDevices();

// An output of the caller's own (the device dialog's test notes), opened; nullptr and the code
// in result when it cannot be opened.
std::unique_ptr<MidiOutPort> openMidiOutDevice(int32_t id, int32_t& result, std::string* reason = nullptr);

// The wheel message that shifts channel ch by `cents` (centsToWheel in midi/MidiBytes.h).
uint32_t pitchWheelMessage(int ch, int32_t cents);

// Cents taken to the nearest quarter tone (multiple of 50), a remainder of exactly +-25 going up:
// a piece's wheel shifts the fingerboard's notes only by quarter tones.
int32_t nearestQuarterTone(int32_t cents);

// Replaces where outputs come from (tests install recorders); closes and drops the current output.
void setMidiOutBackend(MidiOutBackend backend);

// Back to the start-up state: output closed and dropped, id -1, programs and cents 0, the
// system backend (built-in synthesizer and system MIDI ports).
void resetMidiMainState();

}  // namespace tarabix
