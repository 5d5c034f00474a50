// The window marks a piece's coming notes while it plays, as the note display dialog or the store
// chose, and takes them off when it stops.
#include "DialogTesting.h"
#include "MainWindowFixture.h"
#include "app/fNotesOpts.h"

#include <tuple>

namespace tarabix::test {
namespace {

using Coming = std::vector<std::tuple<int32_t, int32_t, int32_t>>;  // note, cents, moment
class LookAheadTest : public MainWindowTest {};

// Notes 500 ms apart: 60, 62 a quarter tone up (its wheel), 64 and 67 together with the wheel back.
// While 60 sounds, "the next 2 notes" (chosen in the dialog, and stored) marks 62 at its quarter
// tone and the chord after it; "within 500 ms" (from the store) only 62. The marks lie at the
// places of their pitches, and Stop takes them all off at the next tick.
TEST_F(LookAheadTest, ComingNotesAreMarkedWhilePlayingAndGoAtStop)
{
    const QString piece = writeTrack("steps.mid", [](MidiTrack& t) {
        t.c_addNoteOnE(0, 0, 60, 100);
        t.c_addNoteOffE(500, 0, 60);
        t.c_addPitchWheelE(0, 0, 50.0);
        t.c_addNoteOnE(0, 0, 62, 100);
        t.c_addNoteOffE(500, 0, 62);
        t.c_addPitchWheelE(0, 0, 0.0);
        t.c_addNoteOnE(0, 0, 64, 100);
        t.c_addNoteOnE(0, 0, 67, 100);
        t.c_addNoteOffE(500, 0, 64);
        t.c_addNoteOffE(0, 0, 67);
    });
    struct Case { const char* store; int dialogChoice; Coming expected; };
    for (const Case& c : {Case{"[options]\nLookAhead=4\nLookAheadMS=500\n", -1, {{62, 50, 1}}},
                          Case{nullptr, 2, {{62, 50, 1}, {64, 0, 2}, {67, 0, 2}}}}) {
        SCOPED_TRACE(c.store ? c.store : "dialog");
        QFile file(m_store.filePath(QStringLiteral("Tarabix.conf")));
        ASSERT_TRUE(!c.store || (file.open(QIODevice::WriteOnly) && file.write(c.store) > 0));
        file.close();
        fMainProbe& w = start();
        if (c.dialogChoice >= 0) {
            w.mnu_Opts_Notes->trigger();
            auto* dialog = w.findChild<fNotesOpts*>();
            ASSERT_NE(dialog, nullptr);
            click(dialog->optLookAhead->button(c.dialogChoice));
            click(dialog->cmdOK);
            EXPECT_EQ(storedOption("LookAhead"), QString::number(c.dialogChoice));
        }
        w.openFile(piece, false);
        const auto shownComing = [&w] {
            Coming coming;
            for (const LookAheadMark& m : w.display()->lookAhead())
                coming.emplace_back(m.note, m.cents, m.moment);
            return coming;
        };
        Coming seen;
        bool allMarked = true;
        after(200, [&] {
            seen = shownComing();
            for (const auto& [note, cents, moment] : seen)
                allMarked = allMarked && markedAt(note, cents);
            w.cmdStop->click();
        });
        w.cmdPlay->click();  // returns at the stop
        EXPECT_EQ(seen, c.expected);
        EXPECT_TRUE(allMarked);
        // However loaded the machine, well before the piece would run out of coming notes.
        EXPECT_TRUE(QTest::qWaitFor([&] { return shownComing().empty() && boardAtRest(); }, 400));
    }
}

}  // namespace
}  // namespace tarabix::test
