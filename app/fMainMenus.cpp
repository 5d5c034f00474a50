// The menus: the option dialogs, the channels, the output device, the start delay, always on
// top, the sheet viewer, help and the about box.
#include "app/fMain.h"

#include "app/AppIdentity.h"
#include "app/HandPlayer.h"
#include "app/SheetPicture.h"
#include "app/fAbout.h"
#include "app/fHelp.h"
#include "app/fChannels.h"
#include "app/fMidiDevs.h"
#include "app/fMousePlay.h"
#include "app/fNotesOpts.h"
#include "app/fSheet.h"
#include "midi/MzfContainer.h"
#include "settings/UserSettings.h"

#include <QAction>
#include <QFile>
#include <QFileInfo>
#include <QPushButton>
#include <QWindow>

namespace tarabix {

void fMain::connectMenus()
{
    connect(mnu_File_Exit, &QAction::triggered, this, &QWidget::close);
    connect(mnu_Opts_Notes, &QAction::triggered, this, &fMain::mnu_Opts_Notes_Click);
    connect(mnu_Opts_MKB, &QAction::triggered, this, &fMain::mnu_Opts_MKB_Click);
    connect(mnu_Opts_Channels, &QAction::triggered, this, &fMain::mnu_Opts_Channels_Click);
    connect(mnu_Opts_Devs, &QAction::triggered, this, [this] {
        auto* dialog = new fMidiDevs(m_deviceHeld, this);
        dialog->setAttribute(Qt::WA_DeleteOnClose);
        connect(dialog, &fMidiDevs::soundFontChosen, this, [this](const QString& path) {
            m_settings->setText(Setting::SoundFontFile, path.toStdString());
        });
        connect(dialog, &fMidiDevs::latencyChosen, this,
                [this](int ms) { m_settings->setInt(Setting::SynthLatencyMS, ms); });
        // The dialog lets the output go while it is up and opens it again as it closes, on the
        // device chosen: that output knows nothing of the piece, which goes on with the programs,
        // controllers and quarter tones it has at this moment, not on a piano.
        connect(dialog, &QDialog::finished, this, [this] {
            if (m_playing && m_player.theMidi())  // as set by every event handed over so far
                m_router.startFrom(m_player.theMidi(), m_positionMs + 1);
        });
        dialog->open();
    });
    for (int i = 0; i < 4; ++i)
        connect(mnu_Opts_Delay_Opt[i], &QAction::triggered, this, [this, i] { m_startDelayMs = i * 1000; });
    connect(mnu_Opts_Ontop, &QAction::toggled, this, [this](bool on) {
        // Through the native window, so the window neither moves nor is re-created.
        if (QWindow* window = windowHandle())
            window->setFlag(Qt::WindowStaysOnTopHint, on);
    });
    connect(mnu_Help_Contents, &QAction::triggered, this, &fMain::showHelp);
    connect(cmdHelp, &QPushButton::clicked, this, &fMain::showHelp);
    connect(mnu_Help_About, &QAction::triggered, this, [this] {
        auto* about = new fAbout(appIdentity(), this);
        about->setAttribute(Qt::WA_DeleteOnClose);
        about->open();
    });
    connect(cmdSheet, &QPushButton::clicked, this, &fMain::cmdSheet_Click);
}

void fMain::mnu_Opts_Notes_Click()
{
    if (!m_display)
        return;
    auto* dialog = new fNotesOpts(m_display->presentation(), m_lookAhead, this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &fNotesOpts::presentationChosen, this, &fMain::showNotesAs);
    connect(dialog, &fNotesOpts::lookAheadChosen, this, &fMain::setLookAhead);
    dialog->open();
}

void fMain::mnu_Opts_MKB_Click()
{
    if (!m_hand)
        return;
    auto* dialog = new fMousePlay(m_hand->options(), *m_settings, this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &fMousePlay::optionsAccepted, m_hand.get(), &HandPlayer::setOptions);
    dialog->open();
}

uint16_t fMain::pieceChannels() const
{
    uint16_t used = 0;
    for (int16_t t = 0; t < m_mf->numOfTracks(); ++t) {
        for (int ch = 0; ch < kMidiChannels; ++ch) {
            if (m_mf->tracks(t)->trkChannels(ch))
                used = static_cast<uint16_t>(used | (1u << ch));
        }
    }
    return used;
}

void fMain::mnu_Opts_Channels_Click()
{
    if (m_channelsDialog) {
        m_channelsDialog->raise();
        m_channelsDialog->activateWindow();
        return;
    }
    ChannelTables tables;
    for (int ch = 0; ch < kMidiChannels; ++ch) {
        tables.enabled[ch] = m_router.channelEnabled(ch);
        tables.shown[ch] = m_router.channelShown(ch);
    }
    m_channelsDialog = new fChannels(tables, pieceChannels(), this);
    m_channelsDialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(m_channelsDialog, &fChannels::channelsChanged, this, [this](const ChannelTables& chosen) {
        bool hidden = false;
        for (int ch = 0; ch < kMidiChannels; ++ch) {
            if (m_router.channelEnabled(ch) && !chosen.enabled[ch])
                m_router.silenceChannel(ch);
            hidden = hidden || (m_router.channelShown(ch) && !chosen.shown[ch]);
            m_router.setChannelEnabled(ch, chosen.enabled[ch]);
            m_router.setChannelShown(ch, chosen.shown[ch]);
        }
        // The marks of a hidden channel cannot be told from the others': the fingerboard
        // starts again from its resting picture and the next notes mark themselves.
        if (hidden)
            redrawFingerboard();
    });
    m_channelsDialog->show();
}

void fMain::showHelp()
{
    const QString page = appIdentity().path({QStringLiteral("help"), QStringLiteral("gereix.htm")});
    if (QFileInfo(page).isFile())
        fHelp::showPage(this, page);
    else
        message(QMessageBox::Warning, QStringLiteral("The help topic is not available."));
}

void fMain::cmdSheet_Click()
{
    if (m_currFile.isEmpty())
        return;
    std::string bytes;
    if (getMzfSheet(QFile::encodeName(m_currFile).toStdString(), bytes) != 0)
        return;
    const QImage sheet = pictureFromBytes(bytes);
    if (sheet.isNull()) {
        message(QMessageBox::Warning, QStringLiteral("The sheet of this piece cannot be shown."));
        return;
    }
    fSheet::showSheet(this, sheet, QFileInfo(m_currFile).fileName());
}

}  // namespace tarabix
