#pragma once

#include "playback/MidiOutPort.h"

#include <memory>
#include <string>
#include <vector>

class RtMidiOut;

namespace tarabix {

// The names of the system's MIDI output ports (the ALSA sequencer on Linux), in port order.
// Empty, never an exception, when the system has no MIDI service at all.
std::vector<std::string> listSystemMidiPorts();

// Why there are no system MIDI ports at all (no sequencer on this system, or its client cannot
// be created), in words a dialog can show; empty when the system's MIDI service works.
std::string systemMidiPortsProblem();

// One system MIDI output port, by its position in listSystemMidiPorts().
class RtMidiPort final : public MidiOutPort {
public:
    explicit RtMidiPort(unsigned index);
    ~RtMidiPort() override;

    int32_t open() override;
    int32_t close() override;
    void send(uint32_t message) override;
    std::string failureReason() const override { return m_reason; }

private:
    unsigned m_index;
    std::unique_ptr<RtMidiOut> m_out;
    std::string m_reason;
};

}  // namespace tarabix
