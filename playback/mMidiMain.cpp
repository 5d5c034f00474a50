#include "playback/mMidiMain.h"

#include "midi/MidiBytes.h"
#include "playback/SystemMidiOut.h"

#include <array>
#include <optional>

namespace tarabix {

namespace {

struct MidiMainState {
    int32_t deviceId = kMidiMapperId;
    std::array<int32_t, kMidiChannels> programs{};
    std::array<int32_t, kMidiChannels> cents{};
    std::optional<MidiOutBackend> backend;
    std::unique_ptr<MidiOutPort> port;
    int32_t portId = 0;
    std::string failureReason;
    std::optional<int32_t> dueMs;
};

MidiMainState& state()
{
    static MidiMainState s;
    return s;
}

MidiOutBackend& backend()
{
    MidiMainState& s = state();
    if (!s.backend)
        s.backend = systemMidiOutBackend();
    return *s.backend;
}

void send(uint32_t message)
{
    MidiMainState& s = state();
    if (!s.port)
        return;
    if (s.dueMs)
        s.port->sendAt(message, *s.dueMs);
    else
        s.port->send(message);
}

}  // namespace

int32_t getMidiDeviceId()
{
    return state().deviceId;
}

void setMidiDeviceId(int32_t id)
{
    state().deviceId = id;
}

int32_t reopenMidiOut()
{
    MidiMainState& s = state();
    if (s.port)
        s.port->close();
    // The same device keeps its output object, so the built-in synthesizer keeps its loaded
    // SoundFont when the window only lets go of the audio device for a while.
    if (!s.port || s.portId != s.deviceId) {
        s.port.reset();
        s.port = backend().makePort(s.deviceId);
        s.portId = s.deviceId;
    }
    if (!s.port) {
        s.failureReason = "no MIDI output device with id " + std::to_string(s.deviceId);
        return kMidiOutBadDeviceId;
    }
    const int32_t result = s.port->open();
    if (result != kMidiOutOk) {
        s.failureReason = s.port->failureReason();
        return result;
    }
    s.failureReason.clear();
    for (int ch = 0; ch < kMidiChannels; ++ch) {
        s.port->send(packShortMessage(midistatus::kProgramChange + ch, static_cast<uint32_t>(s.programs[ch]), 0));
        s.port->send(pitchWheelMessage(ch, s.cents[ch]));
    }
    return kMidiOutOk;
}

int32_t closeMidiOut()
{
    MidiMainState& s = state();
    return s.port ? s.port->close() : kMidiOutInvalidHandle;
}

void setChannelBendCents(int ch, int32_t cents)
{
    state().cents.at(ch) = cents;
    send(pitchWheelMessage(ch, cents));
}

void midiNoteOn(int ch, int note, int32_t cents, int velocity)
{
    if (state().cents.at(ch) != cents)
        setChannelBendCents(ch, cents);
    send(packShortMessage(midistatus::kNoteOn + ch, static_cast<uint32_t>(note), static_cast<uint32_t>(velocity)));
}

void midiNoteOff(int ch, int note)
{
    send(packShortMessage(midistatus::kNoteOff + ch, static_cast<uint32_t>(note), 0));
}

void midiOutShortMsg(uint32_t message)
{
    send(message);
}

void midiOutReset()
{
    if (MidiOutPort* port = state().port.get())
        port->reset();
}

MidiOutDueTime::MidiOutDueTime(int32_t dueMs) : m_outer(state().dueMs)
{
    state().dueMs = dueMs;
}

MidiOutDueTime::~MidiOutDueTime()
{
    state().dueMs = m_outer;
}

int32_t midiOutHeardDelayMs()
{
    const MidiMainState& s = state();
    return s.port ? s.port->heardDelayMs() : 0;
}

std::string midiOutDescription()
{
    const MidiMainState& s = state();
    return s.port ? s.port->outputDescription() : std::string{};
}

std::string midiOutFailureReason()
{
    const MidiMainState& s = state();
    if (s.failureReason.empty() && s.port)
        return s.port->failureReason();
    return s.failureReason;
}

std::string midiOutNotice()
{
    const MidiMainState& s = state();
    return s.port ? s.port->notice() : std::string();
}

std::string midiOutDevicesProblem()
{
    const MidiOutBackend& b = backend();
    return b.devicesProblem ? b.devicesProblem() : std::string();
}

std::vector<MidiOutDevice> listMidiOutDevices()
{
    std::vector<MidiOutDevice> devices{{kMidiMapperId, kMidiMapperName}};
    const std::vector<std::string> names = backend().deviceNames();
    for (size_t i = 0; i < names.size(); ++i)
        devices.push_back({static_cast<int32_t>(i), names[i]});
    return devices;
}

std::unique_ptr<MidiOutPort> openMidiOutDevice(int32_t id, int32_t& result, std::string* reason)
{
    std::unique_ptr<MidiOutPort> port = backend().makePort(id);
    if (!port) {
        result = kMidiOutBadDeviceId;
        if (reason)
            *reason = "no MIDI output device with id " + std::to_string(id);
        return nullptr;
    }
    result = port->open();
    if (result != kMidiOutOk) {
        if (reason)
            *reason = port->failureReason();
        return nullptr;
    }
    return port;
}

uint32_t pitchWheelMessage(int ch, int32_t cents)
{
    const int32_t wheel = centsToWheel(cents);
    return packShortMessage(midistatus::kPitchWheel + static_cast<uint32_t>(ch), wheelLsb(wheel), wheelMsb(wheel));
}

int32_t nearestQuarterTone(int32_t cents)
{
    const int32_t r = cents % 50;
    if (r >= 25)
        cents = cents + 50 - r;
    else if (r < -25)
        cents = cents - 50 - r;
    else
        cents = cents - r;
    return cents;
}

void setMidiOutBackend(MidiOutBackend newBackend)
{
    MidiMainState& s = state();
    if (s.port)
        s.port->close();
    s.port.reset();
    s.backend = std::move(newBackend);
}

void resetMidiMainState()
{
    MidiMainState& s = state();
    if (s.port)
        s.port->close();
    s.port.reset();
    s = MidiMainState{};
}

}  // namespace tarabix
