#include "app/fAbout.h"

#include "Clicks.h"

#include "app/AppIdentity.h"

#include <gtest/gtest.h>

#include <QLabel>
#include <QPushButton>

namespace tarabix {
namespace {

TEST(AboutTest, ShowsTheIdentityAndTheToolsAndClosesOnOk)
{
    const AppIdentity identity;
    fAbout dlg(identity);
    dlg.show();
    EXPECT_EQ(dlg.windowTitle(), "About Tarabix 1.4");
    EXPECT_EQ(dlg.lblTitle->text(), "Tarabix 1.4");
    EXPECT_TRUE(dlg.lblVersion->text().contains("1.4"));
    EXPECT_TRUE(dlg.lblVersion->text().contains("03/03/2006"));
    for (const char* tool : {"Qt", "FluidSynth", "RtMidi"})
        EXPECT_TRUE(dlg.lblCredits->text().contains(QString::fromLatin1(tool))) << tool;
    test::click(dlg.cmdOK);
    EXPECT_FALSE(dlg.isVisible());
    EXPECT_EQ(dlg.result(), QDialog::Accepted);
}

}  // namespace
}  // namespace tarabix
