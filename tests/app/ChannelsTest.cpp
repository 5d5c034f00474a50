#include "app/fChannels.h"

#include "DialogTesting.h"

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>

namespace tarabix {
namespace {

// Each box changes its own channel at once; a whole-column button sets one column with one signal,
// and tells nothing when it changes nothing. The piece's channels stand out.
TEST(ChannelsTest, BoxesAndColumnButtonsChangeTheirChannelsAtOnce)
{
    ChannelTables expected = allChannelsOn();
    expected.enabled[3] = false;
    expected.shown[9] = false;
    fChannels dlg(expected, 0x8201);  // channels 1, 10 and 16 used
    dlg.show();
    for (int ch = 0; ch < kMidiChannels; ++ch) {
        SCOPED_TRACE(ch);
        EXPECT_EQ(dlg.lblChannel[ch]->font().bold(), ch == 0 || ch == 9 || ch == 15);
        EXPECT_EQ(dlg.chkHeard[ch]->isChecked(), expected.enabled[ch]);
        EXPECT_EQ(dlg.chkShown[ch]->isChecked(), expected.shown[ch]);
    }
    QSignalSpy changed(&dlg, &fChannels::channelsChanged);
    const auto last = [&changed] { return changed.last().at(0).value<ChannelTables>(); };
    for (int ch : {0, 3, 9, 15}) {
        SCOPED_TRACE(ch);
        test::click(dlg.chkHeard[ch]);
        expected.enabled[ch] = !expected.enabled[ch];
        EXPECT_EQ(last(), expected);
        test::click(dlg.chkShown[ch]);
        expected.shown[ch] = !expected.shown[ch];
        EXPECT_EQ(last(), expected);
    }
    const std::tuple<QPushButton*, std::array<bool, kMidiChannels> ChannelTables::*, bool, int> steps[] = {
        {dlg.cmdHearNone, &ChannelTables::enabled, false, 9}, {dlg.cmdHearNone, &ChannelTables::enabled, false, 9},
        {dlg.cmdShowAll, &ChannelTables::shown, true, 10}, {dlg.cmdHearAll, &ChannelTables::enabled, true, 11}};
    for (const auto& [button, column, on, signalsSoFar] : steps) {
        SCOPED_TRACE(signalsSoFar);
        test::click(button);
        (expected.*column).fill(on);
        ASSERT_EQ(changed.count(), signalsSoFar);
        EXPECT_EQ(last(), expected);
        EXPECT_EQ(dlg.tables(), expected);
    }
}

}  // namespace
}  // namespace tarabix
