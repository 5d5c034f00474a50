#include "midi/MidiFile.h"

#include "base/CheckedInt32.h"
#include "base/Rounding.h"
#include "base/TickSource.h"
#include "midi/MidiBytes.h"
#include "midi/MidiError.h"
#include "midi/StringStreamIn.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <limits>
#include <new>
#include <system_error>

namespace tarabix {

namespace {

constexpr const char* kSource = "MidiFile";
constexpr int32_t kEventsPerClockLook = 4096;

// Hands out the events of all tracks in playing order: the smallest absTick first, the lowest
// track on equal ticks, each track's own order kept. A heap of the tracks' next events keeps a file
// of thousands of tracks as quick as one of sixteen. An event at the very last tick, 2147483647,
// is never reached, nor anything after it in its track.
class TrackMerger {
public:
    explicit TrackMerger(const std::vector<MidiTrack>& tracks) : m_tracks(tracks), m_cursors(tracks.size(), 0)
    {
        m_heap.reserve(tracks.size());
        for (size_t t = 0; t < tracks.size(); ++t) {
            if (tracks[t].trkNEvents() > 0)
                m_heap.push_back(key(tracks[t].events()[0].absTick, t));
        }
        std::make_heap(m_heap.begin(), m_heap.end(), std::greater<>());
    }

    // The next event's track and index; false when none is left.
    bool next(size_t& track, size_t& index)
    {
        if (m_heap.empty() || (m_heap[0] >> 16) == std::numeric_limits<int32_t>::max())
            return false;
        track = static_cast<size_t>(m_heap[0] & 0xFFFF);
        index = m_cursors[track]++;
        const std::span<const MidiEvent> events = m_tracks[track].events();
        if (m_cursors[track] < events.size()) {
            m_heap[0] = key(events[m_cursors[track]].absTick, track);
        } else {
            m_heap[0] = m_heap.back();
            m_heap.pop_back();
        }
        siftDown();
        return true;
    }

private:
    static int64_t key(int32_t absTick, size_t track) { return static_cast<int64_t>(absTick) * 65536 + static_cast<int64_t>(track); }

    void siftDown()
    {
        const size_t n = m_heap.size();
        size_t i = 0;
        const int64_t moving = n > 0 ? m_heap[0] : 0;
        for (;;) {
            size_t child = 2 * i + 1;
            if (child >= n)
                break;
            if (child + 1 < n && m_heap[child + 1] < m_heap[child])
                ++child;
            if (m_heap[child] >= moving)
                break;
            m_heap[i] = m_heap[child];
            i = child;
        }
        if (n > 0)
            m_heap[i] = moving;
    }

    const std::vector<MidiTrack>& m_tracks;
    std::vector<size_t> m_cursors;
    std::vector<int64_t> m_heap;
};

}  // namespace

MidiTrack* MidiFile::tracks(int32_t i)
{
    return i >= 0 && static_cast<size_t>(i) < m_tracks.size() ? &m_tracks[static_cast<size_t>(i)] : nullptr;
}

const MidiTrack* MidiFile::tracks(int32_t i) const
{
    return i >= 0 && static_cast<size_t>(i) < m_tracks.size() ? &m_tracks[static_cast<size_t>(i)] : nullptr;
}

void MidiFile::setNTracks(int16_t n)
{
    if (n < 1)
        throw MidiError(midierr::kSubscriptOutOfRange, kSource);
    if (static_cast<size_t>(n) != m_tracks.size())
        m_tracks.resize(static_cast<size_t>(n));
}

int32_t MidiFile::allLastAbsMSec() const
{
    int32_t longest = 0;
    for (const MidiTrack& t : m_tracks)
        longest = std::max(longest, t.trkLastAbsMSec());
    return longest;
}

void MidiFile::clear()
{
    setNTracks(1);
    m_format = 1;
    m_division = kDefaultDivision;
    m_tracks[0].clear();
}

int32_t MidiFile::readMidiFile(const std::string& path)
{
    StringStreamIn stream;
    try {
        stream.setFromFile(path);
    } catch (const MidiError& e) {
        if (e.number() == midierr::kPathNotFound || e.number() == midierr::kPathFileAccessError)
            return 0;  // nothing could be opened: the piece in memory stays as it was
        return e.number();
    } catch (const std::bad_alloc&) {
        return midierr::kOutOfMemory;
    }
    return readMidi(stream);
}

int32_t MidiFile::readMidi(StringStreamIn& stream)
{
    try {
        clear();
        if (stream.readView(4) != "MThd")
            return kNotAHeaderChunk;
        const auto length = static_cast<int32_t>(readBigEndian(stream.readView(4)));
        if (length < 6)
            return kShortHeader;
        const std::string_view words = stream.readView(6);
        m_format = static_cast<int16_t>(readBigEndian(words.substr(0, 2)));
        const auto nTracks = static_cast<int16_t>(readBigEndian(words.substr(2, 2)));
        m_division = static_cast<int16_t>(readBigEndian(words.substr(4, 2)));
        if (length > 6)
            stream.readView(length - 6);
        setNTracks(nTracks);
        // Chunks of other kinds are not skipped: where a track is expected, only a track will do.
        for (MidiTrack& track : m_tracks) {
            if (const int32_t status = track.readTrk(stream))
                return status;
        }
        return setEvtsAbsMSecs();
    } catch (const MidiError& e) {
        return e.number();
    } catch (const std::bad_alloc&) {
        return midierr::kOutOfMemory;
    }
}

void MidiFile::copyFrom(const MidiFile& other)
{
    if (&other == this)
        return;
    m_format = other.m_format;
    m_division = other.m_division;
    m_tracks.resize(other.m_tracks.size());
    for (size_t i = 0; i < m_tracks.size(); ++i)
        m_tracks[i].copyFrom(other.m_tracks[i]);
}

MidiTrack MidiFile::make1TrackMidi() const
{
    MidiTrack merged;
    TrackMerger merger(m_tracks);
    size_t track = 0;
    size_t index = 0;
    while (merger.next(track, index)) {
        try {
            merged.addEvent(m_tracks[track].events()[index]);
        } catch (const MidiError&) {
            // a program change above 127 is kept without its program flag, as in its own track
        }
    }
    return merged;
}

int32_t MidiFile::setEvtsAbsTicks()
{
    for (MidiTrack& t : m_tracks) {
        if (const int32_t status = t.setEvtsAbsTicks())
            return status;
    }
    return 0;
}

void MidiFile::setYieldHook(std::function<void()> hook, int32_t intervalMs)
{
    m_yieldHook = std::move(hook);
    m_yieldIntervalMs = intervalMs;
}

void MidiFile::maybeYield(int32_t& eventsSinceCheck)
{
    if (!m_yieldHook || ++eventsSinceCheck < kEventsPerClockLook)
        return;
    eventsSinceCheck = 0;
    if (tickMs() - m_lastYieldMs >= m_yieldIntervalMs) {
        m_yieldHook();
        m_lastYieldMs = tickMs();
    }
}

int32_t MidiFile::setEvtsAbsMSecs()
{
    if (const int32_t status = setEvtsAbsTicks())
        return status;
    m_lastYieldMs = tickMs();
    return (m_division & 0x8000) ? stampSmpte() : stampTicksPerQuarter();
}

int32_t MidiFile::stampSmpte()
{
    // The high byte is minus the frames per second, the low byte the ticks per frame.
    const int32_t framesPerSecond = -static_cast<int8_t>(static_cast<uint16_t>(m_division) >> 8);
    const int32_t ticksPerSecond = (m_division & 0xFF) * framesPerSecond;
    int32_t sinceCheck = 0;
    for (MidiTrack& t : m_tracks) {
        for (int32_t i = 0; i < t.trkNEvents(); ++i) {
            MidiEvent& e = t.trkEvents(i);
            const std::optional<int32_t> thousandfold = checkedMul(e.absTick, 1000);
            if (!thousandfold)
                return midierr::kOverflow;
            if (ticksPerSecond == 0)
                return midierr::kDivisionByZero;
            e.absMS = static_cast<int32_t>(roundHalfEven(static_cast<double>(*thousandfold) / ticksPerSecond));
            maybeYield(sinceCheck);
        }
    }
    return 0;
}

int32_t MidiFile::stampTicksPerQuarter()
{
    // A tempo change holds for every later event of every track, including events at the same tick
    // in higher-numbered tracks.
    double msPerQuarter = kDefaultTempo / 1000.0;
    int32_t lastTempoTick = 0;
    int32_t lastTempoMs = 0;
    int32_t sinceCheck = 0;
    TrackMerger merger(m_tracks);
    size_t track = 0;
    size_t index = 0;
    while (merger.next(track, index)) {
        MidiEvent& e = m_tracks[track].trkEvents(static_cast<int32_t>(index));
        const std::optional<int32_t> ticks = checkedSub(e.absTick, lastTempoTick);
        if (!ticks)
            return midierr::kOverflow;
        if (m_division == 0)
            return midierr::kDivisionByZero;
        const double ms = msAfterTempo(lastTempoMs, *ticks, msPerQuarter, m_division);
        const std::optional<int32_t> absMS = roundHalfEvenToInt32(ms);
        if (!absMS)
            return midierr::kOverflow;
        e.absMS = *absMS;
        if (e.isMeta(midimeta::kTempo)) {
            msPerQuarter = msPerQuarterOf(e);
            lastTempoTick = e.absTick;
            lastTempoMs = e.absMS;
        }
        maybeYield(sinceCheck);
    }
    return 0;
}

double MidiFile::msPerQuarterOf(const MidiEvent& tempoEvent)
{
    // Fewer than four data bytes are taken as if padded with zeros on the left, so the usual three
    // give the 24-bit tempo.
    const std::string_view data = std::string_view(tempoEvent.eData).substr(1);
    return static_cast<int32_t>(readBigEndian(data.substr(0, 4))) / 1000.0;
}

int32_t MidiFile::setFromList(std::span<const ListedEvent> events)
{
    int32_t highestTrack = 0;
    for (const ListedEvent& le : events) {
        if (le.track < 0 || le.track > std::numeric_limits<int16_t>::max() - 1)
            return midierr::kSubscriptOutOfRange;
        if (le.absTick < 0)
            return midierr::kInvalidArgument;
        highestTrack = std::max(highestTrack, le.track);
    }
    std::vector<std::vector<const ListedEvent*>> byTrack(static_cast<size_t>(highestTrack) + 1);
    for (const ListedEvent& le : events)
        byTrack[static_cast<size_t>(le.track)].push_back(&le);

    m_tracks.clear();
    m_tracks.resize(byTrack.size());
    for (size_t t = 0; t < byTrack.size(); ++t) {
        std::stable_sort(byTrack[t].begin(), byTrack[t].end(),
                         [](const ListedEvent* a, const ListedEvent* b) { return a->absTick < b->absTick; });
        MidiTrack& track = m_tracks[t];
        int32_t previousTick = 0;
        for (const ListedEvent* le : byTrack[t]) {
            MidiEvent e;
            e.eType = le->event.eType;
            e.eData = le->event.eData;
            e.deltaTick = le->absTick - previousTick;
            previousTick = le->absTick;
            try {
                track.addEvent(e);
            } catch (const MidiError& error) {
                return error.number();
            }
        }
        if (track.trkNEvents() == 0 || !track.events().back().isMeta(midimeta::kEndOfTrack))
            track.c_addEndOfTrack(0);
    }
    return setEvtsAbsMSecs();
}

std::string MidiFile::makeMidiStr() const
{
    std::string bytes = "MThd";
    appendBigEndian(bytes, 6, 4);
    appendBigEndian(bytes, static_cast<uint16_t>(m_format), 2);
    appendBigEndian(bytes, static_cast<uint16_t>(numOfTracks()), 2);
    appendBigEndian(bytes, static_cast<uint16_t>(m_division), 2);
    for (const MidiTrack& t : m_tracks)
        bytes += t.makeMidiTrackStr();
    return bytes;
}

int32_t MidiFile::toFile(const std::string& path) const
{
    const std::string bytes = makeMidiStr();
    std::error_code ec;
    if (!std::filesystem::is_directory(path, ec))
        std::filesystem::remove(path, ec);
    std::FILE* file = std::fopen(path.c_str(), "wb");
    if (!file)
        return midierr::kPathFileAccessError;
    bool written = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
    written = std::fclose(file) == 0 && written;
    return written ? 0 : midierr::kDeviceIoError;
}

}  // namespace tarabix
