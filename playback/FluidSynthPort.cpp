#include "playback/FluidSynthPort.h"

#include "playback/FluidSynthEngine.h"
#include "playback/SoundFontLocator.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace tarabix {

namespace {
// A start-up's worth of program changes and wheels; beyond that the oldest intent is stale.
constexpr size_t kMaxPendingMessages = 1024;
}  // namespace

std::vector<std::string> defaultAudioDrivers()
{
#if defined(__APPLE__)
    return {"coreaudio"};
#elif defined(_WIN32)
    return {"wasapi", "dsound"};
#else
    // JACK is left out on purpose: its client library can abort the process when no server runs.
    return {"pulseaudio", "alsa"};
#endif
}

struct FluidSynthPort::Impl {
    FluidSynthPortOptions options;
    std::unique_ptr<FluidSynthEngine> engine;
    fluid_audio_driver_t* driver = nullptr;
    std::thread loader;
    std::atomic<bool> isOpen{false};

    mutable std::mutex mutex;
    mutable std::condition_variable loadDone;
    bool loadStarted = false;
    bool loaded = false;
    bool loadFailed = false;
    std::vector<uint32_t> pending;
    std::string reason;
    SoundFontChoice choice;
    std::string chosenFor;  // the learner's file the choice was made for

    void setReason(std::string text)
    {
        std::lock_guard lock(mutex);
        reason = std::move(text);
    }

    bool startAudio()
    {
        fluid_settings_t* settings = engine->settings();
        fluid_settings_setint(settings, "audio.period-size", options.periodSize);
        fluid_settings_setint(settings, "audio.periods", options.periods);
        for (const auto& [name, value] : options.driverSettings)
            fluid_settings_setstr(settings, name.c_str(), value.c_str());
        for (const std::string& name : options.audioDrivers) {
            fluid_settings_setstr(settings, "audio.driver", name.c_str());
            driver = new_fluid_audio_driver(settings, engine->synth());
            if (driver)
                return true;
        }
        return false;
    }

    // The learner's file: the one given to this output, else the program's current choice.
    std::string wantedSoundFont() const
    {
        return options.soundFontPath.empty() ? soundFontOverride() : options.soundFontPath;
    }

    // Picks the SoundFont at once, the quick check included, so a missing or broken file is known
    // (and passed over for the system's) before the output reports itself open. False when there
    // is none to play; reason says why.
    bool chooseSoundFontNow(const std::string& wanted)
    {
        if (loader.joinable())
            loader.join();
        SoundFontChoice picked = chooseSoundFont(wanted, soundFontFolders());
        std::lock_guard lock(mutex);
        chosenFor = wanted;
        choice = std::move(picked);
        loadStarted = false;
        loaded = false;
        loadFailed = false;
        pending.clear();
        if (choice.path.empty()) {
            reason = choice.reason;
            return false;
        }
        return true;
    }

    void load()
    {
        SoundFontChoice picked;
        {
            std::lock_guard lock(mutex);
            picked = choice;
        }
        // A file that passed the quick check can still be refused here; the system's SoundFont
        // then stands in for it, and the learner is told either way.
        const bool ok = engine->loadChosenSoundFont(picked);
        const std::string failure = engine->reason();
        std::lock_guard lock(mutex);
        choice = picked;
        if (ok) {
            for (uint32_t message : pending)
                engine->dispatch(message);
            loaded = true;
        } else {
            loadFailed = true;
            reason = failure;
        }
        pending.clear();
        loadDone.notify_all();
    }
};

FluidSynthPort::FluidSynthPort(FluidSynthPortOptions options) : m_impl(std::make_unique<Impl>())
{
    m_impl->options = std::move(options);
}

FluidSynthPort::~FluidSynthPort()
{
    close();
    if (m_impl->loader.joinable())
        m_impl->loader.join();
}

int32_t FluidSynthPort::open()
{
    Impl& d = *m_impl;
    if (d.isOpen)
        return kMidiOutOk;
    if (!d.engine)
        d.engine = std::make_unique<FluidSynthEngine>(d.options.sampleRate);
    if (!d.engine->valid()) {
        d.setReason(d.engine->reason());
        return kMidiOutError;
    }
    const std::string wanted = d.wantedSoundFont();
    bool choose = false;
    {
        std::lock_guard lock(d.mutex);
        choose = !d.loadStarted || wanted != d.chosenFor;
        if (!choose && d.loadFailed)
            return kMidiOutNoDevice;
    }
    if (choose && !d.chooseSoundFontNow(wanted))
        return kMidiOutNoDevice;
    if (!d.startAudio()) {
        d.setReason("no audio output device");
        return kMidiOutNoDevice;
    }
    {
        std::lock_guard lock(d.mutex);
        d.reason.clear();
        if (!d.loadStarted) {
            d.loadStarted = true;
            d.loader = std::thread([&d] { d.load(); });
        }
    }
    d.isOpen = true;
    return kMidiOutOk;
}

int32_t FluidSynthPort::close()
{
    Impl& d = *m_impl;
    if (!d.isOpen.exchange(false))
        return kMidiOutInvalidHandle;
    {
        std::lock_guard lock(d.mutex);
        // Notes still held when the device is let go must not sound again at the next open.
        d.pending.clear();
        if (d.loaded)
            fluid_synth_all_sounds_off(d.engine->synth(), -1);
    }
    delete_fluid_audio_driver(d.driver);
    d.driver = nullptr;
    return kMidiOutOk;
}

void FluidSynthPort::send(uint32_t message)
{
    Impl& d = *m_impl;
    if (!d.isOpen)
        return;
    {
        std::lock_guard lock(d.mutex);
        if (!d.loaded) {
            if (!d.loadFailed && d.pending.size() < kMaxPendingMessages)
                d.pending.push_back(message);
            return;
        }
    }
    d.engine->dispatch(message);
}

std::string FluidSynthPort::failureReason() const
{
    std::lock_guard lock(m_impl->mutex);
    return m_impl->reason;
}

std::string FluidSynthPort::notice() const
{
    std::lock_guard lock(m_impl->mutex);
    return m_impl->choice.notice;
}

std::string FluidSynthPort::soundFontPath() const
{
    std::lock_guard lock(m_impl->mutex);
    return m_impl->choice.path;
}

FluidSynthPort::State FluidSynthPort::state() const
{
    const Impl& d = *m_impl;
    std::lock_guard lock(d.mutex);
    if (d.loadFailed)
        return State::Failed;
    if (!d.isOpen)
        return State::Closed;
    return d.loaded ? State::Ready : State::Loading;
}

bool FluidSynthPort::waitUntilReady(int timeoutMs) const
{
    const Impl& d = *m_impl;
    std::unique_lock lock(d.mutex);
    if (!d.loadStarted)
        return false;
    d.loadDone.wait_for(lock, std::chrono::milliseconds(timeoutMs), [&d] { return d.loaded || d.loadFailed; });
    return d.loaded;
}

}  // namespace tarabix
