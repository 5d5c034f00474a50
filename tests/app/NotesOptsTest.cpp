#include "app/fNotesOpts.h"

#include "DialogTesting.h"

#include <gtest/gtest.h>

#include <QButtonGroup>
#include <QPushButton>
#include <QSignalSpy>
#include <QSpinBox>

#include <array>
#include <utility>
#include <vector>

namespace tarabix {
namespace {

using Group = QButtonGroup* fNotesOpts::*;
using Values = std::array<int32_t, 5>;  // names, then rest and played without, then with a maqam

// The buttons list names first, circles second and "nothing" last (values 1, 2, 0). The dialog
// opens on the current values and OK returns what the buttons say; a stored value no button stands
// for (a damaged store) comes back as it was; Cancel returns nothing.
TEST(NotesOptsTest, OkReturnsWhatTheButtonsSayCancelNothing)
{
    struct Case {
        const char* name;
        int32_t playMaqam;  // before
        std::vector<std::pair<Group, int>> clicks;
        bool ok;
        Values after;
    };
    const Case cases[] = {
        {"only the button already set", 1, {{&fNotesOpts::optPlayNoMaq, 1}}, true, {0, 1, 2, 0, 1}},
        {"played note with maqam to circle", 1, {{&fNotesOpts::optPlayMaq, 1}}, true, {0, 1, 2, 0, 2}},
        {"static with maqam to names", 1, {{&fNotesOpts::optMaqamStatic, 0}}, true, {0, 1, 2, 1, 1}},
        {"solfege names", 1, {{&fNotesOpts::optNoteNamesType, 1}}, true, {1, 1, 2, 0, 1}},
        {"a value out of range kept", 7, {}, true, {0, 1, 2, 0, 7}},
        {"cancel", 1, {{&fNotesOpts::optNoteNamesType, 1}}, false, {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        fNotesOpts dlg({.restNoMaqam = 1, .restMaqam = 0, .playNoMaqam = 2, .playMaqam = c.playMaqam, .nameSystem = 0}, {});
        dlg.show();
        QSignalSpy chosen(&dlg, &fNotesOpts::presentationChosen);
        for (const auto& [group, index] : c.clicks)
            test::click((dlg.*group)->button(index));
        test::click(c.ok ? dlg.cmdOK : dlg.cmdCancel);
        ASSERT_EQ(chosen.count(), c.ok ? 1 : 0);
        if (c.ok) {
            const auto p = chosen.at(0).at(0).value<NotePresentation>();
            EXPECT_EQ((Values{p.nameSystem, p.restNoMaqam, p.playNoMaqam, p.restMaqam, p.playMaqam}), c.after);
        }
    }
}

// The look-ahead opens on its choice (a damaged one as off) and OK returns what the buttons and
// the time say; the time is kept while another choice is made.
TEST(NotesOptsTest, LookAheadComesBackAsChosen)
{
    struct Case { LookAhead before; int click; int32_t timeMs; int opensOn; LookAhead after; };
    const Case cases[] = {
        {{}, 2, 0, LookAhead::kOff, {2, LookAhead::kDefaultMs}},
        {{1, 1500}, LookAhead::kWithinTime, 2250, 1, {LookAhead::kWithinTime, 2250}},
        {{LookAhead::kWithinTime, 750}, LookAhead::kOff, 0, LookAhead::kWithinTime, {LookAhead::kOff, 750}},
        {{9, 750}, -1, 0, LookAhead::kOff, {LookAhead::kOff, 750}},
    };
    for (const Case& c : cases) {
        fNotesOpts dlg({}, c.before);
        dlg.show();
        EXPECT_EQ(dlg.optLookAhead->checkedId(), c.opensOn) << c.before.choice;
        QSignalSpy chosen(&dlg, &fNotesOpts::lookAheadChosen);
        if (c.click >= 0)
            test::click(dlg.optLookAhead->button(c.click));
        if (c.timeMs > 0)
            dlg.spnLookAheadMs->setValue(c.timeMs);
        test::click(dlg.cmdOK);
        ASSERT_EQ(chosen.count(), 1);
        EXPECT_EQ(chosen.at(0).at(0).value<LookAhead>(), c.after) << c.before.choice;
    }
}

}  // namespace
}  // namespace tarabix
