#pragma once

#include <QTimer>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace tarabix {

// What the window shows of one of a piece's events.
struct PieceMark {
    enum class Kind : uint8_t {
        NoteOn,   // a note's mark appears: channel, note, cents
        NoteOff,  // and goes
        Maqam,    // a "Q:" marker selects a maqam: maqam, tonic
        Clear,    // the piece has ended: the resting fingerboard again
    };
    Kind kind = Kind::Clear;
    int8_t channel = -1;
    int32_t note = 0;
    int32_t cents = 0;
    int32_t maqam = 0;
    int32_t tonic = 0;

    static PieceMark noteOn(int ch, int32_t note, int32_t cents)
    {
        return {Kind::NoteOn, static_cast<int8_t>(ch), note, cents, 0, 0};
    }
    static PieceMark noteOff(int ch, int32_t note, int32_t cents)
    {
        return {Kind::NoteOff, static_cast<int8_t>(ch), note, cents, 0, 0};
    }
    static PieceMark maqamMarker(int32_t index, int32_t tonic) { return {Kind::Maqam, -1, 0, 0, index, tonic}; }
    static PieceMark clear() { return {}; }
    bool operator==(const PieceMark&) const = default;
};

// The marks of a piece's events, each shown when its event is heard rather than when it was sent:
// the built-in synthesizer sounds a note some tens of milliseconds after it got it, and a mark
// drawn at once would run ahead of the music.
//
// The marks of one delivered event are added while it is routed, then released with the moment
// it is heard. They are shown in the order the events came, each batch at its moment; a moment
// earlier than the last one waiting (the output's delay shrank) waits for it, so the order holds.
// The marks live in a ring that grows only when more wait than ever before, so a piece playing on
// allocates nothing; one precise timer is armed for the next moment due.
class DelayedMarks {
public:
    using Clock = std::function<int32_t()>;  // ms, on the clock of the due times (the player's)
    using Show = std::function<void(const PieceMark&)>;

    DelayedMarks(Clock nowMs, Show show);
    DelayedMarks(const DelayedMarks&) = delete;
    DelayedMarks& operator=(const DelayedMarks&) = delete;

    // A mark of the event being delivered; it waits for release().
    void add(const PieceMark& mark);
    // The marks added since the last release are due at dueMs. What is due is shown at once,
    // before this returns.
    void release(int32_t dueMs);
    // Forgets every mark still waiting, released or not; true when there were any. Nothing of
    // them is shown afterwards.
    bool drop();
    // Shows every mark whose moment has come and arms the timer for the next; the timer calls it.
    void showDue();

    size_t waiting() const { return m_count; }
    std::optional<int32_t> nextDueMs() const;
    bool timerArmed() const { return m_timer.isActive(); }

private:
    struct Entry {
        int32_t dueMs = 0;
        PieceMark mark;
    };

    Entry& at(size_t i) { return m_ring[(m_head + i) & (m_ring.size() - 1)]; }
    const Entry& at(size_t i) const { return m_ring[(m_head + i) & (m_ring.size() - 1)]; }
    void arm(int32_t nowMs);

    Clock m_now;
    Show m_show;
    std::vector<Entry> m_ring;  // a power of two long
    size_t m_head = 0;
    size_t m_count = 0;
    size_t m_held = 0;  // the last m_held of the m_count wait for release()
    QTimer m_timer;
};

}  // namespace tarabix
