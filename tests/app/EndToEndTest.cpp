// The program as a learner uses it, from its own folder with its start-up sample and help: play a
// few seconds, stop, change the maqam and its tonic, read the help, close.
#include "MainWindowFixture.h"

#include "app/fHelp.h"

#include <QTextBrowser>

#include <algorithm>

namespace tarabix::test {
namespace {

class EndToEndTest : public MainWindowTest {
protected:
    EndToEndTest() { m_useRealProgramFolder = true; }
};

TEST_F(EndToEndTest, PlayStopChangeTheMaqamAndClose)
{
    fMainProbe& w = start();
    ASSERT_TRUE(m_shown.empty());
    ASSERT_EQ(w.lblFile->text(), QStringLiteral("[ zoroony.mzf ]"));
    EXPECT_TRUE(w.cmdSheet->isEnabled());  // an MZF with its sheet
    w.sldSpeedR->setValue(2);  // twice as fast: more of the piece in less time
    bool markedWhilePlaying = false;
    after(1500, [&] {
        markedWhilePlaying = !boardAtRest();
        w.cmdStop->click();
    });
    w.cmdPlay->click();  // returns at the stop
    EXPECT_TRUE(markedWhilePlaying);
    EXPECT_GT(noteMessages(*m_recording).size(), 6u);
    EXPECT_EQ(w.sldPosition->value(), 0);

    const QImage before = w.display()->picUdClone();
    w.cmbMaqams->setCurrentIndex(w.cmbMaqams->findText(QStringLiteral("Hijaz")));
    EXPECT_NE(w.display()->picUdClone(), before);  // the resting scale is Hijaz's now
    ASSERT_TRUE(w.cmbMaqamStarts->isEnabled());
    w.cmbMaqamStarts->setCurrentIndex(2);
    EXPECT_EQ(w.maqams().curMaqam().ipc[0], 2);  // every degree moved up to D

    m_recording->clear();
    w.close();
    const std::vector<uint32_t> words = m_recording->words();
    EXPECT_NE(std::find(words.begin(), words.end(), 0x7BB0u), words.end());  // all notes off, channel 0
}

TEST_F(EndToEndTest, F1OpensTheHelpPageInAWindowOfTheProgramWithItsPictures)
{
    fMainProbe& w = start();
    QTest::keyClick(&w, Qt::Key_F1);
    fHelp* help = fHelp::instance();
    ASSERT_NE(help, nullptr);
    EXPECT_TRUE(help->isVisible());
    EXPECT_TRUE(help->txtPage->toPlainText().contains(QStringLiteral("Maqams and quarter tones")));
    const QUrl picture = help->txtPage->source().resolved(QUrl(QStringLiteral("../oud.png")));
    EXPECT_FALSE(help->txtPage->loadResource(QTextDocument::ImageResource, picture).isNull());
    w.mnu_Help_Contents->trigger();  // asked again, the same window comes to the front
    EXPECT_EQ(fHelp::instance(), help);
}

}  // namespace
}  // namespace tarabix::test
