#include "playback/OfflineSynth.h"

#include "base/Rounding.h"
#include "playback/FluidSynthEngine.h"
#include "playback/SoundFontLocator.h"
#include "playback/WavWriter.h"

#include <algorithm>
#include <cmath>

namespace tarabix {

namespace {
constexpr int kBlockFrames = 1024;
}

struct OfflineSynth::Impl {
    explicit Impl(const OfflineSynthOptions& o) : options(o), engine(o.sampleRate) {}

    OfflineSynthOptions options;
    FluidSynthEngine engine;
    bool ready = false;
    std::string reason;
    std::string notice;
    int64_t frames = 0;
    std::vector<float> samples;
};

OfflineSynth::OfflineSynth(OfflineSynthOptions options)
{
    const std::string wanted = options.soundFontPath.empty() ? soundFontOverride() : options.soundFontPath;
    SoundFontChoice choice = chooseSoundFont(wanted, soundFontFolders());
    m_impl = std::make_unique<Impl>(options);
    Impl& d = *m_impl;
    d.ready = d.engine.valid() && d.engine.loadChosenSoundFont(choice);
    d.options.soundFontPath = choice.path;
    d.notice = choice.notice;
    if (!d.ready)
        d.reason = choice.reason.empty() ? d.engine.reason() : choice.reason;
}

OfflineSynth::~OfflineSynth() = default;

bool OfflineSynth::ready() const
{
    return m_impl->ready;
}

std::string OfflineSynth::failureReason() const
{
    return m_impl->reason;
}

std::string OfflineSynth::notice() const
{
    return m_impl->notice;
}

std::string OfflineSynth::soundFontPath() const
{
    return m_impl->options.soundFontPath;
}

double OfflineSynth::sampleRate() const
{
    return m_impl->options.sampleRate;
}

void OfflineSynth::send(uint32_t message)
{
    if (m_impl->ready)
        m_impl->engine.dispatch(message);
}

void OfflineSynth::render(int32_t ms)
{
    if (ms > 0)
        renderFrames(static_cast<int64_t>(std::llround(static_cast<double>(ms) * sampleRate() / 1000.0)));
}

void OfflineSynth::renderUntil(int32_t ms)
{
    const auto target = static_cast<int64_t>(std::llround(static_cast<double>(ms) * sampleRate() / 1000.0));
    renderFrames(target - m_impl->frames);
}

void OfflineSynth::renderFrames(int64_t frames)
{
    Impl& d = *m_impl;
    while (frames > 0) {
        const int block = static_cast<int>(std::min<int64_t>(frames, kBlockFrames));
        const size_t at = d.samples.size();
        d.samples.resize(at + static_cast<size_t>(block) * kAudioChannels, 0.0f);
        if (d.ready) {
            float* out = d.samples.data() + at;
            fluid_synth_write_float(d.engine.synth(), block, out, 0, kAudioChannels, out, 1, kAudioChannels);
        }
        d.frames += block;
        frames -= block;
    }
}

int64_t OfflineSynth::framesRendered() const
{
    return m_impl->frames;
}

int32_t OfflineSynth::renderedMs() const
{
    return roundHalfEvenInt(static_cast<double>(m_impl->frames) * 1000.0 / sampleRate());
}

const std::vector<float>& OfflineSynth::samples() const
{
    return m_impl->samples;
}

std::vector<float> OfflineSynth::takeSamples()
{
    std::vector<float> out;
    out.swap(m_impl->samples);
    return out;
}

bool OfflineSynth::writeWav(const std::string& path, std::string* error) const
{
    return writeWavFile(path, m_impl->samples, static_cast<int>(std::lround(sampleRate())), kAudioChannels, error);
}

int32_t OfflineSynthPort::open()
{
    if (!m_synth->ready())
        return kMidiOutNoDevice;
    m_open = true;
    return kMidiOutOk;
}

int32_t OfflineSynthPort::close()
{
    if (!m_open)
        return kMidiOutInvalidHandle;
    m_open = false;
    return kMidiOutOk;
}

void OfflineSynthPort::send(uint32_t message)
{
    if (m_open)
        m_synth->send(message);
}

std::string OfflineSynthPort::failureReason() const
{
    return m_synth->failureReason();
}

std::string OfflineSynthPort::notice() const
{
    return m_synth->notice();
}

}  // namespace tarabix
