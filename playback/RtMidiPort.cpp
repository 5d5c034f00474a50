#include "playback/RtMidiPort.h"

#include "playback/SynthDiagnostics.h"

#include <rtmidi/RtMidi.h>

#include <filesystem>
#include <iostream>
#include <sstream>

namespace tarabix {

namespace {

// The ALSA sequencer explicitly: letting RtMidi pick could bring up JACK, whose client library
// can abort the process when no JACK server runs.
constexpr RtMidi::Api kApi =
#if defined(__linux__)
    RtMidi::LINUX_ALSA;
#else
    RtMidi::UNSPECIFIED;
#endif

constexpr const char* kClientName = "Tarabix";

// RtMidi prints its errors to std::cerr before it throws them. The text goes to the diagnostics
// instead; the caller learns of the failure from the exception. std::cerr is the process's, so
// this runs only around RtMidi's set-up calls, which come from the user-interface thread.
class CerrToDiagnostics {
public:
    CerrToDiagnostics() : m_saved(std::cerr.rdbuf(m_captured.rdbuf())) {}
    ~CerrToDiagnostics()
    {
        std::cerr.rdbuf(m_saved);
        std::string line;
        while (std::getline(m_captured, line)) {
            if (!line.empty())
                addSynthDiagnostic("rtmidi: " + line);
        }
    }
    CerrToDiagnostics(const CerrToDiagnostics&) = delete;
    CerrToDiagnostics& operator=(const CerrToDiagnostics&) = delete;

private:
    std::stringstream m_captured;
    std::streambuf* m_saved;
};

std::unique_ptr<RtMidiOut> makeClient()
{
    installSynthDiagnostics();
    CerrToDiagnostics quiet;
    return std::make_unique<RtMidiOut>(kApi, kClientName);
}

// On Linux the system's MIDI ports are the kernel's sequencer; without its device RtMidi can
// only fail (and the ALSA library complain).
bool systemHasSequencer()
{
#if defined(__linux__)
    std::error_code ec;
    return std::filesystem::exists("/dev/snd/seq", ec);
#else
    return true;
#endif
}

// The number of data bytes that follow a status byte.
size_t shortMessageLength(uint32_t status)
{
    switch (status & 0xF0) {
    case 0xC0:
    case 0xD0: return 2;
    case 0xF0: return status == 0xF2 ? 3 : (status == 0xF1 || status == 0xF3) ? 2 : 1;
    default: return 3;
    }
}

}  // namespace

std::string systemMidiPortsProblem()
{
    // The learner is told why in words instead of the library's.
    if (!systemHasSequencer())
        return "this system has no MIDI sequencer (no /dev/snd/seq; the kernel's snd-seq module gives it), "
               "so only the built-in synthesizer can play";
    try {
        std::unique_ptr<RtMidiOut> client = makeClient();
    } catch (const RtMidiError& e) {
        return "the system's MIDI ports cannot be used: " + e.getMessage();
    }
    return {};
}

std::vector<std::string> listSystemMidiPorts()
{
    std::vector<std::string> names;
    if (!systemHasSequencer())
        return names;
    try {
        std::unique_ptr<RtMidiOut> client = makeClient();
        CerrToDiagnostics quiet;
        const unsigned count = client->getPortCount();
        for (unsigned i = 0; i < count; ++i)
            names.push_back(client->getPortName(i));
    } catch (const RtMidiError& e) {
        addSynthDiagnostic("no system MIDI ports: " + e.getMessage());
        names.clear();
    }
    return names;
}

RtMidiPort::RtMidiPort(unsigned index) : m_index(index) {}

RtMidiPort::~RtMidiPort()
{
    close();
}

int32_t RtMidiPort::open()
{
    if (m_out)
        return kMidiOutOk;
    try {
        std::unique_ptr<RtMidiOut> out = makeClient();
        CerrToDiagnostics quiet;
        if (m_index >= out->getPortCount()) {
            m_reason = "no MIDI output port " + std::to_string(m_index);
            return kMidiOutBadDeviceId;
        }
        out->openPort(m_index, kClientName);
        if (!out->isPortOpen()) {
            m_reason = "the MIDI output port could not be opened";
            return kMidiOutAllocated;
        }
        m_out = std::move(out);
    } catch (const RtMidiError& e) {
        m_reason = e.getMessage();
        return e.getType() == RtMidiError::INVALID_PARAMETER ? kMidiOutBadDeviceId : kMidiOutAllocated;
    }
    m_reason.clear();
    return kMidiOutOk;
}

int32_t RtMidiPort::close()
{
    if (!m_out)
        return kMidiOutInvalidHandle;
    try {
        CerrToDiagnostics quiet;
        m_out->closePort();
        m_out.reset();
    } catch (const RtMidiError& e) {
        addSynthDiagnostic("rtmidi: " + e.getMessage());
        m_out.reset();
    }
    return kMidiOutOk;
}

void RtMidiPort::send(uint32_t message)
{
    if (!m_out)
        return;
    const uint32_t status = shortMessageStatus(message);
    const unsigned char bytes[3] = {static_cast<unsigned char>(status),
                                    static_cast<unsigned char>(shortMessageData1(message)),
                                    static_cast<unsigned char>(shortMessageData2(message))};
    try {
        m_out->sendMessage(bytes, shortMessageLength(status));
    } catch (const RtMidiError& e) {
        addSynthDiagnostic("rtmidi: " + e.getMessage());
    }
}

}  // namespace tarabix
