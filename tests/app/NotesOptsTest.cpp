#include "app/fNotesOpts.h"

#include "DialogTesting.h"

#include <gtest/gtest.h>

#include <QButtonGroup>
#include <QPushButton>
#include <QSignalSpy>

#include <array>
#include <utility>
#include <vector>

namespace tarabix {
namespace {

using Group = QButtonGroup* fNotesOpts::*;
using Values = std::array<int32_t, 5>;  // names, then rest and played without, then with a maqam

const Group kNames = &fNotesOpts::optNoteNamesType;

Values values(const NotePresentation& p)
{
    return {p.nameSystem, p.restNoMaqam, p.playNoMaqam, p.restMaqam, p.playMaqam};
}

NotePresentation start()
{
    return {.restNoMaqam = 1, .restMaqam = 0, .playNoMaqam = 2, .playMaqam = 1, .nameSystem = 0};
}

TEST(NotesPresRotation, ButtonIndexAndValueAreARotation)
{
    // Value 0 is the last button ("No marks"/"No effect"), 1 the names, 2 the circles.
    for (const auto& [value, index] : {std::pair{0, 2}, std::pair{1, 0}, std::pair{2, 1}}) {
        SCOPED_TRACE(value);
        EXPECT_EQ(presToIndex(value), index);
        EXPECT_EQ(indexToPres(index), value);
    }
    for (int outside : {-1, 3, -100}) {
        SCOPED_TRACE(outside);
        EXPECT_EQ(presToIndex(outside), -1);
        EXPECT_EQ(indexToPres(outside), -1);
    }
}

TEST(NotesOptsTest, OpensWithTheButtonsOfTheCurrentValues)
{
    fNotesOpts dlg(start());
    const std::pair<Group, const char*> cases[] = {{kNames, "English names: (C, D, E, F, G, A, B)"},
                                                   {&fNotesOpts::optNoMaqamStatic, "Note names every 1/2 tone"},
                                                   {&fNotesOpts::optPlayNoMaq, "Colored Circle"},
                                                   {&fNotesOpts::optMaqamStatic, "No marks"},
                                                   {&fNotesOpts::optPlayMaq, "Note name highlighted"}};
    for (const auto& [group, text] : cases) {
        SCOPED_TRACE(text);
        ASSERT_NE((dlg.*group)->checkedButton(), nullptr);
        EXPECT_EQ((dlg.*group)->checkedButton()->text(), text);
    }
}

TEST(NotesOptsTest, OkReturnsWhatTheButtonsSayCancelNothing)
{
    struct Case {
        const char* name;
        std::vector<std::pair<Group, int>> clicks;
        bool ok;
        Values after;
    };
    const Case cases[] = {
        {"only the button already set", {{&fNotesOpts::optPlayNoMaq, 1}}, true, {0, 1, 2, 0, 1}},
        {"played note with maqam to circle", {{&fNotesOpts::optPlayMaq, 1}}, true, {0, 1, 2, 0, 2}},
        {"static with maqam to names", {{&fNotesOpts::optMaqamStatic, 0}}, true, {0, 1, 2, 1, 1}},
        {"static without maqam to no marks", {{&fNotesOpts::optNoMaqamStatic, 2}}, true, {0, 0, 2, 0, 1}},
        {"played note without maqam to no effect", {{&fNotesOpts::optPlayNoMaq, 2}}, true, {0, 1, 0, 0, 1}},
        {"solfege names", {{kNames, 1}}, true, {1, 1, 2, 0, 1}},
        {"names and a view", {{kNames, 1}, {&fNotesOpts::optMaqamStatic, 1}}, true, {1, 1, 2, 2, 1}},
        {"cancel", {{kNames, 1}, {&fNotesOpts::optPlayMaq, 2}}, false, {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        fNotesOpts dlg(start());
        dlg.show();
        QSignalSpy chosen(&dlg, &fNotesOpts::presentationChosen);
        for (const auto& [group, index] : c.clicks)
            test::click((dlg.*group)->button(index));
        test::click(c.ok ? dlg.cmdOK : dlg.cmdCancel);
        EXPECT_EQ(dlg.result(), c.ok ? QDialog::Accepted : QDialog::Rejected);
        ASSERT_EQ(chosen.count(), c.ok ? 1 : 0);
        for (const QList<QVariant>& signal : chosen)
            EXPECT_EQ(values(signal.at(0).value<NotePresentation>()), c.after);
    }
}

// A stored value no button stands for (a damaged store) comes back as it was.
TEST(NotesOptsTest, OkKeepsValuesOutOfRange)
{
    NotePresentation before = start();
    before.playMaqam = 7;
    before.nameSystem = 4;
    fNotesOpts dlg(before);
    dlg.show();
    EXPECT_EQ(dlg.optPlayMaq->checkedButton(), nullptr);
    EXPECT_EQ(dlg.optNoteNamesType->checkedButton(), nullptr);
    QSignalSpy chosen(&dlg, &fNotesOpts::presentationChosen);
    test::click(dlg.cmdOK);
    ASSERT_EQ(chosen.count(), 1);
    EXPECT_EQ(chosen.at(0).at(0).value<NotePresentation>(), before);
}

}  // namespace
}  // namespace tarabix
