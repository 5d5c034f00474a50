#include "app/fAbout.h"

#include "DialogTesting.h"

#include "app/AppIdentity.h"

#include "TarabixVersion.h"

#include <gtest/gtest.h>

#include <QLabel>
#include <QPushButton>

namespace tarabix {
namespace {

TEST(AboutTest, ShowsTheIdentityAndTheToolsAndClosesOnOk)
{
    fAbout dlg{AppIdentity()};
    dlg.show();
    EXPECT_EQ(dlg.windowTitle(), "About Tarabix " TARABIX_VERSION);
    EXPECT_EQ(dlg.lblTitle->text(), "Tarabix " TARABIX_VERSION);
    for (const char* text : {TARABIX_VERSION, "03/03/2006"})
        EXPECT_TRUE(dlg.lblVersion->text().contains(QLatin1String(text))) << text;
    for (const char* tool : {"Qt", "FluidSynth", "RtMidi"})
        EXPECT_TRUE(dlg.lblCredits->text().contains(QLatin1String(tool))) << tool;
    test::click(dlg.cmdOK);
    EXPECT_FALSE(dlg.isVisible());
    EXPECT_EQ(dlg.result(), QDialog::Accepted);
}

}  // namespace
}  // namespace tarabix
