// Playing by hand without the window: what presses, releases and the key rows sound and mark.
#include "app/HandPlayer.h"

#include "playback/RecorderPort.h"
#include "playback/mMidiMain.h"
#include "tests/oud/view/DisplayRig.h"

#include <gtest/gtest.h>

#include <QKeyEvent>
#include <QTimer>

#include <memory>
#include <set>
#include <string>
#include <vector>

namespace tarabix {
namespace {

constexpr int kVelocity = 77;
using Sent = std::vector<std::string>;

class HandPlayerTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        setMidiOutBackend({[] { return std::vector<std::string>{}; },
                           [this](int32_t) { return std::make_unique<RecorderPort>(m_recording); }});
        reopenMidiOut();
        forget();
        // The window's own view: the lowest string at the top of the picture.
        rig.model.setOrientation(kRightMirrorView, true);
        rig.display.setPresentation({.playNoMaqam = kPresCircles});
        hand.velocity = [] { return kVelocity; };
    }
    void TearDown() override { resetMidiMainState(); }

    // From now on sent() tells only what follows.
    void forget() { m_from = m_recording->words().size(); }

    // Channel 0's messages since forget() as "on <note x 100 + cents> v<velocity>" and
    // "off <note>"; a pitch wheel, even an earlier one, shifts the notes after it.
    Sent sent() const
    {
        Sent out;
        int32_t cents = 0;
        const std::vector<uint32_t> words = m_recording->words();
        for (size_t i = 0; i < words.size(); ++i) {
            const uint32_t w = words[i];
            const uint32_t status = w & 0xFF, d1 = (w >> 8) & 0x7F, d2 = (w >> 16) & 0x7F;
            if (status == 0xE0)
                cents = (static_cast<int32_t>(d1 | (d2 << 7)) - 8192) * 100 / 4096;
            else if (i >= m_from && status == 0x90)
                out.push_back("on " + std::to_string(static_cast<int32_t>(d1) * 100 + cents) + " v" + std::to_string(d2));
            else if (i >= m_from && status == 0x80)
                out.push_back("off " + std::to_string(d1));
        }
        return out;
    }

    // Every note struck has had a note-off since, and nothing is held or marked.
    bool silent() const
    {
        std::set<uint32_t> sounding;
        for (uint32_t w : m_recording->words())
            if ((w & 0xF0) == 0x90)
                sounding.insert((w >> 8) & 0x7F);
            else if ((w & 0xF0) == 0x80)
                sounding.erase((w >> 8) & 0x7F);
        return sounding.empty() && !hand.holdsNote() && !anyMark();
    }

    bool marked(int32_t note, int32_t cents) const
    {
        const PicPoint p = rig.pointOf(note, cents);
        return rig.display.picUd().pixel(p.x, p.y) != rig.display.picUdClone().pixel(p.x, p.y);
    }
    bool anyMark() const { return rig.display.picUd() != rig.display.picUdClone(); }

    PicPointF at(int32_t note, int32_t cents) const
    {
        const PicPoint p = rig.pointOf(note, cents);
        return {static_cast<double>(p.x), static_cast<double>(p.y)};
    }

    bool key(int qtKey, bool down, bool autoRepeat = false, Qt::KeyboardModifiers mods = {}, HandPlayer* player = nullptr)
    {
        const QKeyEvent event(down ? QEvent::KeyPress : QEvent::KeyRelease, qtKey, mods, QString(), autoRepeat);
        return (player ? *player : hand).key(event, down);
    }

    std::shared_ptr<MidiRecording> m_recording = std::make_shared<MidiRecording>();
    size_t m_from = 0;
    test::DisplayRig rig;
    HandPlayer hand{rig.model, &rig.display, nullptr};
};

// The release takes off only what its press put up: a piece may be marking the very place the
// learner clicks with marks turned off.
TEST_F(HandPlayerTest, APressSoundsAndMarksThePitchAtThePointItsReleaseUndoesBoth)
{
    struct Case {
        const char* name;
        int32_t note, cents;  // where it is pressed; note -1: beside the strings
        Qt::MouseButton button;
        bool highlight;
        Sent pressed;  // sent by the press; the release sends the note-off
    };
    const Case cases[] = {
        {"an open string", 50, 0, Qt::LeftButton, true, {"on 5000 v77"}},
        {"a quarter tone with its wheel", 53, 50, Qt::LeftButton, true, {"on 5350 v77"}},
        {"unmarked by choice, over a piece's mark", 57, 0, Qt::LeftButton, false, {"on 5700 v77"}},
        {"beside the strings", -1, 0, Qt::LeftButton, true, {}},
        {"the right button", 50, 0, Qt::RightButton, true, {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        forget();
        hand.setOptions({.playHilite = c.highlight});
        if (!c.highlight)  // the release takes off only what its press put up
            rig.display.noteOnDisplay(c.note, c.cents, true);
        const QImage before = rig.display.picUd();
        hand.press(c.note < 0 ? PicPointF{2.0, 2.0} : at(c.note, c.cents), c.button);
        EXPECT_EQ(sent(), c.pressed);
        const bool marks = c.highlight && !c.pressed.empty();
        EXPECT_EQ(rig.display.picUd() != before, marks);
        EXPECT_TRUE(!marks || marked(c.note, c.cents));
        hand.release(c.button);
        EXPECT_EQ(sent().size(), 2 * c.pressed.size());
        EXPECT_EQ(rig.display.picUd(), before);
        if (!c.highlight)
            rig.display.noteOffDisplay(c.note, c.cents, true);
        EXPECT_TRUE(silent());
    }
}

TEST_F(HandPlayerTest, ASecondPressLiftsTheFirstNoteAndOneReleaseEndsAll)
{
    hand.press(at(50, 0), Qt::LeftButton);
    hand.press(at(55, 0), Qt::LeftButton);
    EXPECT_EQ(sent(), (Sent{"on 5000 v77", "off 50", "on 5500 v77"}));
    EXPECT_FALSE(marked(50, 0));
    EXPECT_TRUE(marked(55, 0));
    hand.release(Qt::LeftButton);
    EXPECT_TRUE(silent());
}

// Which cell is which note is FingerboardTest's; here the rows (from down shift 1, not beyond either
// edge nor by a repeated key) and the view reach it. Keys with Ctrl are the menus'.
TEST_F(HandPlayerTest, KeysPlayTheirCellOnTheStringsOfTheRowsAndView)
{
    // The usual oud, lowest string first: 41 45 50 55 60 65.
    struct Case {
        const char* name;
        int32_t orientation;
        std::vector<int> rowKeys;  // pressed and released first
        int qtKey;
        Qt::KeyboardModifiers mods;
        int32_t rows;
        Sent played;
    };
    const Case cases[] = {
        {"rows up and down again: the Q row", kRightMirrorView, {Qt::Key_Up, Qt::Key_Down}, Qt::Key_Q, {}, 1,
         {"on 5000 v77"}},
        {"rows up beyond the edge", kRightMirrorView, {Qt::Key_Up, Qt::Key_Escape, Qt::Key_Up}, Qt::Key_1, {}, 0,
         {"on 4100 v77"}},
        {"rows down beyond the edge", kRightMirrorView, {Qt::Key_Down, Qt::Key_Down}, Qt::Key_Z, {}, 2, {"on 6500 v77"}},
        {"the player's view turns the rows over", kRightPlayerView, {}, Qt::Key_1, {}, 1, {"on 6000 v77"}},
        {"a keypad Down", kRightMirrorView, {}, Qt::Key_Down, Qt::KeypadModifier, 2, {}},
        {"Ctrl+Q", kRightMirrorView, {}, Qt::Key_Q, Qt::ControlModifier, 1, {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        test::DisplayRig fresh;
        fresh.model.setOrientation(c.orientation, true);
        HandPlayer player(fresh.model, nullptr, nullptr);
        player.velocity = [] { return kVelocity; };
        for (int rowKey : c.rowKeys) {
            EXPECT_TRUE(key(rowKey, true, false, {}, &player));
            EXPECT_TRUE(key(rowKey, true, true, {}, &player));  // repeated while held: no move
            EXPECT_TRUE(key(rowKey, false, false, {}, &player));
        }
        forget();
        const bool grids = c.mods != Qt::ControlModifier;
        EXPECT_EQ(key(c.qtKey, true, false, c.mods, &player), grids);
        EXPECT_EQ(sent(), c.played);
        EXPECT_EQ(key(c.qtKey, false, false, c.mods, &player), grids);
        EXPECT_EQ(player.rowsDownShift(), c.rows);
        EXPECT_EQ(sent().size(), 2 * c.played.size());
    }
}

TEST_F(HandPlayerTest, AHeldKeySoundsOnceAndItsReleaseStopsWhatItStruckAfterTheRowsMoved)
{
    key(Qt::Key_Q, true);
    key(Qt::Key_Q, false, true);  // the system repeating a held key: a release and a press
    key(Qt::Key_Q, true, true);
    EXPECT_EQ(sent(), (Sent{"on 5000 v77"}));
    key(Qt::Key_Up, true);
    key(Qt::Key_Up, false);
    key(Qt::Key_Q, false);
    EXPECT_EQ(sent(), (Sent{"on 5000 v77", "off 50"}));
    EXPECT_TRUE(silent());
}

// The window stays alive while a note is struck (its mark painted, the doubling's gaps), so the
// note's release can arrive in the middle of its own strike. Nothing may sound after it.
TEST_F(HandPlayerTest, AReleaseInTheMiddleOfItsStrikeLeavesNothingSounding)
{
    for (bool doubling : {false, true}) {
        SCOPED_TRACE(doubling ? "in the doubling's gap" : "before the note sounds");
        hand.setOptions({.doubling = doubling});
        const auto releaseSoon = [this] { QTimer::singleShot(0, [this] { hand.release(Qt::LeftButton); }); };
        if (doubling)
            hand.velocity = [releaseSoon] {  // asked just before the first note-on
                releaseSoon();
                return kVelocity;
            };
        else
            releaseSoon();
        hand.press(at(50, 0), Qt::LeftButton);
        EXPECT_TRUE(silent());
        hand.velocity = [] { return kVelocity; };
    }
}

}  // namespace
}  // namespace tarabix
