// Playing by hand without the window: what a press, a move, a release and the four key rows send
// to the output and mark on the fingerboard, and which notes stay held. Sound goes to a recorder.
#include "app/HandPlayer.h"

#include "playback/RecorderPort.h"
#include "playback/mMidiMain.h"
#include "tests/oud/view/DisplayRig.h"

#include <gtest/gtest.h>

#include <QKeyEvent>
#include <QTimer>

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace tarabix {
namespace {

constexpr int kVelocity = 77;

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
    std::vector<std::string> sent() const
    {
        std::vector<std::string> out;
        int32_t cents = 0;
        const std::vector<uint32_t> words = m_recording->words();
        for (size_t i = 0; i < words.size(); ++i) {
            const uint32_t w = words[i];
            const uint32_t status = w & 0xFF, d1 = (w >> 8) & 0x7F, d2 = (w >> 16) & 0x7F;
            if (status == 0xE0)
                cents = (static_cast<int32_t>(d1 | (d2 << 7)) - 8192) * 100 / 4096;
            else if (i < m_from)
                continue;
            else if (status == 0x90)
                out.push_back("on " + std::to_string(static_cast<int32_t>(d1) * 100 + cents) + " v" +
                              std::to_string(d2));
            else if (status == 0x80)
                out.push_back("off " + std::to_string(d1));
        }
        return out;
    }

    // The notes a note-on has started and no note-off has ended.
    std::map<uint32_t, int> sounding() const
    {
        std::map<uint32_t, int> notes;
        for (uint32_t w : m_recording->words()) {
            const uint32_t note = (w >> 8) & 0x7F;
            if ((w & 0xF0) == 0x90)
                ++notes[note];
            else if ((w & 0xF0) == 0x80)
                notes.erase(note);
        }
        return notes;
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

    static bool key(HandPlayer& player, int qtKey, bool down, bool autoRepeat = false,
                    Qt::KeyboardModifiers mods = Qt::NoModifier)
    {
        const QKeyEvent event(down ? QEvent::KeyPress : QEvent::KeyRelease, qtKey, mods, QString(), autoRepeat);
        return player.key(event, down);
    }
    bool key(int qtKey, bool down, bool autoRepeat = false) { return key(hand, qtKey, down, autoRepeat); }

    std::shared_ptr<MidiRecording> m_recording = std::make_shared<MidiRecording>();
    size_t m_from = 0;
    test::DisplayRig rig;
    HandPlayer hand{rig.model, &rig.display, nullptr};
};

TEST_F(HandPlayerTest, APressSoundsAndMarksThePitchAtThePointItsReleaseUndoesBoth)
{
    struct Case {
        const char* name;
        PicPointF point;
        Qt::MouseButton button;
        bool highlight;
        std::vector<std::string> pressed;  // sent by the press
        bool marks;
        const char* released;  // sent by the release, "" for nothing
    };
    const Case cases[] = {
        {"an open string", at(50, 0), Qt::LeftButton, true, {"on 5000 v77"}, true, "off 50"},
        {"a quarter tone with its wheel", at(53, 50), Qt::LeftButton, true, {"on 5350 v77"}, true, "off 53"},
        {"unmarked by choice", at(57, 0), Qt::LeftButton, false, {"on 5700 v77"}, false, "off 57"},
        {"beside the strings", {2.0, 2.0}, Qt::LeftButton, true, {}, false, ""},
        {"the right button", at(50, 0), Qt::RightButton, true, {}, false, ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        forget();
        hand.setOptions({.playHilite = c.highlight});
        hand.press(c.point, c.button);
        EXPECT_EQ(sent(), c.pressed);
        EXPECT_EQ(anyMark(), c.marks);
        EXPECT_EQ(hand.holdsNote(), !c.pressed.empty());
        hand.release(c.button);
        std::vector<std::string> all = c.pressed;
        if (*c.released)
            all.push_back(c.released);
        EXPECT_EQ(sent(), all);
        EXPECT_FALSE(anyMark());
        EXPECT_FALSE(hand.holdsNote());
    }
    // The quarter tone's place marked: its circle sits where (53, 50) lies.
    hand.press(at(53, 50), Qt::LeftButton);
    EXPECT_TRUE(marked(53, 50));
    hand.release(Qt::LeftButton);
}

// A piece may be marking the very place the learner clicks with marks turned off: the release takes
// off only what its press put up.
TEST_F(HandPlayerTest, AnUnmarkedNoteLeavesAPiecesMarkAtItsPlaceAlone)
{
    rig.display.noteOnDisplay(50, 0, true);
    ASSERT_TRUE(marked(50, 0));
    hand.setOptions({.playHilite = false});
    hand.press(at(50, 0), Qt::LeftButton);
    hand.release(Qt::LeftButton);
    EXPECT_EQ(sent(), (std::vector<std::string>{"on 5000 v77", "off 50"}));
    EXPECT_TRUE(marked(50, 0));
}

TEST_F(HandPlayerTest, ASecondPressLiftsTheFirstNoteAndOneReleaseEndsAll)
{
    hand.press(at(50, 0), Qt::LeftButton);
    hand.press(at(55, 0), Qt::LeftButton);
    EXPECT_EQ(sent(), (std::vector<std::string>{"on 5000 v77", "off 50", "on 5500 v77"}));
    EXPECT_FALSE(marked(50, 0));
    EXPECT_TRUE(marked(55, 0));
    hand.release(Qt::LeftButton);
    EXPECT_TRUE(sounding().empty());
    EXPECT_FALSE(anyMark());
    EXPECT_FALSE(hand.holdsNote());
}

TEST_F(HandPlayerTest, KeysPlayTheirCellOnTheStringsOfTheRowsAndView)
{
    struct Case {
        const char* name;
        int32_t orientation;
        int rowMoves;  // applied one step at a time from the start (down shift 1)
        int qtKey;
        int32_t rowsAfter;
        const char* played;
    };
    // The usual oud, lowest string first: 41 45 50 55 60 65.
    const Case cases[] = {
        {"digits row", kRightMirrorView, 0, Qt::Key_1, 1, "on 4500 v77"},
        {"Q row", kRightMirrorView, 0, Qt::Key_Q, 1, "on 5000 v77"},
        {"A row", kRightMirrorView, 0, Qt::Key_A, 1, "on 5500 v77"},
        {"Z row", kRightMirrorView, 0, Qt::Key_Z, 1, "on 6000 v77"},
        {"a quarter tone along the string", kRightMirrorView, 0, Qt::Key_W, 1, "on 5050 v77"},
        {"a half tone along the string", kRightMirrorView, 0, Qt::Key_E, 1, "on 5100 v77"},
        {"rows up", kRightMirrorView, -1, Qt::Key_1, 0, "on 4100 v77"},
        {"rows up beyond the edge", kRightMirrorView, -3, Qt::Key_1, 0, "on 4100 v77"},
        {"rows down", kRightMirrorView, 1, Qt::Key_Z, 2, "on 6500 v77"},
        {"rows down beyond the edge", kRightMirrorView, 4, Qt::Key_1, 2, "on 5000 v77"},
        {"the player's view turns the rows over", kRightPlayerView, 0, Qt::Key_1, 1, "on 6000 v77"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        test::DisplayRig fresh;
        fresh.model.setOrientation(c.orientation, true);
        HandPlayer player(fresh.model, nullptr, nullptr);
        player.velocity = [] { return kVelocity; };
        for (int i = 0; i < (c.rowMoves < 0 ? -c.rowMoves : c.rowMoves); ++i)
            player.moveRows(c.rowMoves < 0 ? -1 : 1);
        EXPECT_EQ(player.rowsDownShift(), c.rowsAfter);
        forget();
        EXPECT_TRUE(key(player, c.qtKey, true));
        EXPECT_EQ(sent(), std::vector<std::string>{c.played});
        EXPECT_TRUE(key(player, c.qtKey, false));
        EXPECT_TRUE(sounding().empty());
    }
}

TEST_F(HandPlayerTest, RowKeysMoveTheRowsAndOtherKeysAreNotTheGrids)
{
    struct Case {
        const char* name;
        int qtKey;
        Qt::KeyboardModifiers mods;
        bool autoRepeat;
        bool consumed;
        int32_t rowsAfter;
    };
    const Case cases[] = {
        {"Up", Qt::Key_Up, Qt::NoModifier, false, true, 0},
        {"Esc", Qt::Key_Escape, Qt::NoModifier, false, true, 0},
        {"Down", Qt::Key_Down, Qt::NoModifier, false, true, 2},
        {"a repeated Down", Qt::Key_Down, Qt::NoModifier, true, true, 1},
        {"a keypad Down", Qt::Key_Down, Qt::KeypadModifier, false, true, 2},
        {"Ctrl+Q", Qt::Key_Q, Qt::ControlModifier, false, false, 1},
        {"F1", Qt::Key_F1, Qt::NoModifier, false, false, 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        HandPlayer player(rig.model, &rig.display, nullptr);
        forget();
        EXPECT_EQ(key(player, c.qtKey, true, c.autoRepeat, c.mods), c.consumed);
        EXPECT_EQ(player.rowsDownShift(), c.rowsAfter);
        EXPECT_EQ(key(player, c.qtKey, false, false, c.mods), c.consumed);
        EXPECT_TRUE(sent().empty());
    }
}

TEST_F(HandPlayerTest, AHeldKeySoundsOnceAndItsReleaseStopsWhatItStruckAfterTheRowsMoved)
{
    key(Qt::Key_Q, true);
    key(Qt::Key_Q, false, true);  // the system repeating a held key: a release and a press
    key(Qt::Key_Q, true, true);
    EXPECT_EQ(sent(), (std::vector<std::string>{"on 5000 v77"}));
    EXPECT_TRUE(hand.holdsNote());
    key(Qt::Key_Up, true);
    key(Qt::Key_Up, false);
    key(Qt::Key_Q, false);
    EXPECT_EQ(sent(), (std::vector<std::string>{"on 5000 v77", "off 50"}));
    EXPECT_FALSE(anyMark());
    EXPECT_FALSE(hand.holdsNote());
}

TEST_F(HandPlayerTest, DoublingStrikesTwiceExceptOnTheSingleLowestString)
{
    hand.setOptions({.doubling = true});
    key(Qt::Key_Q, true);  // string 2 at down shift 1: a doubled course
    EXPECT_EQ(sent(), (std::vector<std::string>{"on 5000 v77", "off 50", "on 5000 v77"}));
    key(Qt::Key_Q, false);
    hand.moveRows(-1);  // the digits row now lies on string 0
    forget();
    key(Qt::Key_1, true);
    EXPECT_EQ(sent(), (std::vector<std::string>{"on 4100 v77"}));
    key(Qt::Key_1, false);
    EXPECT_TRUE(sounding().empty());
}

// The window stays alive while a note is struck (its mark painted, the doubling's gaps), so the
// note's release can arrive in the middle of its own strike. Nothing may sound after it.
TEST_F(HandPlayerTest, AReleaseInTheMiddleOfItsStrikeLeavesNothingSounding)
{
    for (bool doubling : {false, true}) {
        SCOPED_TRACE(doubling ? "in the doubling's gap" : "before the note sounds");
        forget();
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
        EXPECT_TRUE(sounding().empty());
        EXPECT_FALSE(hand.holdsNote());
        EXPECT_FALSE(anyMark());
        hand.velocity = [] { return kVelocity; };
    }
}

TEST_F(HandPlayerTest, SlidingAlongAStringReStrikesOnlyWhenChosenAndFarEnough)
{
    struct Case {
        const char* name;
        bool slide;
        double dx, dy;
        Qt::MouseButtons buttons;
        bool reStruck;
    };
    const Case cases[] = {
        {"5 units along", true, 5, 0, Qt::LeftButton, true},
        {"4 units across", true, 0, 4, Qt::LeftButton, true},
        {"4 units along", true, 4, 0, Qt::LeftButton, false},
        {"not chosen", false, 5, 0, Qt::LeftButton, false},
        {"no button held", true, 5, 0, Qt::NoButton, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        hand.setOptions({.playMouseMove = c.slide});
        const PicPointF from = at(52, 0);
        hand.press(from, Qt::LeftButton);
        forget();
        hand.move({from.x + c.dx, from.y + c.dy}, c.buttons);
        EXPECT_EQ(sent().size(), c.reStruck ? 2u : 0u);
        hand.release(Qt::LeftButton);
        EXPECT_TRUE(sounding().empty());
    }
}

}  // namespace
}  // namespace tarabix
