// The main window's controls and menus, laid out for a learner: the file at the top, the
// fingerboard filling the middle, the transport under it, the instrument's choices at the bottom.
#include "app/fMain.h"

#include "app/CountdownOverlay.h"
#include "app/PositionBar.h"
#include "app/PracticePanel.h"
#include "app/SpeedPercentBox.h"

#include <QActionGroup>
#include <QButtonGroup>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenuBar>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <QSpinBox>
#include <QVBoxLayout>

namespace tarabix {
namespace {

// The colour of the Play button and the window's link label (RGB 0xCE, 0xDC, 0x08).
const QColor kPlayColour(0xCE, 0xDC, 0x08);

// The drop-down lists of the oud's choices in the wood colours of the fingerboard: white text on
// the list colour, the chosen row in the highlight colour, the closed box in the common colour.
void colourList(QComboBox* list, QColor listColour, QColor highlight)
{
    const QColor common(0xF0, 0xDE, 0xC8);
    // combobox-popup: 0 makes the list a scrolled drop-down that keeps to maxVisibleItems, where
    // some styles would otherwise open every row at once.
    list->setStyleSheet(QStringLiteral("QComboBox { background: %1; combobox-popup: 0; }"
                                       "QComboBox QAbstractItemView { background: %2; color: white;"
                                       " selection-background-color: %3; selection-color: black; }")
                            .arg(common.name(), listColour.name(), highlight.name()));
}

QPushButton* toggleButton(const QString& text, QWidget* parent)
{
    auto* b = new QPushButton(text, parent);
    b->setCheckable(true);
    return b;
}

QSlider* horizontalSlider(int min, int max, int value, QWidget* parent)
{
    auto* s = new QSlider(Qt::Horizontal, parent);
    s->setRange(min, max);
    s->setValue(value);
    return s;
}

QSpinBox* spinner(int min, int max, QWidget* parent)
{
    auto* s = new QSpinBox(parent);
    s->setRange(min, max);
    s->setValue(0);
    return s;
}

}  // namespace

void fMain::buildControls()
{
    auto* central = new QWidget(this);
    auto* root = new QVBoxLayout(central);

    auto* fileRow = new QHBoxLayout;
    cmdOpen = new QPushButton(tr("&Open..."), central);
    cmdSheet = new QPushButton(tr("&Sheet"), central);
    cmdSheet->setEnabled(false);
    lblFile = new QLabel(tr("[No file is opened]"), central);
    lblFile->setTextInteractionFlags(Qt::TextSelectableByMouse);
    cmdHelp = new QPushButton(tr("&Help"), central);
    fileRow->addWidget(cmdOpen);
    fileRow->addWidget(cmdSheet);
    fileRow->addWidget(lblFile, 1);
    fileRow->addWidget(cmdHelp);
    root->addLayout(fileRow);

    auto* boardRow = new QHBoxLayout;
    lblRangeLow = new QLabel(QStringLiteral("\u25C0"), central);
    lblRangeHigh = new QLabel(QStringLiteral("\u25B6"), central);
    lblRangeLow->setToolTip(tr("The note is below the oud's range"));
    lblRangeHigh->setToolTip(tr("The note is above the oud's range"));
    for (QLabel* l : {lblRangeLow, lblRangeHigh}) {
        l->setStyleSheet(QStringLiteral("color: rgb(192,0,0); font-size: 20px;"));
        // The arrows come and go with the notes; their room stays, so the fingerboard never moves.
        QSizePolicy policy = l->sizePolicy();
        policy.setRetainSizeWhenHidden(true);
        l->setSizePolicy(policy);
        l->setVisible(false);
    }
    fingerboardHost = new QWidget(central);
    fingerboardHost->setMinimumSize(372, 94);
    fingerboardHost->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    fingerboardHost->setLayout(new QVBoxLayout);
    fingerboardHost->layout()->setContentsMargins(0, 0, 0, 0);
    m_countdown = new CountdownOverlay(fingerboardHost);
    boardRow->addWidget(lblRangeLow);
    boardRow->addWidget(fingerboardHost, 1);
    boardRow->addWidget(lblRangeHigh);
    root->addLayout(boardRow, 1);

    auto* transport = new QHBoxLayout;
    cmdPlay = toggleButton(tr("&Play"), central);
    QPalette playPalette = cmdPlay->palette();
    playPalette.setColor(QPalette::Button, kPlayColour);
    cmdPlay->setPalette(playPalette);
    cmdPause = toggleButton(tr("P&ause"), central);
    cmdStop = new QPushButton(tr("S&top"), central);
    sldPosition = new PositionBar(central);
    sldPosition->setRange(0, 0);
    lblPieceTime = new QLabel(QStringLiteral("000:00"), central);
    lblPieceLength = new QLabel(QStringLiteral("000:00"), central);
    transport->addWidget(cmdPlay);
    transport->addWidget(cmdPause);
    transport->addWidget(cmdStop);
    transport->addWidget(lblPieceTime);
    transport->addWidget(sldPosition, 1);
    transport->addWidget(lblPieceLength);
    root->addLayout(transport);
    m_practicePanel = new PracticePanel(central);
    root->addWidget(m_practicePanel);

    auto* controls = new QGridLayout;
    // Speed in half-octave steps of tempo: 2^(value/2), from a quarter to twice normal, the range
    // of the percent box beside it, so the two always show the same speed.
    sldSpeedR = horizontalSlider(-4, 2, 0, central);
    sldSpeedR->setPageStep(1);
    sldSpeedR->setTickPosition(QSlider::TicksBelow);
    udSpeedPercent = new SpeedPercentBox(central);
    sldVolume = horizontalSlider(0, 127, PieceRouter::kDefaultVolume, central);
    udMidiOctShift = spinner(-3, 3, central);
    lblMidiOctShift = new QLabel(QStringLiteral("+0 Octave"), central);
    controls->addWidget(new QLabel(tr("Speed"), central), 0, 0);
    controls->addWidget(sldSpeedR, 0, 1);
    controls->addWidget(udSpeedPercent, 0, 2);
    controls->addWidget(new QLabel(tr("Volume"), central), 0, 3);
    controls->addWidget(sldVolume, 0, 4);
    controls->addWidget(new QLabel(tr("Piece octave"), central), 0, 5);
    controls->addWidget(udMidiOctShift, 0, 6);
    controls->addWidget(lblMidiOctShift, 0, 7);

    cmbTuning = new QComboBox(central);
    udTuneOctShift = spinner(-2, 2, central);
    lblTuneOctShift = new QLabel(QStringLiteral("+0 Octave"), central);
    cmbOrient = new QComboBox(central);
    cmbOrient->addItems({QStringLiteral("Right-handed :: Player view"), QStringLiteral("Right-handed :: Mirror view"),
                         QStringLiteral("Left-handed :: Player view"), QStringLiteral("Left-handed :: Mirror view")});
    cmbOrient->setToolTip(QStringLiteral("Select Oud Orientation"));
    controls->addWidget(new QLabel(tr("Tuning"), central), 1, 0);
    controls->addWidget(cmbTuning, 1, 1, 1, 2);
    controls->addWidget(new QLabel(tr("Tuning octave"), central), 1, 3);
    controls->addWidget(udTuneOctShift, 1, 4);
    controls->addWidget(lblTuneOctShift, 1, 5);
    controls->addWidget(new QLabel(tr("View"), central), 1, 6);
    controls->addWidget(cmbOrient, 1, 7);

    cmbMaqams = new QComboBox(central);
    cmbMaqams->setMaxVisibleItems(22);
    cmbMaqamStarts = new QComboBox(central);
    cmbMaqamStarts->setMaxVisibleItems(12);
    cmbMaqamStarts->setEnabled(false);
    auto* names = new QWidget(central);
    auto* namesLayout = new QHBoxLayout(names);
    namesLayout->setContentsMargins(0, 0, 0, 0);
    optNNames = new QButtonGroup(this);
    const QString nameCaptions[] = {tr("C D E"), tr("Do Re Mi")};
    for (int i = 0; i < 2; ++i) {
        auto* opt = new QRadioButton(nameCaptions[i], names);
        optNNames->addButton(opt, i);
        namesLayout->addWidget(opt);
    }
    // Only its arrows count: up moves the key rows one string up, down one string down.
    udKbDownShift = spinner(-1, 1, central);
    udKbDownShift->setButtonSymbols(QAbstractSpinBox::UpDownArrows);
    udKbDownShift->setFixedWidth(udKbDownShift->sizeHint().height() + 16);
    udKbDownShift->setSpecialValueText(QStringLiteral(" "));
    udKbDownShift->setToolTip(tr("Move the keyboard rows across the strings"));
    controls->addWidget(new QLabel(tr("Maqam"), central), 2, 0);
    controls->addWidget(cmbMaqams, 2, 1, 1, 2);
    controls->addWidget(new QLabel(tr("Tonic"), central), 2, 3);
    controls->addWidget(cmbMaqamStarts, 2, 4);
    controls->addWidget(names, 2, 5);
    controls->addWidget(new QLabel(tr("Keyboard strings"), central), 2, 6);
    controls->addWidget(udKbDownShift, 2, 7);
    root->addLayout(controls);

    const QColor brown(0x83, 0x3C, 0x11);
    colourList(cmbMaqams, brown, QColor(0xDD, 0xBD, 0xA5));
    colourList(cmbMaqamStarts, QColor(0x77, 0x51, 0x36), QColor(0xDE, 0xB8, 0x87));
    colourList(cmbTuning, brown, QColor(0xDE, 0xB8, 0x87));
    colourList(cmbOrient, brown, QColor(0xDE, 0xB8, 0x87));

    setCentralWidget(central);
}

void fMain::buildMenus()
{
    QMenu* file = menuBar()->addMenu(tr("&File"));
    mnu_File_Open = file->addAction(tr("&Open..."));
    mnu_File_Open->setShortcut(QKeySequence::Open);
    mnu_File_Close = file->addAction(tr("&Close"));
    mnu_File_Close->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_U));
    file->addSeparator();
    mnu_File_Exit = file->addAction(tr("E&xit"));

    QMenu* options = menuBar()->addMenu(tr("&Options"));
    mnu_Opts_Notes = options->addAction(tr("&Note display..."));
    mnu_Opts_MKB = options->addAction(tr("&Mouse and keyboard play..."));
    mnu_Opts_Channels = options->addAction(tr("&Channels..."));
    QMenu* delay = options->addMenu(tr("Start &delay"));
    auto* delays = new QActionGroup(this);
    for (int i = 0; i < 4; ++i) {
        mnu_Opts_Delay_Opt[i] = delay->addAction(i == 0 ? tr("None") : tr("%n second(s)", nullptr, i));
        mnu_Opts_Delay_Opt[i]->setCheckable(true);
        delays->addAction(mnu_Opts_Delay_Opt[i]);
    }
    mnu_Opts_Delay_Opt[0]->setChecked(true);
    mnu_Opts_Ontop = options->addAction(tr("Always on &top"));
    mnu_Opts_Ontop->setCheckable(true);
    options->addSeparator();
    mnu_Opts_Devs = options->addAction(tr("Select/Test Midi Device..."));

    QMenu* help = menuBar()->addMenu(tr("&Help"));
    mnu_Help_Contents = help->addAction(tr("&Contents"));
    mnu_Help_Contents->setShortcut(QKeySequence::HelpContents);
    mnu_Help_About = help->addAction(tr("&About Tarabix"));

    // Space plays and pauses from anywhere in the window; it is no key of the note grid.
    mnu_Play_Pause = new QAction(tr("Play / Pause"), this);
    mnu_Play_Pause->setShortcut(QKeySequence(Qt::Key_Space));
    mnu_Play_Pause->setShortcutContext(Qt::WindowShortcut);
    addAction(mnu_Play_Pause);
}

}  // namespace tarabix
