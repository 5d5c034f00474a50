#include "playback/RecorderPort.h"

#include "base/TickSource.h"

namespace tarabix {

void MidiRecording::add(RecordedMessage m)
{
    std::lock_guard lock(m_mutex);
    m_messages.push_back(m);
}

std::vector<RecordedMessage> MidiRecording::messages() const
{
    std::lock_guard lock(m_mutex);
    return m_messages;
}

std::vector<uint32_t> MidiRecording::words() const
{
    std::lock_guard lock(m_mutex);
    std::vector<uint32_t> out;
    out.reserve(m_messages.size());
    for (const RecordedMessage& m : m_messages)
        out.push_back(m.message);
    return out;
}

void MidiRecording::clear()
{
    std::lock_guard lock(m_mutex);
    m_messages.clear();
}

RecorderPort::RecorderPort(std::shared_ptr<MidiRecording> recording, std::function<int32_t()> clock,
                           int32_t openResult)
    : m_recording(std::move(recording)),
      m_clock(clock ? std::move(clock) : std::function<int32_t()>(tickMs)),
      m_openResult(openResult)
{
}

int32_t RecorderPort::open()
{
    m_open = m_openResult == kMidiOutOk;
    return m_openResult;
}

int32_t RecorderPort::close()
{
    if (!m_open)
        return kMidiOutInvalidHandle;
    m_open = false;
    return kMidiOutOk;
}

void RecorderPort::send(uint32_t message)
{
    if (m_open)
        m_recording->add({m_clock(), message});
}

std::string RecorderPort::failureReason() const
{
    return m_openResult == kMidiOutOk ? std::string() : "the recorder was told to fail";
}

}  // namespace tarabix
