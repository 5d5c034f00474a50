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

using test::Stored;
using Group = QButtonGroup* fNotesOpts::*;
using Values = std::array<int32_t, 5>;  // names, then rest and played without, then with a maqam

const Group kNames = &fNotesOpts::optNoteNamesType;

Values values(const NotesDisplayOptions& o)
{
    return {o.noteNamesType, o.presRestNoMaqam, o.presPlayNoMaqam, o.presRestMaqam, o.presPlayMaqam};
}

NotesDisplayOptions start()
{
    return {.noteNamesType = 0, .presRestNoMaqam = 1, .presPlayNoMaqam = 2, .presRestMaqam = 0, .presPlayMaqam = 1};
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
    test::TempSettings store;
    fNotesOpts dlg(start(), store.settings());
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

TEST(NotesOptsTest, OkStoresAndReturnsOnlyTheChangedValuesCancelNothing)
{
    struct Case {
        const char* name;
        std::vector<std::pair<Group, int>> clicks;
        bool ok;
        Stored stored;
        Values after;
        bool presChanged;
        bool namesChanged;
    };
    const Case cases[] = {
        {"only the button already set", {{&fNotesOpts::optPlayNoMaq, 1}}, true, {}, {0, 1, 2, 0, 1}, false, false},
        {"played note with maqam to circle", {{&fNotesOpts::optPlayMaq, 1}}, true, {{"NotesPres_Play_Maqam", "2"}},
         {0, 1, 2, 0, 2}, true, false},
        {"static with maqam to names", {{&fNotesOpts::optMaqamStatic, 0}}, true, {{"NotesPres_Rest_Maqam", "1"}},
         {0, 1, 2, 1, 1}, true, false},
        {"static without maqam to no marks", {{&fNotesOpts::optNoMaqamStatic, 2}}, true,
         {{"NotesPres_Rest_NoMaqam", "0"}}, {0, 0, 2, 0, 1}, true, false},
        {"played note without maqam to no effect", {{&fNotesOpts::optPlayNoMaq, 2}}, true,
         {{"NotesPres_Play_NoMaqam", "0"}}, {0, 1, 0, 0, 1}, true, false},
        {"solfege names", {{kNames, 1}}, true, {{"NoteNamesType", "1"}}, {1, 1, 2, 0, 1}, false, true},
        {"names and a view", {{kNames, 1}, {&fNotesOpts::optMaqamStatic, 1}}, true,
         {{"NoteNamesType", "1"}, {"NotesPres_Rest_Maqam", "2"}}, {1, 1, 2, 2, 1}, true, true},
        {"cancel", {{kNames, 1}, {&fNotesOpts::optPlayMaq, 2}}, false, {}, {0, 1, 2, 0, 1}, false, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        test::TempSettings store;
        fNotesOpts dlg(start(), store.settings());
        dlg.show();
        QSignalSpy accepted(&dlg, &fNotesOpts::optionsAccepted);
        for (const auto& [group, index] : c.clicks)
            test::click((dlg.*group)->button(index));
        test::click(c.ok ? dlg.cmdOK : dlg.cmdCancel);
        EXPECT_EQ(dlg.result(), c.ok ? QDialog::Accepted : QDialog::Rejected);
        EXPECT_EQ(store.stored(), c.stored);
        EXPECT_EQ(values(dlg.options()), c.after);
        EXPECT_EQ(dlg.options().presChanged, c.presChanged);
        EXPECT_EQ(dlg.options().namesChanged, c.namesChanged);
        EXPECT_EQ(accepted.count(), c.ok ? 1 : 0);
        for (const QList<QVariant>& signal : accepted)
            EXPECT_EQ(values(signal.at(0).value<NotesDisplayOptions>()), c.after);
    }
}

// The window clears the change flag only after redrawing, and a stored value no button stands for
// stays as it is.
TEST(NotesOptsTest, OkKeepsAnEarlierChangeFlagAndValuesOutOfRange)
{
    NotesDisplayOptions before = start();
    before.presPlayMaqam = 7;
    before.noteNamesType = 4;
    before.presChanged = true;
    test::TempSettings store;
    fNotesOpts dlg(before, store.settings());
    dlg.show();
    EXPECT_EQ(dlg.optPlayMaq->checkedButton(), nullptr);
    EXPECT_EQ(dlg.optNoteNamesType->checkedButton(), nullptr);
    test::click(dlg.cmdOK);
    EXPECT_EQ(values(dlg.options()), values(before));
    EXPECT_TRUE(dlg.options().presChanged);
    EXPECT_EQ(store.stored(), Stored{});
}

}  // namespace
}  // namespace tarabix
