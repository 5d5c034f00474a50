#include "app/fNotesOpts.h"

#include "Clicks.h"
#include "TempSettings.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QButtonGroup>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

#include <map>
#include <string>

namespace tarabix {
namespace {

using Stored = std::map<std::string, std::string>;

TEST(NotesPresRotation, ButtonIndexAndValueAreARotation)
{
    struct Case {
        int32_t value;
        int index;
    };
    // Value 0 is the last button ("No marks"/"No effect"), 1 the names, 2 the circles.
    const Case cases[] = {{0, 2}, {1, 0}, {2, 1}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.value);
        EXPECT_EQ(presToIndex(c.value), c.index);
        EXPECT_EQ(indexToPres(c.index), c.value);
    }
    for (int outside : {-1, 3, 7, -100}) {
        SCOPED_TRACE(outside);
        EXPECT_EQ(presToIndex(outside), -1);
        EXPECT_EQ(indexToPres(outside), -1);
    }
}

class NotesOptsTest : public ::testing::Test {
protected:
    static NotesDisplayOptions start()
    {
        NotesDisplayOptions o;
        o.noteNamesType = 0;
        o.presRestNoMaqam = 1;
        o.presPlayNoMaqam = 2;
        o.presRestMaqam = 0;
        o.presPlayMaqam = 1;
        return o;
    }

    static void click(QAbstractButton* button)
    {
        ASSERT_NE(button, nullptr);
        test::click(button);
    }

    static QString checkedText(const QButtonGroup* group)
    {
        const QAbstractButton* button = group->checkedButton();
        return button ? button->text() : QString();
    }

    test::TempSettings m_store;
};

TEST_F(NotesOptsTest, OpensWithTheButtonsOfTheCurrentValues)
{
    fNotesOpts dlg(start(), m_store.settings());
    EXPECT_EQ(checkedText(dlg.optNoteNamesType), "English names: (C, D, E, F, G, A, B)");
    EXPECT_EQ(checkedText(dlg.optNoMaqamStatic), "Note names every 1/2 tone");
    EXPECT_EQ(checkedText(dlg.optPlayNoMaq), "Colored Circle");
    EXPECT_EQ(checkedText(dlg.optMaqamStatic), "No marks");
    EXPECT_EQ(checkedText(dlg.optPlayMaq), "Note name highlighted");
}

TEST_F(NotesOptsTest, OkWithoutChangesStoresNothing)
{
    fNotesOpts dlg(start(), m_store.settings());
    dlg.show();
    QSignalSpy accepted(&dlg, &fNotesOpts::optionsAccepted);
    click(dlg.cmdOK);
    EXPECT_EQ(accepted.count(), 1);
    EXPECT_EQ(dlg.result(), QDialog::Accepted);
    EXPECT_FALSE(dlg.options().presChanged);
    EXPECT_FALSE(dlg.options().namesChanged);
    EXPECT_EQ(m_store.stored(), Stored{});
}

TEST_F(NotesOptsTest, OkStoresOnlyTheChangedValue)
{
    struct Case {
        const char* name;
        QButtonGroup* fNotesOpts::*group;
        int index;
        Stored stored;
        bool presChanged;
        bool namesChanged;
    };
    const Case cases[] = {
        {"played note with maqam to circle", &fNotesOpts::optPlayMaq, 1, {{"NotesPres_Play_Maqam", "2"}}, true, false},
        {"static with maqam to names", &fNotesOpts::optMaqamStatic, 0, {{"NotesPres_Rest_Maqam", "1"}}, true, false},
        {"static without maqam to no marks", &fNotesOpts::optNoMaqamStatic, 2, {{"NotesPres_Rest_NoMaqam", "0"}},
         true, false},
        {"played note without maqam to no effect", &fNotesOpts::optPlayNoMaq, 2, {{"NotesPres_Play_NoMaqam", "0"}},
         true, false},
        {"solfege names", &fNotesOpts::optNoteNamesType, 1, {{"NoteNamesType", "1"}}, false, true},
        {"the button already set", &fNotesOpts::optPlayNoMaq, 1, {}, false, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        test::TempSettings store;
        fNotesOpts dlg(start(), store.settings());
        dlg.show();
        click((dlg.*c.group)->button(c.index));
        click(dlg.cmdOK);
        EXPECT_EQ(store.stored(), c.stored);
        EXPECT_EQ(dlg.options().presChanged, c.presChanged);
        EXPECT_EQ(dlg.options().namesChanged, c.namesChanged);
    }
}

TEST_F(NotesOptsTest, OkReturnsTheNewValuesAndKeepsAnEarlierChangeFlag)
{
    NotesDisplayOptions before = start();
    before.presChanged = true;
    fNotesOpts dlg(before, m_store.settings());
    dlg.show();
    QSignalSpy accepted(&dlg, &fNotesOpts::optionsAccepted);
    click(dlg.optNoteNamesType->button(1));
    click(dlg.optMaqamStatic->button(1));
    click(dlg.cmdOK);
    ASSERT_EQ(accepted.count(), 1);
    const auto after = accepted.at(0).at(0).value<NotesDisplayOptions>();
    EXPECT_EQ(after.noteNamesType, 1);
    EXPECT_EQ(after.presRestMaqam, 2);
    EXPECT_EQ(after.presPlayMaqam, 1);
    EXPECT_EQ(after.presRestNoMaqam, 1);
    EXPECT_EQ(after.presPlayNoMaqam, 2);
    EXPECT_TRUE(after.presChanged);
    EXPECT_EQ(m_store.stored(), (Stored{{"NoteNamesType", "1"}, {"NotesPres_Rest_Maqam", "2"}}));
}

TEST_F(NotesOptsTest, AValueOutOfRangeSetsNoButtonAndSurvivesOk)
{
    NotesDisplayOptions before = start();
    before.presPlayMaqam = 7;
    before.noteNamesType = 4;
    {
        fNotesOpts dlg(before, m_store.settings());
        dlg.show();
        EXPECT_EQ(dlg.optPlayMaq->checkedButton(), nullptr);
        EXPECT_EQ(dlg.optNoteNamesType->checkedButton(), nullptr);
        click(dlg.cmdOK);
        EXPECT_EQ(dlg.options().presPlayMaqam, 7);
        EXPECT_EQ(dlg.options().noteNamesType, 4);
        EXPECT_FALSE(dlg.options().presChanged);
        EXPECT_EQ(m_store.stored(), Stored{});
    }
    fNotesOpts dlg(before, m_store.settings());
    dlg.show();
    click(dlg.optPlayMaq->button(2));
    click(dlg.cmdOK);
    EXPECT_EQ(dlg.options().presPlayMaqam, 0);
    EXPECT_TRUE(dlg.options().presChanged);
    EXPECT_EQ(m_store.stored(), (Stored{{"NotesPres_Play_Maqam", "0"}}));
}

TEST_F(NotesOptsTest, CancelChangesAndStoresNothing)
{
    fNotesOpts dlg(start(), m_store.settings());
    dlg.show();
    QSignalSpy accepted(&dlg, &fNotesOpts::optionsAccepted);
    click(dlg.optPlayMaq->button(2));
    click(dlg.optNoteNamesType->button(1));
    click(dlg.cmdCancel);
    EXPECT_EQ(dlg.result(), QDialog::Rejected);
    EXPECT_EQ(accepted.count(), 0);
    EXPECT_EQ(dlg.options().presPlayMaqam, 1);
    EXPECT_EQ(dlg.options().noteNamesType, 0);
    EXPECT_FALSE(dlg.options().presChanged);
    EXPECT_EQ(m_store.stored(), Stored{});
}

}  // namespace
}  // namespace tarabix
