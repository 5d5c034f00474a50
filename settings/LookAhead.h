#pragma once

#include <cstdint>

namespace tarabix {

// How far ahead the fingerboard shows a piece's coming notes while it plays, as the learner chose
// it in the note display dialog: not at all, the next one to three moments (a chord's notes are
// one moment), or every note due within a time. The time is heard time: at half speed a second
// ahead is half a second of the piece. It lives beside NotePresentation, read and written whole by
// the settings store; the window plays by it. The numbers of `choice` are the ones stored.
struct LookAhead {
    static constexpr int32_t kOff = 0;
    static constexpr int32_t kMostMoments = 3;  // choices 1..3: the next that many moments
    static constexpr int32_t kWithinTime = 4;
    static constexpr int32_t kShortestMs = 250;
    static constexpr int32_t kLongestMs = 5000;
    static constexpr int32_t kDefaultMs = 1500;

    int32_t choice = kOff;
    int32_t withinMs = kDefaultMs;  // kept while another choice is made, for when it is chosen again

    bool on() const { return choice != kOff; }
    // 1..3 for "the next moments", else 0.
    int32_t nextMoments() const { return choice >= 1 && choice <= kMostMoments ? choice : 0; }
    bool withinTime() const { return choice == kWithinTime; }

    // What a damaged store means: a choice no control stands for shows nothing, a time out of
    // range is forgotten (and the "within" choice with it).
    LookAhead checked() const
    {
        const bool timeOk = withinMs >= kShortestMs && withinMs <= kLongestMs;
        const bool choiceOk = choice >= kOff && choice <= kWithinTime && (choice != kWithinTime || timeOk);
        return {choiceOk ? choice : kOff, timeOk ? withinMs : kDefaultMs};
    }

    bool operator==(const LookAhead&) const = default;
};

}  // namespace tarabix
