#pragma once

#include <cstdint>
#include <string>

namespace tarabix {

// Result codes of opening and closing an output. The numbers are the classic MIDI output error
// numbers, so a code that reaches the window means the same thing on every platform.
enum MidiOutResult : int32_t {
    kMidiOutOk = 0,
    kMidiOutError = 1,          // unspecified failure inside the backend
    kMidiOutBadDeviceId = 2,    // no output with this id
    kMidiOutAllocated = 4,      // the output is held by another program
    kMidiOutInvalidHandle = 5,  // close of an output that is not open
    kMidiOutNoDevice = 68,      // the backend exists but has nothing to play through (no audio device)
};

// A short channel message packed the way the whole program passes it around:
// status + data1 * 256 + data2 * 65536. Nothing is masked: callers pass data bytes 0-127.
constexpr uint32_t packShortMessage(uint32_t status, uint32_t data1, uint32_t data2)
{
    return status + data1 * 256u + data2 * 65536u;
}

constexpr uint32_t shortMessageStatus(uint32_t message) { return message & 0xFFu; }
constexpr uint32_t shortMessageData1(uint32_t message) { return (message >> 8) & 0xFFu; }
constexpr uint32_t shortMessageData2(uint32_t message) { return (message >> 16) & 0xFFu; }

// One MIDI output: the built-in synthesizer, a system MIDI port, or a recorder in tests.
// Sending on an output that is not open is allowed and does nothing.
class MidiOutPort {
public:
    virtual ~MidiOutPort() = default;

    virtual int32_t open() = 0;
    virtual int32_t close() = 0;
    virtual void send(uint32_t message) = 0;

    // A message of a piece with the time it is due, in ms on the player's clock. An output that
    // can schedule (the built-in synthesizer) plays it at that moment plus a small constant
    // lead, whenever it got here; the others play it now.
    virtual void sendAt(uint32_t message, int32_t dueMs)
    {
        (void)dueMs;
        send(message);
    }

    // How long after its due time a message sent with sendAt is heard, in ms, as well as the
    // output knows: the window shows a piece's notes on the fingerboard that much later, so the
    // learner sees each mark as the note sounds. 0 for outputs that play at once (a system MIDI
    // port: what the device then takes is its own affair).
    virtual int32_t heardDelayMs() const { return 0; }

    // Silences everything: sustain off, then all notes off, on every channel. Sustain goes first
    // because a device keeps notes held by the pedal through an all-notes-off.
    virtual void reset();

    // True once what is sent is heard. An output may open before it can sound (the built-in
    // synthesizer still loading its SoundFont); timed notes such as a test wait for this.
    virtual bool isReady() const { return true; }
    // Why the last open failed, in words a dialog can show; empty after a successful open.
    virtual std::string failureReason() const { return {}; }
    // Something the learner should hear of although the output plays, e.g. that the built-in
    // synthesizer plays the system's SoundFont in place of theirs; empty when there is nothing.
    virtual std::string notice() const { return {}; }

    // What the output plays through, for the device dialog ("pulseaudio, 10.0 ms ..."); empty
    // when there is nothing to tell.
    virtual std::string outputDescription() const { return {}; }
};

}  // namespace tarabix
