#include "app/fMousePlay.h"

#include "Clicks.h"
#include "TempSettings.h"

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

#include <map>
#include <string>
#include <vector>

namespace tarabix {
namespace {

using Stored = std::map<std::string, std::string>;
using Box = QCheckBox* fMousePlay::*;

struct BoxState {
    bool checked;
    bool enabled;
    bool operator==(const BoxState&) const = default;
};

void PrintTo(const BoxState& s, std::ostream* os)
{
    *os << (s.checked ? "checked" : "clear") << (s.enabled ? "/enabled" : "/disabled");
}

BoxState stateOf(const QCheckBox* box)
{
    return {box->isChecked(), box->isEnabled()};
}

MousePlayOptions everythingOn()
{
    return {true, false, true, true, true};
}

class MousePlayTest : public ::testing::Test {
protected:
    test::TempSettings m_store;
};

TEST_F(MousePlayTest, ClicksKeepHighlightAndDoublingConsistent)
{
    struct Case {
        const char* name;
        MousePlayOptions start;
        std::vector<Box> clicks;
        BoxState hilite;
        BoxState dbl;
    };
    const Case cases[] = {
        {"nothing clicked", everythingOn(), {}, {true, true}, {true, true}},
        {"approximation off clears highlight only", everythingOn(), {&fMousePlay::chkAprxQrt}, {false, false},
         {true, true}},
        {"approximation back on enables highlight, still clear", everythingOn(),
         {&fMousePlay::chkAprxQrt, &fMousePlay::chkAprxQrt}, {false, true}, {true, true}},
        {"a disabled highlight cannot be clicked on", everythingOn(),
         {&fMousePlay::chkAprxQrt, &fMousePlay::chkHiliteQrt}, {false, false}, {true, true}},
        {"sliding clears highlight and doubling", everythingOn(), {&fMousePlay::chkPlayMove}, {false, false},
         {false, false}},
        {"sliding off enables both again, clear", everythingOn(),
         {&fMousePlay::chkPlayMove, &fMousePlay::chkPlayMove}, {false, true}, {false, true}},
        {"approximation on while sliding keeps highlight disabled", everythingOn(),
         {&fMousePlay::chkPlayMove, &fMousePlay::chkAprxQrt, &fMousePlay::chkAprxQrt}, {false, false},
         {false, false}},
        {"sliding off without approximation leaves highlight disabled", everythingOn(),
         {&fMousePlay::chkPlayMove, &fMousePlay::chkAprxQrt, &fMousePlay::chkPlayMove}, {false, false},
         {false, true}},
        {"highlight can be set again once allowed", everythingOn(),
         {&fMousePlay::chkPlayMove, &fMousePlay::chkPlayMove, &fMousePlay::chkHiliteQrt, &fMousePlay::chkDblSound},
         {true, true}, {true, true}},
        {"a stored sliding choice opens with both cleared", {true, true, true, true, true}, {}, {false, false},
         {false, false}},
        {"no approximation opens with highlight cleared", {false, false, true, false, true}, {}, {false, false},
         {false, true}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        fMousePlay dlg(c.start, m_store.settings());
        dlg.show();
        for (Box box : c.clicks)
            test::click(dlg.*box);
        EXPECT_EQ(stateOf(dlg.chkHiliteQrt), c.hilite);
        EXPECT_EQ(stateOf(dlg.chkDblSound), c.dbl);
    }
}

TEST_F(MousePlayTest, OkStoresTheFourChoicesAndReturnsTheGuidesFlag)
{
    fMousePlay dlg(everythingOn(), m_store.settings());
    dlg.show();
    QSignalSpy accepted(&dlg, &fMousePlay::optionsAccepted);
    test::click(dlg.chkAprxQrt);
    test::click(dlg.chkSowKbGuides);
    test::click(dlg.cmdOK);

    EXPECT_EQ(m_store.stored(), (Stored{{"approxQrt", "False"},
                                        {"PlayMouseMove", "False"},
                                        {"MKB-PlayHilite", "False"},
                                        {"MKB-Doubling", "True"}}));
    ASSERT_EQ(accepted.count(), 1);
    const auto after = accepted.at(0).at(0).value<MousePlayOptions>();
    EXPECT_FALSE(after.approxQrt);
    EXPECT_FALSE(after.playMouseMove);
    EXPECT_FALSE(after.playHilite);
    EXPECT_TRUE(after.doubling);
    EXPECT_FALSE(after.showKbGuides);
    EXPECT_EQ(dlg.result(), QDialog::Accepted);
}

TEST_F(MousePlayTest, CancelStoresAndChangesNothing)
{
    fMousePlay dlg(everythingOn(), m_store.settings());
    dlg.show();
    QSignalSpy accepted(&dlg, &fMousePlay::optionsAccepted);
    test::click(dlg.chkPlayMove);
    test::click(dlg.chkSowKbGuides);
    test::click(dlg.cmdCancel);

    EXPECT_EQ(m_store.stored(), Stored{});
    EXPECT_EQ(accepted.count(), 0);
    EXPECT_EQ(dlg.result(), QDialog::Rejected);
    EXPECT_FALSE(dlg.options().playMouseMove);
    EXPECT_TRUE(dlg.options().playHilite);
    EXPECT_TRUE(dlg.options().showKbGuides);
}

}  // namespace
}  // namespace tarabix
