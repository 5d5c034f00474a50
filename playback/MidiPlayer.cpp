#include "playback/MidiPlayer.h"

#include "base/CheckedInt32.h"
#include "base/Rounding.h"
#include "midi/MidiError.h"
#include "midi/MidiFile.h"

#include <algorithm>
#include <limits>

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

int32_t mul(int32_t a, int32_t b)
{
    if (auto r = checkedMul(a, b))
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

void MidiPlayer::reposition(int32_t absMSec)
{
    m_repositionRequested = true;
    m_repositionTarget = absMSec;
}

void MidiPlayer::clear()
{
    m_theMidi = nullptr;
    m_merged = MergedTracks();
    m_plan = {};
    m_stopRequested = false;
    m_skipRequested = false;
    m_repositionRequested = false;
    m_stopOffsetMSec_midi = 0;
    m_schedule = PracticeSchedule();
    m_repositionTarget = 0;
    m_minSilenceAlertMS = 0;
}

void MidiPlayer::resetPlayState()
{
    m_startOffsetMSecMidi = 0;
    m_stopRequested = false;
    m_skipRequested = false;
    m_stopOffsetMSec_midi = 0;
    m_schedule = PracticeSchedule();
    m_repositionRequested = false;
    m_repositionTarget = 0;
    m_catchUpTolerance = 1.0f;
}

void MidiPlayer::setPractice(const PracticePlan& plan)
{
    m_plan = plan;
    m_planChanged = m_playing;
}

void MidiPlayer::play()
{
    // Whether play() is on the stack, so a plan set from a handler takes over at once.
    struct Playing {
        bool& flag;
        explicit Playing(bool& f) : flag(f) { flag = true; }
        ~Playing() { flag = false; }
    } playing(m_playing);
    m_planChanged = false;
    m_merged = MergedTracks(m_theMidi);
    m_beatGrid = m_theMidi ? BeatGrid(*m_theMidi) : BeatGrid();
    if (practicePlanProblem(m_plan, m_theMidi ? m_theMidi->allLastAbsMSec() : 0))
        throw MidiError(midierr::kInvalidArgument, kSource);
    m_schedule.start(m_plan);
    int32_t start = m_startOffsetMSecMidi;
    if (const auto& loop = m_plan.loop; loop && !(start >= loop->fromMs && start < loop->toMs))
        start = loop->fromMs;
    beginStretch(start, m_plan.countInBeats, m_clock.now(), true);

    for (;;) {
        const Moment next = nextMoment();
        if (next.kind == Moment::PieceEnd)
            break;
        const int32_t due = m_schedule.due(next.pieceMs);
        m_currentDueMs = due;
        keepUp(due, next.kind == Moment::Event);
        const WaitEnd end = waitFor(due);
        // Not on the way out: the owner may already be setting up the next piece's plan.
        if (m_planChanged && !m_stopRequested)
            adoptPlan();
        if (end == WaitEnd::Reposition) {
            beginStretch(m_repositionTarget, 0, m_clock.now(), false);
            continue;
        }
        if (end == WaitEnd::PlanChanged)
            continue;
        if (m_stopRequested) {
            m_stopOffsetMSec_midi = std::max(next.pieceMs, m_stretch.startMs);
            break;
        }
        m_schedule.played(next.pieceMs, m_clock.now());
        if (next.kind == Moment::LoopEnd && !m_schedule.anotherPass())
            break;
        act(next);
    }
    if (donePB)
        donePB();
}

// The stretch's first moment, its count-in's first click or fromMs, is due at exactly clockMs.
void MidiPlayer::beginStretch(int32_t fromMs, int32_t countIn, double clockMs, bool newPass)
{
    m_stopRequested = m_skipRequested = m_repositionRequested = false;
    const auto& loop = m_schedule.plan().loop;
    m_stretch.startMs = fromMs;
    m_stretch.loopEndMs = loop && fromMs < loop->toMs ? std::optional(loop->toMs) : std::nullopt;
    m_stretch.countIn = m_stretch.countInLeft = countIn;
    m_stretch.beat = m_beatGrid.beatAt(fromMs);
    const int32_t firstMs = sub(fromMs, mul(countIn, m_stretch.beat.beatMs));
    m_schedule.anchor(firstMs, clockMs);
    m_merged.seek(fromMs);
    // Up to B; without a loop the grid itself ends at the piece's last event.
    const int32_t untilMs = m_stretch.loopEndMs.value_or(std::numeric_limits<int32_t>::max());
    m_stretch.beats = beatClick ? m_beatGrid.beats(fromMs, untilMs) : std::vector<BeatTime>();
    m_stretch.nextBeat = 0;
    m_currentDueMs = m_schedule.due(firstMs);
    if (chase)
        chase(fromMs);
    if (newPass && passStarted)
        passStarted(m_schedule.pass(), static_cast<float>(m_schedule.speed()));
}

// The count-in's clicks first; then the earliest of the next beat (while the clicks are on), the
// next event and the loop's end.
MidiPlayer::Moment MidiPlayer::nextMoment()
{
    Stretch& s = m_stretch;
    if (s.countInLeft > 0)
        return {Moment::CountIn, s.startMs - s.countInLeft * s.beat.beatMs};
    const int32_t track = m_merged.nextTrack();
    Moment next{Moment::PieceEnd};
    if (track >= 0)
        next = {Moment::Event, m_merged.nextEvent(track).absMS, track};
    if (s.loopEndMs && (track < 0 || next.pieceMs >= *s.loopEndMs))
        next = {Moment::LoopEnd, *s.loopEndMs};
    for (; s.nextBeat < s.beats.size(); ++s.nextBeat) {
        const BeatTime& beat = s.beats[s.nextBeat];
        if (next.kind == Moment::PieceEnd || beat.ms > next.pieceMs)
            break;
        if (m_clickEveryBeat)
            return {Moment::Beat, beat.ms};
    }
    return next;
}

// A long wait for an event is told to the owner.
void MidiPlayer::keepUp(int32_t due, bool pieceEvent)
{
    const int32_t late = sub(m_clock.now(), due);
    if (late > kCatchUpThresholdMs) {
        m_schedule.moveBy(nearest(static_cast<double>(m_catchUpTolerance) * late));
    } else if (pieceEvent && late < 0 && sub(0, late) >= m_minSilenceAlertMS) {
        if (silenceAlert)
            silenceAlert(sub(0, late));
    }
}

MidiPlayer::WaitEnd MidiPlayer::waitFor(int32_t due)
{
    for (;;) {
        if (due <= m_clock.now())
            return WaitEnd::Due;
        m_clock.wait(due);
        if (m_stopRequested)
            return WaitEnd::Stop;
        if (m_repositionRequested)
            return WaitEnd::Reposition;
        if (m_planChanged)
            return WaitEnd::PlanChanged;
        if (m_skipRequested) {
            // The rest of this wait is dropped: the whole schedule moves earlier by it, and what
            // was waited for is due now. The request is used up, so the next wait is waited out.
            m_skipRequested = false;
            m_schedule.moveBy(sub(m_clock.now(), due));
            m_currentDueMs = m_clock.now();
            return WaitEnd::Due;
        }
    }
}

// The plan set while playing: its loop's end from here on (while the music is still before it),
// its speed from the last moment played, the beats up to where this stretch now ends.
void MidiPlayer::adoptPlan()
{
    m_planChanged = false;
    if (practicePlanProblem(m_plan, m_theMidi ? m_theMidi->allLastAbsMSec() : 0))
        throw MidiError(midierr::kInvalidArgument, kSource);
    m_schedule.change(m_plan);
    Stretch& s = m_stretch;
    const int32_t here = m_schedule.playedPieceMs();
    const auto& loop = m_plan.loop;
    s.loopEndMs = loop && here < loop->toMs ? std::optional(loop->toMs) : std::nullopt;
    // A beat at the moment last played has been clicked already (beats come before events).
    const int32_t untilMs = s.loopEndMs.value_or(std::numeric_limits<int32_t>::max());
    s.beats = beatClick ? m_beatGrid.beats(add(here, 1), untilMs) : std::vector<BeatTime>();
    s.nextBeat = 0;
}

void MidiPlayer::act(const Moment& moment)
{
    Stretch& s = m_stretch;
    switch (moment.kind) {
    case Moment::CountIn: {
        const int32_t left = s.countInLeft--;
        if (countInBeat)
            countInBeat(left, left == s.countIn || left % std::max(s.beat.beatsPerBar, 1) == 0);
        break;
    }
    case Moment::Beat:
        if (beatClick)
            beatClick(s.beats[s.nextBeat].downbeat);
        ++s.nextBeat;
        break;
    case Moment::Event:
        deliver(moment.track, m_merged.nextEvent(moment.track));
        m_merged.advance(moment.track);
        break;
    case Moment::LoopEnd: {
        // The next pass starts exactly when B is due, from the unrounded moment.
        const double endMs = m_schedule.exactDue(*s.loopEndMs);
        m_schedule.nextPass();
        beginStretch(m_schedule.plan().loop->fromMs, m_schedule.plan().countInBeats, endMs, true);
        break;
    }
    case Moment::PieceEnd:
        break;
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
