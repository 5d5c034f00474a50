#include "playback/SystemMidiOut.h"

#include "playback/FluidSynthPort.h"
#include "playback/RtMidiPort.h"

namespace tarabix {

MidiOutBackend systemMidiOutBackend()
{
    return {listSystemMidiPorts, [](int32_t id) -> std::unique_ptr<MidiOutPort> {
                if (id == kMidiMapperId)
                    return std::make_unique<FluidSynthPort>();
                if (id < 0)
                    return nullptr;
                return std::make_unique<RtMidiPort>(static_cast<unsigned>(id));
            },
            systemMidiPortsProblem};
}

}  // namespace tarabix
