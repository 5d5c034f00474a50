#include "playback/SynthDiagnostics.h"

#include <fluidsynth.h>
#include <glib.h>

#ifdef TARABIX_HAVE_ALSA
#include <alsa/asoundlib.h>
#endif

#include <algorithm>
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

// Lines ever added, so a mark stays meaningful after old lines are dropped.
uint64_t& added()
{
    static uint64_t count = 0;
    return count;
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

// FluidSynth hands a file its own loader refused to the instrument-patch library, which
// complains through GLib's log without a domain ("CRITICAL **: ipatch_...").
void glibLog(const gchar* domain, GLogLevelFlags level, const gchar* message, gpointer)
{
    if (level & G_LOG_LEVEL_DEBUG)
        return;
    const char* kind = (level & G_LOG_LEVEL_CRITICAL) ? "critical" : (level & G_LOG_LEVEL_WARNING) ? "warning" : "info";
    addSynthDiagnostic(std::string(domain ? domain : "glib") + " " + kind + ": " + (message ? message : ""));
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
        g_log_set_handler(nullptr, static_cast<GLogLevelFlags>(G_LOG_LEVEL_MASK & ~G_LOG_LEVEL_ERROR), glibLog, nullptr);
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
    ++added();
    while (kept.size() > kKeptLines)
        kept.pop_front();
}

std::vector<std::string> recentSynthDiagnostics()
{
    std::lock_guard lock(diagnosticsMutex());
    return {lines().begin(), lines().end()};
}

uint64_t synthDiagnosticsMark()
{
    std::lock_guard lock(diagnosticsMutex());
    return added();
}

std::vector<std::string> synthDiagnosticsSince(uint64_t mark)
{
    std::lock_guard lock(diagnosticsMutex());
    const std::deque<std::string>& kept = lines();
    const uint64_t fresh = std::min<uint64_t>(added() - mark, kept.size());
    return {kept.end() - static_cast<std::ptrdiff_t>(fresh), kept.end()};
}

void clearSynthDiagnostics()
{
    std::lock_guard lock(diagnosticsMutex());
    lines().clear();
}

}  // namespace tarabix
