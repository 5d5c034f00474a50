#pragma once

#include "playback/MidiOutPort.h"

#include <functional>
#include <memory>
#include <mutex>
#include <vector>

namespace tarabix {

struct RecordedMessage {
    int32_t timeMs;
    uint32_t message;
    bool operator==(const RecordedMessage&) const = default;
};

// What a RecorderPort saw. Shared, so a test can keep reading it after the output layer has
// replaced or destroyed the port.
class MidiRecording {
public:
    void add(RecordedMessage m);
    std::vector<RecordedMessage> messages() const;
    std::vector<uint32_t> words() const;
    void clear();

private:
    mutable std::mutex m_mutex;
    std::vector<RecordedMessage> m_messages;
};

// An output that keeps every packed message with the time it was sent. Its open can be told to
// fail, so tests can drive the error paths of the output layer.
class RecorderPort final : public MidiOutPort {
public:
    explicit RecorderPort(std::shared_ptr<MidiRecording> recording,
                          std::function<int32_t()> clock = nullptr,
                          int32_t openResult = kMidiOutOk);

    int32_t open() override;
    int32_t close() override;
    void send(uint32_t message) override;
    std::string failureReason() const override;
    // 0 unless told otherwise: then it stands for an output heard later than it is sent, as the
    // built-in synthesizer is.
    int32_t heardDelayMs() const override { return m_open ? m_heardDelayMs : 0; }
    void setHeardDelayMs(int32_t ms) { m_heardDelayMs = ms; }

    bool isOpen() const { return m_open; }

private:
    std::shared_ptr<MidiRecording> m_recording;
    std::function<int32_t()> m_clock;
    int32_t m_openResult;
    int32_t m_heardDelayMs = 0;
    bool m_open = false;
};

}  // namespace tarabix
