#include "UsualOud.h"

#include "oud/model/RestingMarks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <tuple>

namespace tarabix {
namespace {

int64_t centsOf(int32_t note, int32_t cents) { return int64_t{100} * note + cents; }

void loadShippedTunings(mUdCtrl& ud) { ASSERT_EQ(ud.loadTunings(TARABIX_SOURCE_DIR "/data/tunings.ini"), kTuningsLoaded); }

TEST(FingerboardPlaces, BassStringBesideTheHighestCourse)
{
    mUdCtrl ud;
    loadShippedTunings(ud);
    ud.applyTuning(9, 0);  // C3 D3 G3 C4 F4, then the bass F2 as string 5
    ASSERT_EQ(ud.curStringPitch()[5], 41);
    struct Case { NotePitch pitch; int32_t string, quarterTones, finger; };
    const Case cases[] = {
        {{48, 0}, 0, 0, 0},    // C3: string 0 open, not the bass string's seventh semitone
        {{48, 50}, 0, 1, 1},   // a quarter tone above it, by the nut of string 0
        {{49, -50}, 0, 1, 1},  // the same pitch spelled from above
        {{41, 0}, 5, 0, 0},    // F2: the bass string open
        {{44, 0}, 5, 6, 3},    // only the bass string reaches G sharp 2
        {{47, 50}, 5, 13, 4},
        {{50, 0}, 1, 0, 0},    // D3 open on string 1, not stopped on string 0
        {{49, 0}, 0, 2, 1},
        {{72, 0}, 4, 14, 4},   // the top of the range
    };
    for (int32_t view = 0; view < 4; ++view) {
        ud.setOrientation(view, true);
        for (const Case& c : cases) {
            SCOPED_TRACE(testing::Message() << "view " << view << " pitch " << c.pitch.note << "/" << c.pitch.cents);
            const auto place = ud.placeOfPitch(c.pitch.note, c.pitch.cents);
            ASSERT_TRUE(place);
            EXPECT_EQ(place->string, c.string);
            EXPECT_EQ(place->point, ud.stringStopPoint(c.string, c.quarterTones));
            EXPECT_EQ(ud.fingerForPitch(c.pitch.note, c.pitch.cents), c.finger);
        }
    }
    // The range runs from the bass string to the top string's seventh semitone, without a gap.
    for (const auto& [id, low, high] : {std::tuple{9, 41, 72}, std::tuple{10, 43, 74}}) {
        ud.applyTuning(id, 0);
        EXPECT_EQ(std::make_pair(ud.lowestNote(), ud.highestNote()), std::make_pair(low, high)) << id;
        for (int32_t q = 0; q < kPositionCount; ++q)
            EXPECT_EQ(ud.positionAt(q).playable(), q >= 2 * low && q <= 2 * high) << id << " q " << q;
    }
}

TEST(FingerboardPlaces, APitchLiesWhereItsSoundingQuarterToneIsStopped)
{
    mUdCtrl ud;
    test::tuneUsualOud(ud);
    // A quarter tone written from the note above lies where it is written from the note below.
    const PositionEntry e = ud.positionAt(127);
    EXPECT_EQ(ud.placeOfPitch(64, -50), (PitchPlace{{e.x, e.y}, e.string}));
    EXPECT_EQ(ud.placeOfPitch(64, -50), ud.placeOfPitch(63, 50));
    // Below the lowest open string, past the top string's zone, outside MIDI.
    for (const NotePitch off : {NotePitch{41, -10}, {40, 50}, {72, 10}, {72, 50}, {-1, 0}, {127, 99}, {INT32_MAX, INT32_MIN}})
        EXPECT_FALSE(ud.placeOfPitch(off.note, off.cents)) << off.note << "/" << off.cents;

    // The string and finger are those of the place: E half-flat three quarter tones up the D string
    // is the first finger; 10 cents under the open D is stopped on the A string, by the fourth.
    const std::tuple<NotePitch, int32_t, int32_t> fingers[] = {
        {{52, -50}, 2, 1}, {{51, 50}, 2, 1}, {{64, -50}, 4, 4}, {{45, -50}, 0, 4}, {{50, 10}, 2, 0},
        {{50, 30}, 2, 1}, {{50, -10}, 1, 4}, {{72, -10}, 5, 4}};
    for (const auto& [pitch, string, finger] : fingers) {
        SCOPED_TRACE(testing::Message() << pitch.note << "/" << pitch.cents);
        EXPECT_EQ(ud.placeOfPitch(pitch.note, pitch.cents).value_or(PitchPlace{}).string, string);
        EXPECT_EQ(ud.fingerForPitch(pitch.note, pitch.cents), finger);
    }
    EXPECT_EQ(ud.fingerForPitch(72, 50), -1);
}

// For every shipped maqam on every tonic, in every view and for the usual oud and both tunings with
// the bass string last: the resting marks are the scale's pitches within the range, lowest first,
// and a click on each one (quarter tones on, as the window's mouse) sounds that very pitch.
TEST(FingerboardPlaces, EveryRestingMarkSoundsItsOwnPitchWhenPressed)
{
    mMaqams maqams;
    ASSERT_EQ(maqams.loadMaqams(TARABIX_SOURCE_DIR "/data/maqams.ini"), "");
    ASSERT_GE(maqams.maqamCount(), 20);
    mUdCtrl ud;
    loadShippedTunings(ud);
    int64_t marksChecked = 0;
    for (const int32_t tuning : {0, 9, 10}) {
        ud.applyTuning(tuning, 0);
        ASSERT_EQ(ud.curTuningId(), tuning);
        const int64_t low = centsOf(ud.lowestNote(), ud.lowestCents());
        const int64_t high = centsOf(ud.highestNote(), ud.highestCents());
        for (int32_t view = 0; view < 4; ++view) {
            ud.setOrientation(view, true);
            for (int32_t m = 1; m <= maqams.maqamCount(); ++m) {
                for (int32_t tonic = 0; tonic < 12; ++tonic) {
                    SCOPED_TRACE(testing::Message() << "tuning " << tuning << " view " << view << " " << maqams.maqamName(m) << " on " << tonic);
                    maqams.selectMaqam(m, tonic);
                    const RestingScale scale = restingScaleOf(maqams);
                    size_t inRange = 0;
                    for (int32_t d = 0; d < 7; ++d)
                        for (int32_t k = 0; k < 10; ++k) {
                            const int64_t c = centsOf(scale.degree(d).note + 12 * k, scale.degree(d).cents);
                            inRange += c >= low && c <= high;
                        }
                    const std::vector<RestingMark> marks = restingMarks(ud, scale);
                    ASSERT_EQ(marks.size(), inRange);
                    ASSERT_TRUE(std::is_sorted(marks.begin(), marks.end(), [](const RestingMark& a, const RestingMark& b) {
                        return centsOf(a.note, a.cents) < centsOf(b.note, b.cents);
                    }));
                    for (const RestingMark& mark : marks) {
                        const PicPoint p = mark.place.point;
                        const FoundPitch found = ud.pitchAtPoint({double(p.x), double(p.y)}, true, 8.0);
                        ASSERT_EQ(std::make_pair(centsOf(found.note, found.cents), found.string),
                                  std::make_pair(centsOf(mark.note, mark.cents), mark.place.string))
                            << "mark " << mark.note << "/" << mark.cents << " at " << p.x << "," << p.y;
                        ++marksChecked;
                    }
                }
            }
        }
    }
    EXPECT_GT(marksChecked, 3 * 4 * 12 * maqams.maqamCount() * 15);
}

}  // namespace
}  // namespace tarabix
