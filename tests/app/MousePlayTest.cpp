#include "app/fMousePlay.h"

#include "DialogTesting.h"
#include "settings/UserSettings.h"

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QPushButton>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <string>
#include <vector>

namespace tarabix {
namespace {

using Box = QCheckBox* fMousePlay::*;
const Box kAprx = &fMousePlay::chkAprxQrt;
const Box kMove = &fMousePlay::chkPlayMove;

// Approximation, highlight, doubling and guides on, sliding off.
const HandPlayOptions kUsual{true, false, true, true, true};

class MousePlayTest : public ::testing::Test {
protected:
    QTemporaryDir m_dir;
    QString m_file = m_dir.filePath(QStringLiteral("Tarabix.conf"));
    UserSettings m_settings{std::make_unique<QSettings>(m_file, QSettings::IniFormat)};
};

std::string stateOf(const QCheckBox* box)
{
    return std::string(box->isChecked() ? "on" : "off") + (box->isEnabled() ? "" : " disabled");
}

// Highlighting needs the approximation, and sliding rules out highlight and doubling.
TEST_F(MousePlayTest, ClicksKeepHighlightAndDoublingConsistent)
{
    const std::tuple<const char*, HandPlayOptions, std::vector<Box>, const char*, const char*> cases[] = {
        {"approximation off clears highlight only", kUsual, {kAprx}, "off disabled", "on"},
        {"sliding clears highlight and doubling", kUsual, {kMove}, "off disabled", "off disabled"},
        {"approximation on while sliding keeps highlight disabled", kUsual, {kMove, kAprx, kAprx}, "off disabled",
         "off disabled"},
        {"sliding off enables both again", kUsual, {kMove, kMove}, "off", "off"},
        {"a stored sliding choice opens with both cleared", {true, true, true, true, true}, {}, "off disabled",
         "off disabled"},
    };
    for (const auto& [name, start, clicks, hilite, dbl] : cases) {
        SCOPED_TRACE(name);
        fMousePlay dlg(start, m_settings);
        dlg.show();
        for (Box box : clicks)
            test::click(dlg.*box);
        EXPECT_EQ(stateOf(dlg.chkHiliteQrt), hilite);
        EXPECT_EQ(stateOf(dlg.chkDblSound), dbl);
    }
}

// OK stores four choices (the guides are not kept between runs) and hands all five on.
TEST_F(MousePlayTest, OkStoresAndReturnsTheChoicesCancelNothing)
{
    for (bool ok : {false, true}) {
        SCOPED_TRACE(ok ? "OK" : "Cancel");
        fMousePlay dlg(kUsual, m_settings);
        dlg.show();
        QSignalSpy accepted(&dlg, &fMousePlay::optionsAccepted);
        test::click(dlg.chkAprxQrt);
        test::click(dlg.chkSowKbGuides);
        test::click(ok ? dlg.cmdOK : dlg.cmdCancel);
        QSettings stored(m_file, QSettings::IniFormat);
        stored.beginGroup(QStringLiteral("options"));
        EXPECT_EQ(stored.childKeys().size(), ok ? 4 : 0);
        EXPECT_EQ(stored.value(QStringLiteral("approxQrt")).toString(), ok ? "False" : "");
        EXPECT_EQ(stored.value(QStringLiteral("MKB-Doubling")).toString(), ok ? "True" : "");
        ASSERT_EQ(accepted.count(), ok ? 1 : 0);
        if (ok) {
            const auto after = accepted.at(0).at(0).value<HandPlayOptions>();
            EXPECT_FALSE(after.approxQrt || after.playMouseMove || after.playHilite || after.showKbGuides);
            EXPECT_TRUE(after.doubling);
        }
    }
}

}  // namespace
}  // namespace tarabix
