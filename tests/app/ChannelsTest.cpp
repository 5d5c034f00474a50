#include "app/fChannels.h"

#include "Clicks.h"

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>

namespace tarabix {
namespace {

ChannelTables emittedTables(const QSignalSpy& spy, int i)
{
    return spy.at(i).at(0).value<ChannelTables>();
}

ChannelTables sample()
{
    ChannelTables t = allChannelsOn();
    t.enabled[3] = false;
    t.shown[9] = false;
    return t;
}

TEST(ChannelsTest, OpensWithTheTablesAndMarksTheUsedChannels)
{
    const uint16_t used = 0x8201;  // channels 1, 10 and 16
    fChannels dlg(sample(), used);
    for (int ch = 0; ch < kMidiChannels; ++ch) {
        SCOPED_TRACE(ch);
        EXPECT_EQ(dlg.chkHeard[ch]->isChecked(), ch != 3);
        EXPECT_EQ(dlg.chkShown[ch]->isChecked(), ch != 9);
        EXPECT_EQ(dlg.lblChannel[ch]->font().bold(), ch == 0 || ch == 9 || ch == 15);
    }
    dlg.setUsedChannels(0x0002);
    EXPECT_TRUE(dlg.lblChannel[1]->font().bold());
    EXPECT_FALSE(dlg.lblChannel[15]->font().bold());
}

TEST(ChannelsTest, EachBoxChangesItsOwnChannelAtOnce)
{
    struct Case {
        const char* name;
        bool heardColumn;
        int ch;
    };
    const Case cases[] = {{"mute channel 1", true, 0}, {"hear channel 4 again", true, 3},
                          {"hide channel 16", false, 15}, {"show channel 10 again", false, 9}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        fChannels dlg(sample(), 0);
        dlg.show();
        QSignalSpy changed(&dlg, &fChannels::channelsChanged);
        test::click(c.heardColumn ? dlg.chkHeard[c.ch] : dlg.chkShown[c.ch]);

        ChannelTables expected = sample();
        auto& column = c.heardColumn ? expected.enabled : expected.shown;
        column[c.ch] = !column[c.ch];
        ASSERT_EQ(changed.count(), 1);
        EXPECT_EQ(emittedTables(changed, 0), expected);
        EXPECT_EQ(dlg.tables(), expected);
    }
}

TEST(ChannelsTest, AllOnAndAllOffSetOneColumnWithOneSignal)
{
    fChannels dlg(sample(), 0);
    dlg.show();
    QSignalSpy changed(&dlg, &fChannels::channelsChanged);

    test::click(dlg.cmdHearNone);
    ASSERT_EQ(changed.count(), 1);
    ChannelTables expected = sample();
    expected.enabled.fill(false);
    EXPECT_EQ(emittedTables(changed, 0), expected);
    for (int ch = 0; ch < kMidiChannels; ++ch)
        EXPECT_FALSE(dlg.chkHeard[ch]->isChecked()) << ch;

    test::click(dlg.cmdHearNone);
    EXPECT_EQ(changed.count(), 1) << "nothing changed, nothing to tell";

    test::click(dlg.cmdShowAll);
    ASSERT_EQ(changed.count(), 2);
    expected.shown.fill(true);
    EXPECT_EQ(emittedTables(changed, 1), expected);

    test::click(dlg.cmdShowNone);
    test::click(dlg.cmdHearAll);
    ASSERT_EQ(changed.count(), 4);
    expected.enabled.fill(true);
    expected.shown.fill(false);
    EXPECT_EQ(emittedTables(changed, 3), expected);
    EXPECT_TRUE(dlg.chkHeard[7]->isChecked());
    EXPECT_FALSE(dlg.chkShown[7]->isChecked());
}

TEST(ChannelsTest, TablesSetByTheWindowAreShownWithoutASignal)
{
    fChannels dlg(allChannelsOn(), 0);
    dlg.show();
    EXPECT_FALSE(dlg.isModal());
    QSignalSpy changed(&dlg, &fChannels::channelsChanged);
    dlg.setTables(sample());
    EXPECT_EQ(changed.count(), 0);
    EXPECT_FALSE(dlg.chkHeard[3]->isChecked());
    EXPECT_FALSE(dlg.chkShown[9]->isChecked());

    test::click(dlg.chkHeard[3]);
    ASSERT_EQ(changed.count(), 1);
    EXPECT_EQ(emittedTables(changed, 0).enabled, allChannelsOn().enabled);
    EXPECT_FALSE(emittedTables(changed, 0).shown[9]);
}

}  // namespace
}  // namespace tarabix
