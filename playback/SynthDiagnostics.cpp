#include "playback/SynthDiagnostics.h"

#include <fluidsynth.h>

#ifdef TARABIX_HAVE_ALSA
#include <alsa/asoundlib.h>
#endif

#include <cstdarg>
#include <cstdio>
#include <deque>
#include <mutex>

namespace tarabix {

namespace {

constexpr size_t kKeptLines = 64;

std::mutex& diagnosticsMutex()
{
    static std::mutex m;
    return m;
}

std::deque<std::string>& lines()
{
    static std::deque<std::string> kept;
    return kept;
}

const char* levelName(int level)
{
    switch (level) {
    case FLUID_PANIC: return "panic";
    case FLUID_ERR: return "error";
    case FLUID_WARN: return "warning";
    case FLUID_INFO: return "info";
    default: return "debug";
    }
}

void fluidLog(int level, const char* message, void*)
{
    // Debug lines (one per sample loaded or unloaded) would push out the lines that explain a
    // failure.
    if (level == FLUID_DBG || !message)
        return;
    addSynthDiagnostic(std::string("fluidsynth ") + levelName(level) + ": " + message);
}

#ifdef TARABIX_HAVE_ALSA
void alsaError(const char* file, int line, const char* function, int err, const char* fmt, ...)
{
    char text[512];
    va_list args;
    va_start(args, fmt);
    std::vsnprintf(text, sizeof text, fmt, args);
    va_end(args);
    (void)file;
    (void)line;
    std::string message = std::string("alsa: ") + (function ? function : "?") + ": " + text;
    if (err != 0)
        message += std::string(" (") + snd_strerror(err) + ")";
    addSynthDiagnostic(std::move(message));
}
#endif

}  // namespace

void installSynthDiagnostics()
{
    static std::once_flag once;
    std::call_once(once, [] {
        for (int level = 0; level < LAST_LOG_LEVEL; ++level)
            fluid_set_log_function(level, fluidLog, nullptr);
#ifdef TARABIX_HAVE_ALSA
        snd_lib_error_set_handler(alsaError);
#endif
    });
}

void addSynthDiagnostic(std::string line)
{
    std::lock_guard lock(diagnosticsMutex());
    std::deque<std::string>& kept = lines();
    kept.push_back(std::move(line));
    while (kept.size() > kKeptLines)
        kept.pop_front();
}

std::vector<std::string> recentSynthDiagnostics()
{
    std::lock_guard lock(diagnosticsMutex());
    return {lines().begin(), lines().end()};
}

void clearSynthDiagnostics()
{
    std::lock_guard lock(diagnosticsMutex());
    lines().clear();
}

}  // namespace tarabix
