#include "playback/PieceChase.h"

#include "midi/MergedTracks.h"
#include "midi/MidiBytes.h"
#include "midi/MidiFile.h"

#include <algorithm>
#include <optional>

namespace tarabix {

namespace {

using namespace midicc;
using midistatus::kController;
using midistatus::kPitchWheel;
using midistatus::kProgramChange;

enum class ControllerKind { State, Pedal, Action, ParameterData };

// Data increment and decrement step a parameter rather than set it, and 120..127 are channel
// mode messages (all notes off, reset, omni, mono): none of them is a setting to restore.
ControllerKind kindOf(uint8_t cc)
{
    switch (cc) {
    case kSustain:
    case kSostenuto:
    case kHold2:
        return ControllerKind::Pedal;
    case kDataIncrement:
    case kDataDecrement:
        return ControllerKind::Action;
    case kDataEntryMsb:
    case kDataEntryLsb:
        return ControllerKind::ParameterData;
    default:
        return cc >= kFirstChannelMode ? ControllerKind::Action : ControllerKind::State;
    }
}

// Where a General MIDI device starts a controller; none for those whose start is not agreed on.
std::optional<uint8_t> startValue(uint8_t cc)
{
    switch (cc) {
    case kBankSelect:
    case kBankSelectLsb:
    case kModulation:
        return 0;
    case kVolume:
        return 100;
    case kBalance:
    case kPan:
        return 64;
    case kExpression:
        return 127;
    case kNonRegisteredLsb:
    case kNonRegisteredMsb:
    case kRegisteredLsb:
    case kRegisteredMsb:
        return kNoParameter;
    default:
        return std::nullopt;
    }
}

struct ControllerHistory {
    int32_t value = -1;  // before the moment
    size_t order = 0;    // when that value was set
    bool later = false;  // set at or after the moment
};

struct ChannelHistory {
    std::array<ControllerHistory, 128> controllers;
    // Data entry goes to the parameter selected last, registered or non-registered.
    bool registeredSelected = true;

    // Data entered before the moment goes to the parameter selected then; none while the
    // selection is the null parameter.
    void enterData(ChannelChase& channel, uint8_t cc, uint8_t value) const
    {
        const uint8_t msbCc = registeredSelected ? kRegisteredMsb : kNonRegisteredMsb;
        const uint8_t lsbCc = registeredSelected ? kRegisteredLsb : kNonRegisteredLsb;
        const int32_t msb = controllers[msbCc].value;
        const int32_t lsb = controllers[lsbCc].value;
        if (msb < 0 || lsb < 0 || (msb == kNoParameter && lsb == kNoParameter))
            return;
        const ParameterChase key{registeredSelected, static_cast<uint8_t>(msb), static_cast<uint8_t>(lsb)};
        auto it = std::find_if(channel.parameters.begin(), channel.parameters.end(), [&](const ParameterChase& p) {
            return p.registered == key.registered && p.msb == key.msb && p.lsb == key.lsb;
        });
        if (it == channel.parameters.end())
            it = channel.parameters.insert(it, key);
        (cc == kDataEntryMsb ? it->dataMsb : it->dataLsb) = value;
    }
};

}  // namespace

PieceChase chasePiece(const MidiFile& piece, int32_t atMs)
{
    PieceChase chase;
    std::array<ChannelHistory, kMidiChannels> history;
    MergedTracks merged(&piece);
    merged.seek(0);
    size_t order = 0;
    for (int32_t track = merged.nextTrack(); track >= 0; track = merged.nextTrack()) {
        const MidiEvent& event = merged.nextEvent(track);
        merged.advance(track);
        if (event.eType != MidiEvent::kChannelMessage || event.eData.size() < 3)
            continue;
        const auto status = static_cast<uint8_t>(event.eData[0]);
        const auto c1 = static_cast<uint8_t>(event.eData[1]);
        const auto c2 = static_cast<uint8_t>(event.eData[2]);
        const int ch = statusChannel(status);
        ChannelChase& channel = chase.channels[static_cast<size_t>(ch)];
        const bool before = event.absMS < atMs;
        switch (statusKind(status)) {
        case kProgramChange:
            if (before)
                channel.program = c1;
            else if (channel.program == ChannelChase::kNone)
                channel.programLater = true;
            break;
        case kPitchWheel:
            if (before)
                channel.wheel = wheelOf(c1, c2);
            else if (channel.wheel == ChannelChase::kNone)
                channel.wheelLater = true;
            break;
        case kController: {
            const auto number = static_cast<uint8_t>(c1 & 0x7F);
            ChannelHistory& h = history[static_cast<size_t>(ch)];
            ControllerHistory& cc = h.controllers[number];
            if (!before) {
                cc.later = true;
                break;
            }
            cc.value = c2;
            cc.order = order++;
            if (number == kRegisteredMsb || number == kRegisteredLsb)
                h.registeredSelected = true;
            else if (number == kNonRegisteredMsb || number == kNonRegisteredLsb)
                h.registeredSelected = false;
            else if (kindOf(number) == ControllerKind::ParameterData)
                h.enterData(channel, number, c2);
            break;
        }
        default:
            break;
        }
    }

    for (size_t ch = 0; ch < kMidiChannels; ++ch) {
        ChannelChase& channel = chase.channels[ch];
        std::vector<std::pair<size_t, uint8_t>> setBefore;
        for (uint8_t cc = 0; cc < 128; ++cc) {
            const ControllerHistory& h = history[ch].controllers[cc];
            if (h.value < 0 && !h.later)
                continue;
            switch (kindOf(cc)) {
            case ControllerKind::Pedal:
                channel.pedals.push_back(cc);
                break;
            case ControllerKind::Action:
            case ControllerKind::ParameterData:
                break;
            case ControllerKind::State:
                if (h.value >= 0)
                    setBefore.emplace_back(h.order, cc);
                else
                    channel.controllersLater.push_back(cc);
                break;
            }
        }
        std::sort(setBefore.begin(), setBefore.end());
        for (const auto& [when, cc] : setBefore)
            channel.controllers.emplace_back(cc, static_cast<uint8_t>(history[ch].controllers[cc].value));
    }
    return chase;
}

std::vector<ChannelMessage> PieceChase::messages() const
{
    std::vector<ChannelMessage> out;
    for (size_t ch = 0; ch < channels.size(); ++ch) {
        const ChannelChase& channel = channels[ch];
        const auto on = [ch](uint8_t kind) { return static_cast<uint8_t>(kind | ch); };
        for (uint8_t cc : channel.controllersLater)
            if (const auto value = startValue(cc))
                out.push_back({on(kController), cc, *value});
        for (const ParameterChase& p : channel.parameters) {
            out.push_back({on(kController), p.registered ? kRegisteredMsb : kNonRegisteredMsb, p.msb});
            out.push_back({on(kController), p.registered ? kRegisteredLsb : kNonRegisteredLsb, p.lsb});
            if (p.dataMsb >= 0)
                out.push_back({on(kController), kDataEntryMsb, static_cast<uint8_t>(p.dataMsb)});
            if (p.dataLsb >= 0)
                out.push_back({on(kController), kDataEntryLsb, static_cast<uint8_t>(p.dataLsb)});
        }
        for (const auto& [cc, value] : channel.controllers)
            out.push_back({on(kController), cc, value});
        for (uint8_t cc : channel.pedals)
            out.push_back({on(kController), cc, 0});
        if (channel.program != ChannelChase::kNone || channel.programLater)
            out.push_back({on(kProgramChange), static_cast<uint8_t>(std::max<int16_t>(channel.program, 0)), 0});
        if (channel.wheel != ChannelChase::kNone || channel.wheelLater) {
            const int32_t wheel = channel.wheel != ChannelChase::kNone ? channel.wheel : kWheelCentre;
            out.push_back({on(kPitchWheel), wheelLsb(wheel), wheelMsb(wheel)});
        }
    }
    return out;
}

}  // namespace tarabix
