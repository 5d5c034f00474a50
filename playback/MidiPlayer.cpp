#include "playback/MidiPlayer.h"

#include "base/CheckedInt32.h"
#include "base/Rounding.h"
#include "midi/MidiError.h"
#include "midi/MidiFile.h"

namespace tarabix {

namespace {

// A delay up to this is played as it comes; beyond it the schedule is moved by the tolerated
// share of the delay, so a hiccup of the machine does not make the following notes rush.
constexpr int32_t kCatchUpThresholdMs = 20;

constexpr const char* kSource = "MidiPlayer";

[[noreturn]] void raiseOverflow()
{
    throw MidiError(midierr::kOverflow, kSource);
}

int32_t add(int32_t a, int32_t b)
{
    if (auto r = checkedAdd(a, b))
        return *r;
    raiseOverflow();
}

int32_t sub(int32_t a, int32_t b)
{
    if (auto r = checkedSub(a, b))
        return *r;
    raiseOverflow();
}

int32_t nearest(double value)
{
    if (auto r = roundHalfEvenToInt32(value))
        return *r;
    raiseOverflow();
}

bool isTextLikeMeta(uint8_t metaType)
{
    return metaType >= 1 && metaType <= 7;  // text, copyright, track name, instrument, lyric, marker, cue
}

uint8_t byteAt(const std::string& data, size_t i)
{
    return i < data.size() ? static_cast<uint8_t>(data[i]) : 0;
}

}  // namespace

MidiPlayer::MidiPlayer(PlayerClock clock) : m_clock(std::move(clock))
{
    clear();
}

void MidiPlayer::setTheMidi(const MidiFile* midi)
{
    m_theMidi = midi;
    m_merged = MergedTracks(midi);
}

void MidiPlayer::setPlaySpeedRatio(float ratio)
{
    m_playSpeedRatio = ratio;
    m_refPieceMs = m_curPieceMs;
    m_refRealMs = m_curRealMs;
}

void MidiPlayer::reposition(int32_t absMSec)
{
    m_repositionRequested = true;
    m_repositionTarget = absMSec;
}

void MidiPlayer::clear()
{
    m_theMidi = nullptr;
    m_merged = MergedTracks();
    m_stopRequested = false;
    m_skipRequested = false;
    m_repositionRequested = false;
    m_stopOffsetMSec_midi = 0;
    m_playSpeedRatio = 1.0f;
    m_refPieceMs = m_refRealMs = m_curPieceMs = m_curRealMs = 0;
    m_repositionTarget = 0;
    m_minSilenceAlertMS = 0;
}

void MidiPlayer::resetPlayState()
{
    m_startOffsetMSecMidi = 0;
    m_stopRequested = false;
    m_skipRequested = false;
    m_stopOffsetMSec_midi = 0;
    m_playSpeedRatio = 1.0f;
    m_refPieceMs = m_refRealMs = m_curPieceMs = m_curRealMs = 0;
    m_repositionRequested = false;
    m_repositionTarget = 0;
    m_catchUpTolerance = 1.0f;
}

void MidiPlayer::play()
{
    int32_t start = m_startOffsetMSecMidi;
    m_merged = MergedTracks(m_theMidi);

    bool restart = true;
    while (restart) {
        restart = false;
        m_stopRequested = m_skipRequested = m_repositionRequested = false;
        m_merged.seek(start);
        if (chase)
            chase(start);
        // The clock time of piece time 0 at the current speed, so that `start` is due now.
        int32_t timeBase =
            sub(m_clock.now(), nearest(realMsSinceReference(start) + static_cast<double>(m_refRealMs)));

        for (;;) {
            const int32_t track = m_merged.nextTrack();
            if (track < 0)
                break;
            const MidiEvent& event = m_merged.nextEvent(track);
            const int32_t due = dueTime(event.absMS, timeBase);
            m_currentDueMs = due;
            const int32_t late = sub(m_clock.now(), due);
            if (late > kCatchUpThresholdMs) {
                timeBase = add(timeBase, nearest(static_cast<double>(m_catchUpTolerance) * late));
            } else if (late < 0 && sub(0, late) >= m_minSilenceAlertMS) {
                if (silenceAlert)
                    silenceAlert(sub(0, late));
            }
            if (waitFor(due, timeBase) == WaitEnd::Reposition) {
                start = m_repositionTarget;
                restart = true;
                break;
            }
            m_curPieceMs = event.absMS;
            m_curRealMs = sub(m_clock.now(), timeBase);
            if (m_stopRequested) {
                m_stopOffsetMSec_midi = event.absMS;
                break;
            }
            deliver(track, event);
            m_merged.advance(track);
        }
    }
    if (donePB)
        donePB();
}

// Real ms from the last speed change to piece time pieceMs at the current speed.
double MidiPlayer::realMsSinceReference(int32_t pieceMs) const
{
    if (m_playSpeedRatio == 0.0f)
        throw MidiError(midierr::kDivisionByZero, kSource);
    return static_cast<double>(sub(pieceMs, m_refPieceMs)) / static_cast<double>(m_playSpeedRatio);
}

int32_t MidiPlayer::dueTime(int32_t absMS, int32_t timeBase) const
{
    return nearest(realMsSinceReference(absMS) + static_cast<double>(add(m_refRealMs, timeBase)));
}

MidiPlayer::WaitEnd MidiPlayer::waitFor(int32_t due, int32_t& timeBase)
{
    for (;;) {
        if (due <= m_clock.now())
            return WaitEnd::Due;
        m_clock.wait(due);
        if (m_stopRequested)
            return WaitEnd::Stop;
        if (m_repositionRequested)
            return WaitEnd::Reposition;
        if (m_skipRequested) {
            // The rest of this silence is dropped: the whole schedule moves earlier by it. The
            // request is used up, so the next silence is waited out again.
            m_skipRequested = false;
            timeBase = sub(timeBase, sub(due, m_clock.now()));
            return WaitEnd::Due;
        }
    }
}

void MidiPlayer::deliver(int32_t track, const MidiEvent& event)
{
    if (event.eType == MidiEvent::kChannelMessage) {
        if (msg)
            msg(byteAt(event.eData, 0), byteAt(event.eData, 1), byteAt(event.eData, 2), event.absMS);
    } else if (event.eType == MidiEvent::kMeta) {
        const uint8_t metaType = byteAt(event.eData, 0);
        if (isTextLikeMeta(metaType) && meta)
            meta(static_cast<int16_t>(track), metaType, event.eData.substr(1), event.absMS);
    }
}

}  // namespace tarabix
