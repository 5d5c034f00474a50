#include "playback/MidiOutPort.h"

namespace tarabix {

namespace {
constexpr uint32_t kControlChange = 0xB0;
constexpr uint32_t kSustainPedal = 64;
constexpr uint32_t kAllNotesOff = 123;
}  // namespace

void MidiOutPort::reset()
{
    for (uint32_t ch = 0; ch < 16; ++ch) {
        send(packShortMessage(kControlChange + ch, kSustainPedal, 0));
        send(packShortMessage(kControlChange + ch, kAllNotesOff, 0));
    }
}

}  // namespace tarabix
