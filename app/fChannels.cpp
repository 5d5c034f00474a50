#include "app/fChannels.h"

#include <QCheckBox>
#include <QFont>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

namespace tarabix {
namespace {

// Channel 10 carries the drum kit in General MIDI: worth naming, since muting it is a common wish.
constexpr int kDrumChannel = 9;

}  // namespace

fChannels::fChannels(const ChannelTables& tables, uint16_t usedMask, QWidget* parent)
    : QDialog(parent), m_tables(tables)
{
    buildControls();
    showTables();
    setUsedChannels(usedMask);
}

void fChannels::buildControls()
{
    setWindowTitle(tr("Channels"));
    setModal(false);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel(tr("Channels the piece uses are in bold."), this));

    auto* grid = new QGridLayout;
    grid->addWidget(new QLabel(tr("Channel"), this), 0, 0);
    grid->addWidget(new QLabel(tr("Heard"), this), 0, 1, Qt::AlignHCenter);
    grid->addWidget(new QLabel(tr("Shown on the Oud"), this), 0, 2, Qt::AlignHCenter);
    for (int ch = 0; ch < kMidiChannels; ++ch) {
        QString caption = QString::number(ch + 1);
        if (ch == kDrumChannel)
            caption += tr(" (drums)");
        lblChannel[ch] = new QLabel(caption, this);
        chkHeard[ch] = new QCheckBox(this);
        chkShown[ch] = new QCheckBox(this);
        grid->addWidget(lblChannel[ch], ch + 1, 0);
        grid->addWidget(chkHeard[ch], ch + 1, 1, Qt::AlignHCenter);
        grid->addWidget(chkShown[ch], ch + 1, 2, Qt::AlignHCenter);
        connect(chkHeard[ch], &QCheckBox::toggled, this, &fChannels::readBoxes);
        connect(chkShown[ch], &QCheckBox::toggled, this, &fChannels::readBoxes);
    }
    layout->addLayout(grid);

    auto* bulk = new QGridLayout;
    cmdHearAll = new QPushButton(tr("Hear all"), this);
    cmdHearNone = new QPushButton(tr("Mute all"), this);
    cmdShowAll = new QPushButton(tr("Show all"), this);
    cmdShowNone = new QPushButton(tr("Hide all"), this);
    bulk->addWidget(cmdHearAll, 0, 0);
    bulk->addWidget(cmdHearNone, 0, 1);
    bulk->addWidget(cmdShowAll, 1, 0);
    bulk->addWidget(cmdShowNone, 1, 1);
    layout->addLayout(bulk);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    cmdClose = new QPushButton(tr("Close"), this);
    buttons->addWidget(cmdClose);
    layout->addLayout(buttons);

    connect(cmdHearAll, &QPushButton::clicked, this, [this] { setColumn(&ChannelTables::enabled, true); });
    connect(cmdHearNone, &QPushButton::clicked, this, [this] { setColumn(&ChannelTables::enabled, false); });
    connect(cmdShowAll, &QPushButton::clicked, this, [this] { setColumn(&ChannelTables::shown, true); });
    connect(cmdShowNone, &QPushButton::clicked, this, [this] { setColumn(&ChannelTables::shown, false); });
    connect(cmdClose, &QPushButton::clicked, this, &QDialog::close);
}

void fChannels::setTables(const ChannelTables& tables)
{
    m_tables = tables;
    showTables();
}

void fChannels::setUsedChannels(uint16_t usedMask)
{
    for (int ch = 0; ch < kMidiChannels; ++ch) {
        QFont font = lblChannel[ch]->font();
        font.setBold((usedMask >> ch) & 1u);
        lblChannel[ch]->setFont(font);
    }
}

void fChannels::showTables()
{
    for (int ch = 0; ch < kMidiChannels; ++ch) {
        const QSignalBlocker heard(chkHeard[ch]);
        const QSignalBlocker shown(chkShown[ch]);
        chkHeard[ch]->setChecked(m_tables.enabled[ch]);
        chkShown[ch]->setChecked(m_tables.shown[ch]);
    }
}

void fChannels::readBoxes()
{
    ChannelTables now = m_tables;
    for (int ch = 0; ch < kMidiChannels; ++ch) {
        now.enabled[ch] = chkHeard[ch]->isChecked();
        now.shown[ch] = chkShown[ch]->isChecked();
    }
    if (now == m_tables)
        return;
    m_tables = now;
    emit channelsChanged(m_tables);
}

// One change for the whole column, so the window stops the muted notes once, not sixteen times.
void fChannels::setColumn(std::array<bool, kMidiChannels> ChannelTables::*column, bool on)
{
    ChannelTables now = m_tables;
    (now.*column).fill(on);
    if (now == m_tables)
        return;
    m_tables = now;
    showTables();
    emit channelsChanged(m_tables);
}

}  // namespace tarabix
