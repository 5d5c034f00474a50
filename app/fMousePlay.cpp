#include "app/fMousePlay.h"

#include "app/DialogButtons.h"

#include "settings/UserSettings.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

namespace tarabix {

fMousePlay::fMousePlay(const HandPlayOptions& options, UserSettings& settings, QWidget* parent)
    : QDialog(parent), m_options(options), m_settings(settings)
{
    buildControls();
    chkAprxQrt->setChecked(m_options.approxQrt);
    chkPlayMove->setChecked(m_options.playMouseMove);
    chkHiliteQrt->setChecked(m_options.playHilite);
    chkDblSound->setChecked(m_options.doubling);
    chkSowKbGuides->setChecked(m_options.showKbGuides);
    applyDependencies();
    connect(chkAprxQrt, &QCheckBox::toggled, this, &fMousePlay::applyDependencies);
    connect(chkPlayMove, &QCheckBox::toggled, this, &fMousePlay::applyDependencies);
}

void fMousePlay::buildControls()
{
    setWindowTitle(tr("Mouse and Keyboard Play"));
    setWindowModality(Qt::WindowModal);
    auto* layout = new QVBoxLayout(this);
    chkAprxQrt = new QCheckBox(tr("Take mouse notes to the nearest quarter tone"), this);
    chkPlayMove = new QCheckBox(tr("Play while the mouse slides along a string"), this);
    chkHiliteQrt = new QCheckBox(tr("Mark played notes on the Oud"), this);
    chkDblSound = new QCheckBox(tr("Strike notes on double strings twice"), this);
    chkSowKbGuides = new QCheckBox(tr("Show the computer keyboard guides on the Oud"), this);
    for (QCheckBox* box : {chkAprxQrt, chkPlayMove, chkHiliteQrt, chkDblSound, chkSowKbGuides})
        layout->addWidget(box);

    addOkCancelRow(this, layout, cmdOK, cmdCancel);

    connect(cmdOK, &QPushButton::clicked, this, &fMousePlay::cmdOK_Click);
}

// A mark can only sit at a quarter-tone place, and a sliding mouse re-strikes notes too fast to
// mark or double them: highlight needs approximation and no sliding, doubling needs no sliding.
// A box that cannot apply is cleared, so what the dialog shows is what OK stores.
void fMousePlay::applyDependencies()
{
    const bool sliding = chkPlayMove->isChecked();
    const bool hiliteAllowed = chkAprxQrt->isChecked() && !sliding;
    if (!hiliteAllowed)
        chkHiliteQrt->setChecked(false);
    chkHiliteQrt->setEnabled(hiliteAllowed);
    if (sliding)
        chkDblSound->setChecked(false);
    chkDblSound->setEnabled(!sliding);
}

void fMousePlay::cmdOK_Click()
{
    m_options.approxQrt = chkAprxQrt->isChecked();
    m_options.playMouseMove = chkPlayMove->isChecked();
    m_options.playHilite = chkHiliteQrt->isChecked();
    m_options.doubling = chkDblSound->isChecked();
    m_options.showKbGuides = chkSowKbGuides->isChecked();
    m_settings.setBool(Setting::ApproxQrt, m_options.approxQrt);
    m_settings.setBool(Setting::PlayMouseMove, m_options.playMouseMove);
    m_settings.setBool(Setting::MkbPlayHilite, m_options.playHilite);
    m_settings.setBool(Setting::MkbDoubling, m_options.doubling);
    emit optionsAccepted(m_options);
    accept();
}

}  // namespace tarabix
