#include "app/fAbout.h"

#include "app/AppIdentity.h"

#include <QFont>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>
#include <QtGlobal>

namespace tarabix {

fAbout::fAbout(const AppIdentity& identity, QWidget* parent)
    : QDialog(parent)
{
    setWindowTitle(tr("About %1").arg(identity.title));
    setMinimumWidth(420);
    auto* layout = new QVBoxLayout(this);

    lblTitle = new QLabel(identity.title, this);
    QFont titleFont = lblTitle->font();
    titleFont.setBold(true);
    titleFont.setPointSizeF(titleFont.pointSizeF() * 1.6);
    lblTitle->setFont(titleFont);
    layout->addWidget(lblTitle);

    lblVersion = new QLabel(tr("Version %1, %2").arg(identity.version, identity.releaseDate), this);
    layout->addWidget(lblVersion);

    lblPurpose = new QLabel(tr("Learn and practise the oud: play MIDI and MZF pieces at your own speed and "
                               "see every note on the oud's fingerboard, with Arabic maqams and quarter "
                               "tones, or play notes yourself with the mouse and the computer keyboard."),
                            this);
    lblPurpose->setWordWrap(true);
    layout->addWidget(lblPurpose);

    lblCredits = new QLabel(tr("Built with Qt %1 for the windows, FluidSynth for the built-in synthesizer "
                               "and RtMidi for the system's MIDI ports.")
                                .arg(QString::fromLatin1(qVersion())),
                            this);
    lblCredits->setWordWrap(true);
    layout->addWidget(lblCredits);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    cmdOK = new QPushButton(tr("OK"), this);
    cmdOK->setDefault(true);
    buttons->addWidget(cmdOK);
    layout->addLayout(buttons);
    connect(cmdOK, &QPushButton::clicked, this, &QDialog::accept);
}

}  // namespace tarabix
