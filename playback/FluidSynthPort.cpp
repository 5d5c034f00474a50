#include "playback/FluidSynthPort.h"

#include "midi/MidiBytes.h"
#include "playback/FluidSynthEngine.h"
#include "playback/SoundFontLocator.h"
#include "playback/SynthTimeline.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace tarabix {

namespace {
// A start-up's worth of program changes and wheels; beyond that the oldest intent is stale.
constexpr size_t kMaxPendingMessages = 1024;

// While notes still ring after the quiet time, look again this often.
constexpr int64_t kRingingRecheckMs = 250;
// A running driver whose synth rendered nothing for this long of real time has lost its sound
// server. Long enough that a loaded machine's stall is not taken for it.
constexpr auto kStalledAfter = std::chrono::seconds(2);
// How often a lost sound server is tried again, at the notes played meanwhile.
constexpr int64_t kRetryLostAudioMs = 2000;
// How often the audio's pace is looked at while it runs: a prime number of milliseconds, so the
// looks fall all over the bursts of any driver's period.
constexpr int64_t kObservePaceMs = 7;

// The same clock SynthTimeline reads by default.
int64_t steadyUs()
{
    return std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

bool isSoundingNoteOn(uint32_t message)
{
    return statusKind(shortMessageStatus(message)) == midistatus::kNoteOn && shortMessageData2(message) != 0;
}

// Sustain, all sound off, all notes off: what silences a channel.
bool isChannelCut(uint32_t message)
{
    const uint32_t controller = shortMessageData1(message);
    return statusKind(shortMessageStatus(message)) == midistatus::kController &&
           (controller == midicc::kSustain || controller == midicc::kAllSoundOff || controller == midicc::kAllNotesOff);
}

}  // namespace

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

    // The audio side: the driver, the idle pause and the watcher. Taken without `mutex` held.
    mutable std::mutex audioMutex;
    std::condition_variable watcherWake;
    std::thread watcher;
    bool stopWatcher = false;
    bool paused = false;  // let go while idle; the next note-on starts it again
    bool lost = false;    // the sound server went away; tried again now and then
    int64_t lastActivityMs = 0;
    int64_t lastRetryMs = 0;
    unsigned int lastTicks = 0;
    std::chrono::steady_clock::time_point lastTicksChange;
    std::string driverName;
    AudioDriverSettings chosen;
    std::unique_ptr<SynthTimeline> timeline;

    int64_t now() const { return options.clockMs ? options.clockMs() : steadyUs() / 1000; }

    bool startAudio()
    {
        fluid_settings_t* settings = engine->settings();
        const int latency = options.latencyMs ? options.latencyMs() : kDefaultSynthLatencyMs;
        for (const std::string& name : options.audioDrivers) {
            AudioDriverSettings s = chooseAudioDriverSettings(name, latency, options.sampleRate);
            if (name == "file" && options.fileWriteFrames > 0) {
                s.periodSize = options.fileWriteFrames;
                s.bufferMs = s.periodSize * 1000.0 / options.sampleRate;
                s.burstMs = s.bufferMs;
            }
            fluid_settings_setint(settings, "audio.period-size", s.periodSize);
            fluid_settings_setint(settings, "audio.periods", s.periods);
            for (const auto& [key, value] : s.intSettings)
                fluid_settings_setint(settings, key.c_str(), value);
            for (const auto& [key, value] : options.driverSettings)
                fluid_settings_setstr(settings, key.c_str(), value.c_str());
            fluid_settings_setstr(settings, "audio.driver", name.c_str());
            driver = new_fluid_audio_driver(settings, engine->synth());
            if (driver) {
                driverName = name;
                chosen = s;
                timeline->setLeadMs(s.burstMs + options.scheduleMarginMs);
                timeline->setBurstMs(s.burstMs);
                lastTicks = timeline->sampleClockMs();
                lastTicksChange = std::chrono::steady_clock::now();
                return true;
            }
        }
        return false;
    }

    void stopAudio()
    {
        delete_fluid_audio_driver(driver);
        driver = nullptr;
    }

    // With audioMutex held: the audio runs again if it was paused or lost, before the note that
    // needs it is played. False when it cannot (the note then goes unheard, the state is kept).
    bool wakeAudio()
    {
        if (driver)
            return true;
        if (lost && now() - lastRetryMs < kRetryLostAudioMs)
            return false;
        lastRetryMs = now();
        if (!startAudio()) {
            lost = true;
            setReason("the sound output stopped and cannot be opened again; playing on silently");
            return false;
        }
        if (lost)
            setReason({});
        paused = false;
        lost = false;
        if (timeline)
            timeline->restartClock();
        watcherWake.notify_all();
        return true;
    }

    // With audioMutex held: the next time the watcher should look, in ms on the port's clock.
    int64_t checkIdleLocked()
    {
        const int64_t t = now();
        if (!driver)
            return t + options.idlePauseMs;
        const unsigned int ticks = timeline->sampleClockMs();
        const auto realNow = std::chrono::steady_clock::now();
        if (ticks != lastTicks) {
            lastTicks = ticks;
            lastTicksChange = realNow;
        } else if (realNow - lastTicksChange >= kStalledAfter) {
            // The audio thread stopped (its server died): let go of the driver and say so.
            stopAudio();
            lost = true;
            lastRetryMs = t;
            setReason("the sound output stopped; playing on silently");
            return t + options.idlePauseMs;
        }
        const int64_t quietUntil = lastActivityMs + options.idlePauseMs;
        if (t < quietUntil)
            return quietUntil;
        if (fluid_synth_get_active_voice_count(engine->synth()) > 0)
            return t + kRingingRecheckMs;
        stopAudio();
        paused = true;
        return t + options.idlePauseMs;
    }

    void watch()
    {
        std::unique_lock lock(audioMutex);
        int64_t nextIdleCheck = 0;
        while (!stopWatcher) {
            if (!driver) {
                watcherWake.wait(lock);
                nextIdleCheck = 0;
                continue;
            }
            if (timeline)
                timeline->observe();
            if (options.idleWatcher && now() >= nextIdleCheck) {
                // Also every second while playing, to notice a stalled audio thread.
                nextIdleCheck = std::min(checkIdleLocked(), now() + 1000);
                if (!driver)
                    continue;
            }
            watcherWake.wait_for(lock, std::chrono::milliseconds(kObservePaceMs));
        }
    }

    void startWatcher()
    {
        if (watcher.joinable())
            return;
        stopWatcher = false;
        watcher = std::thread([this] { watch(); });
    }

    void stopWatcherThread()
    {
        {
            std::lock_guard lock(audioMutex);
            stopWatcher = true;
        }
        watcherWake.notify_all();
        if (watcher.joinable())
            watcher.join();
    }

    // Every message sent: kept for the load while the SoundFont is not in yet (there is no sound to
    // place it in), else delivered.
    void submit(uint32_t message, const int32_t* dueMs)
    {
        if (!isOpen)
            return;
        {
            std::lock_guard lock(mutex);
            if (!loaded) {
                if (!loadFailed && pending.size() < kMaxPendingMessages)
                    pending.push_back(message);
                return;
            }
        }
        deliver(message, dueMs);
    }

    // A message for the synth once the SoundFont is in: a note-on needs the audio running.
    void deliver(uint32_t message, const int32_t* dueMs)
    {
        const int64_t handedOverUs = steadyUs();
        bool scheduled = false;
        {
            std::lock_guard lock(audioMutex);
            if (isSoundingNoteOn(message)) {
                lastActivityMs = now();
                wakeAudio();
            }
            // Without audio the sample clock stands still: the message changes the synth now.
            if (dueMs && driver && timeline && timeline->valid()) {
                timeline->sendAt(message, *dueMs, handedOverUs);
                scheduled = true;
            } else if (!dueMs && driver && timeline && isChannelCut(message)) {
                timeline->sendAfterPending(message);
            }
        }
        if (!scheduled)
            engine->dispatch(message);
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
    m_impl->stopWatcherThread();
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
    // The learner's file: the one given to this output, else the program's current choice.
    const std::string wanted = d.options.soundFontPath.empty() ? soundFontOverride() : d.options.soundFontPath;
    bool choose = false;
    {
        std::lock_guard lock(d.mutex);
        choose = !d.loadStarted || wanted != d.chosenFor;
        if (!choose && d.loadFailed)
            return kMidiOutNoDevice;
    }
    if (choose && !d.chooseSoundFontNow(wanted))
        return kMidiOutNoDevice;
    if (!d.timeline)
        d.timeline = std::make_unique<SynthTimeline>(*d.engine, 0.0);
    {
        std::lock_guard lock(d.audioMutex);
        if (!d.startAudio()) {
            d.setReason("no audio output device");
            return kMidiOutNoDevice;
        }
        d.paused = false;
        d.lost = false;
        d.lastActivityMs = d.now();
        d.timeline->restartClock();
    }
    d.startWatcher();
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
    std::lock_guard lock(d.audioMutex);
    if (d.timeline)
        d.timeline->dropPending();
    d.stopAudio();
    d.paused = false;
    d.lost = false;
    return kMidiOutOk;
}

void FluidSynthPort::send(uint32_t message)
{
    m_impl->submit(message, nullptr);
}

void FluidSynthPort::sendAt(uint32_t message, int32_t dueMs)
{
    m_impl->submit(message, &dueMs);
}

void FluidSynthPort::reset()
{
    {
        std::lock_guard lock(m_impl->audioMutex);
        if (m_impl->timeline)
            m_impl->timeline->dropPending();
    }
    MidiOutPort::reset();
}

int32_t FluidSynthPort::heardDelayMs() const
{
    const Impl& d = *m_impl;
    if (!d.isOpen)
        return 0;
    std::lock_guard lock(d.audioMutex);
    if (d.driverName.empty() || !d.timeline)
        return 0;
    // Until the pace is known, the tie is taken to have fallen in the middle of a burst.
    const double ahead = d.timeline->tieAheadMs().value_or(d.chosen.burstMs / 2.0);
    const double heard = d.timeline->leadMs() + ahead + d.chosen.deviceDelayMs;
    return static_cast<int32_t>(std::max<long>(0, std::lround(heard)));
}

bool FluidSynthPort::audioRunning() const
{
    std::lock_guard lock(m_impl->audioMutex);
    return m_impl->driver != nullptr;
}

void FluidSynthPort::checkIdle()
{
    std::lock_guard lock(m_impl->audioMutex);
    m_impl->checkIdleLocked();
}

std::string FluidSynthPort::outputDescription() const
{
    const Impl& d = *m_impl;
    std::lock_guard lock(d.audioMutex);
    if (d.driverName.empty())
        return {};
    std::string text = describeAudioOutput(d.driverName, d.chosen, d.options.sampleRate);
    if (d.paused)
        text += ", resting while silent";
    else if (d.lost)
        text += ", stopped";
    return text;
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
