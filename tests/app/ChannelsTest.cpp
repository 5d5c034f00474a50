#include "app/fChannels.h"

#include "DialogTesting.h"

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>

#include <string>
#include <tuple>

namespace tarabix {
namespace {

ChannelTables lastEmitted(const QSignalSpy& spy)
{
    return spy.last().at(0).value<ChannelTables>();
}

// The tables as the dialog's boxes show them.
ChannelTables boxesOf(const fChannels& dlg)
{
    ChannelTables t;
    for (int ch = 0; ch < kMidiChannels; ++ch) {
        t.enabled[ch] = dlg.chkHeard[ch]->isChecked();
        t.shown[ch] = dlg.chkShown[ch]->isChecked();
    }
    return t;
}

ChannelTables sample()
{
    ChannelTables t = allChannelsOn();
    t.enabled[3] = false;
    t.shown[9] = false;
    return t;
}

TEST(ChannelsTest, ShowsTheTablesAndTheUsedChannelsWithoutASignal)
{
    fChannels dlg(sample(), 0x8201);  // channels 1, 10 and 16
    EXPECT_FALSE(dlg.isModal());
    EXPECT_EQ(boxesOf(dlg), sample());
    for (int ch = 0; ch < kMidiChannels; ++ch)
        EXPECT_EQ(dlg.lblChannel[ch]->font().bold(), ch == 0 || ch == 9 || ch == 15) << ch;

    QSignalSpy changed(&dlg, &fChannels::channelsChanged);
    dlg.setTables(allChannelsOn());
    dlg.setUsedChannels(0x0002);
    EXPECT_EQ(changed.count(), 0);
    EXPECT_EQ(boxesOf(dlg), allChannelsOn());
    EXPECT_EQ(dlg.tables(), allChannelsOn());
    EXPECT_TRUE(dlg.lblChannel[1]->font().bold());
    EXPECT_FALSE(dlg.lblChannel[15]->font().bold());
}

TEST(ChannelsTest, EachBoxChangesItsOwnChannelAtOnce)
{
    fChannels dlg(sample(), 0);
    dlg.show();
    QSignalSpy changed(&dlg, &fChannels::channelsChanged);
    ChannelTables expected = sample();
    for (int ch = 0; ch < kMidiChannels; ++ch) {
        for (bool heard : {true, false}) {
            SCOPED_TRACE(testing::Message() << (heard ? "heard " : "shown ") << ch);
            test::click(heard ? dlg.chkHeard[ch] : dlg.chkShown[ch]);
            auto& column = heard ? expected.enabled : expected.shown;
            column[ch] = !column[ch];
            EXPECT_EQ(lastEmitted(changed), expected);
        }
    }
    EXPECT_EQ(changed.count(), 2 * kMidiChannels);
    EXPECT_EQ(dlg.tables(), expected);
}

TEST(ChannelsTest, WholeColumnButtonsSetOneColumnWithOneSignal)
{
    fChannels dlg(sample(), 0);
    dlg.show();
    QSignalSpy changed(&dlg, &fChannels::channelsChanged);
    ChannelTables expected = sample();
    const auto heard = &ChannelTables::enabled;
    const auto shown = &ChannelTables::shown;
    // Button, the column it sets, to what, and the signals sent so far: a button that changes
    // nothing tells nothing.
    const std::tuple<QPushButton*, decltype(heard), bool, int> steps[] = {
        {dlg.cmdHearNone, heard, false, 1}, {dlg.cmdHearNone, heard, false, 1}, {dlg.cmdShowAll, shown, true, 2},
        {dlg.cmdShowNone, shown, false, 3}, {dlg.cmdHearAll, heard, true, 4}};
    for (const auto& [button, column, on, signalsSoFar] : steps) {
        SCOPED_TRACE(button->text().toStdString() + " with signals so far " + std::to_string(signalsSoFar));
        test::click(button);
        (expected.*column).fill(on);
        ASSERT_EQ(changed.count(), signalsSoFar);
        EXPECT_EQ(lastEmitted(changed), expected);
        EXPECT_EQ(boxesOf(dlg), expected);
    }
}

}  // namespace
}  // namespace tarabix
