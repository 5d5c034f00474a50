#include "playback/MidiOutPort.h"

#include "midi/MidiBytes.h"

namespace tarabix {

void MidiOutPort::reset()
{
    for (uint32_t ch = 0; ch < kMidiChannels; ++ch) {
        send(packShortMessage(midistatus::kController + ch, midicc::kSustain, 0));
        send(packShortMessage(midistatus::kController + ch, midicc::kAllNotesOff, 0));
    }
}

}  // namespace tarabix
