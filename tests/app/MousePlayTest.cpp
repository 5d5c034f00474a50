#include "app/fMousePlay.h"

#include "DialogTesting.h"

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QPushButton>
#include <QSignalSpy>

#include <string>
#include <vector>

namespace tarabix {
namespace {

using Box = QCheckBox* fMousePlay::*;
const Box kAprx = &fMousePlay::chkAprxQrt;
const Box kMove = &fMousePlay::chkPlayMove;
const Box kHilite = &fMousePlay::chkHiliteQrt;
const Box kDbl = &fMousePlay::chkDblSound;

// Approximation, highlight, doubling and guides on, sliding off.
const HandPlayOptions kUsual{true, false, true, true, true};

std::string stateOf(const QCheckBox* box)
{
    return std::string(box->isChecked() ? "on" : "off") + (box->isEnabled() ? "" : " disabled");
}

TEST(MousePlayTest, ClicksKeepHighlightAndDoublingConsistent)
{
    struct Case {
        const char* name;
        HandPlayOptions start;
        std::vector<Box> clicks;
        const char* hilite;
        const char* dbl;
    };
    const Case cases[] = {
        {"nothing clicked", kUsual, {}, "on", "on"},
        {"approximation off clears highlight only", kUsual, {kAprx}, "off disabled", "on"},
        {"approximation back on enables highlight, still clear", kUsual, {kAprx, kAprx}, "off", "on"},
        {"a disabled highlight cannot be clicked on", kUsual, {kAprx, kHilite}, "off disabled", "on"},
        {"sliding clears highlight and doubling", kUsual, {kMove}, "off disabled", "off disabled"},
        {"sliding off enables both again, clear", kUsual, {kMove, kMove}, "off", "off"},
        {"approximation on while sliding keeps highlight disabled", kUsual, {kMove, kAprx, kAprx}, "off disabled",
         "off disabled"},
        {"sliding off without approximation leaves highlight disabled", kUsual, {kMove, kAprx, kMove},
         "off disabled", "off"},
        {"highlight can be set again once allowed", kUsual, {kMove, kMove, kHilite, kDbl}, "on", "on"},
        {"a stored sliding choice opens with both cleared", {true, true, true, true, true}, {}, "off disabled",
         "off disabled"},
        {"no approximation opens with highlight cleared", {false, false, true, false, true}, {}, "off disabled",
         "off"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        test::TempSettings store;
        fMousePlay dlg(c.start, store.settings());
        dlg.show();
        for (Box box : c.clicks)
            test::click(dlg.*box);
        EXPECT_EQ(stateOf(dlg.chkHiliteQrt), c.hilite);
        EXPECT_EQ(stateOf(dlg.chkDblSound), c.dbl);
    }
}

TEST(MousePlayTest, OkStoresTheFourChoicesAndReturnsTheGuidesFlagCancelNothing)
{
    for (bool ok : {true, false}) {
        SCOPED_TRACE(ok ? "OK" : "Cancel");
        test::TempSettings store;
        fMousePlay dlg(kUsual, store.settings());
        dlg.show();
        QSignalSpy accepted(&dlg, &fMousePlay::optionsAccepted);
        test::click(dlg.chkAprxQrt);
        test::click(dlg.chkSowKbGuides);
        test::click(ok ? dlg.cmdOK : dlg.cmdCancel);
        const test::Stored written{
            {"approxQrt", "False"}, {"PlayMouseMove", "False"}, {"MKB-PlayHilite", "False"}, {"MKB-Doubling", "True"}};
        EXPECT_EQ(store.stored(), ok ? written : test::Stored{});
        EXPECT_EQ(dlg.result(), ok ? QDialog::Accepted : QDialog::Rejected);
        ASSERT_EQ(accepted.count(), ok ? 1 : 0);
        const HandPlayOptions after = ok ? accepted.at(0).at(0).value<HandPlayOptions>() : dlg.options();
        EXPECT_EQ(after.approxQrt, !ok);
        EXPECT_FALSE(after.playMouseMove);
        EXPECT_EQ(after.playHilite, !ok);
        EXPECT_TRUE(after.doubling);
        EXPECT_EQ(after.showKbGuides, !ok);
    }
}

}  // namespace
}  // namespace tarabix
