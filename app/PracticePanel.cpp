#include "app/PracticePanel.h"


#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSlider>
#include <QSpinBox>

#include <cmath>

namespace tarabix {

namespace {

QSpinBox* percentBox(int min, int max, const QString& prefix, QWidget* parent)
{
    auto* box = new QSpinBox(parent);
    box->setRange(min, max);
    box->setSingleStep(5);
    box->setPrefix(prefix);
    box->setSuffix(QStringLiteral(" %"));
    // A typed value counts once it is complete (Enter or leaving the box), not at every digit:
    // "1" on the way to "120" is no ramp the learner meant.
    box->setKeyboardTracking(false);
    return box;
}

QString loopText(const PracticeSetup& s)
{
    if (!s.aMs && !s.bMs)
        return {};
    const auto end = [](const std::optional<int32_t>& ms) { return ms ? QString::fromStdString(practiceTimeText(*ms)) : QStringLiteral("–"); };
    return QStringLiteral("%1 … %2").arg(end(s.aMs), end(s.bMs));
}

}  // namespace

PracticePanel::PracticePanel(QWidget* parent) : QWidget(parent)
{
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    cmdSetA = new QPushButton(tr("A"), this);
    cmdSetA->setToolTip(tr("Loop from here (F5)"));
    cmdSetB = new QPushButton(tr("B"), this);
    cmdSetB->setToolTip(tr("Loop up to here (F6)"));
    for (QPushButton* b : {cmdSetA, cmdSetB})
        b->setFixedWidth(b->fontMetrics().horizontalAdvance(QStringLiteral("MM")) + 12);
    chkLoop = new QCheckBox(tr("Loop"), this);
    chkLoop->setToolTip(tr("Play from A to B again and again (F7). Shift-drag on the position bar to choose A and B."));
    lblLoop = new QLabel(this);
    chkRamp = new QCheckBox(tr("Ramp"), this);
    chkRamp->setToolTip(tr("Start the loop slower and raise the speed after each pass"));
    udRampFrom = percentBox(25, 200, tr("from "), this);
    udRampStep = percentBox(1, 50, tr("+"), this);
    udRampCeiling = percentBox(25, 200, tr("to "), this);
    udCountIn = new QSpinBox(this);
    udCountIn->setRange(0, 16);
    udCountIn->setPrefix(tr("Count-in "));
    udCountIn->setToolTip(tr("Beats counted in before playing and before each pass of the loop"));
    udCountIn->setKeyboardTracking(false);
    chkClick = new QCheckBox(tr("Click"), this);
    chkClick->setToolTip(tr("A click on every beat while playing"));
    sldClickVolume = new QSlider(Qt::Horizontal, this);
    sldClickVolume->setRange(0, 127);
    sldClickVolume->setValue(90);
    sldClickVolume->setMaximumWidth(80);
    sldClickVolume->setToolTip(tr("Volume of the click and the count-in"));
    lblPass = new QLabel(this);

    for (QWidget* w : std::initializer_list<QWidget*>{cmdSetA, cmdSetB, chkLoop, lblLoop, chkRamp, udRampFrom, udRampStep,
                                                      udRampCeiling, udCountIn, chkClick, sldClickVolume})
        row->addWidget(w);
    row->addWidget(lblPass, 1);

    connect(cmdSetA, &QPushButton::clicked, this, &PracticePanel::setAAsked);
    connect(cmdSetB, &QPushButton::clicked, this, &PracticePanel::setBAsked);
    connect(chkLoop, &QCheckBox::toggled, this, &PracticePanel::propose);
    connect(chkRamp, &QCheckBox::toggled, this, &PracticePanel::propose);
    for (QSpinBox* box : {udRampFrom, udRampStep, udRampCeiling, udCountIn})
        connect(box, &QSpinBox::valueChanged, this, &PracticePanel::propose);
    connect(chkClick, &QCheckBox::toggled, this, &PracticePanel::clickChanged);
    connect(sldClickVolume, &QSlider::valueChanged, this, &PracticePanel::clickChanged);
    showSetup(m_shown);
}

PracticeSetup PracticePanel::setup() const
{
    PracticeSetup s = m_shown;
    s.loopOn = chkLoop->isChecked();
    s.rampOn = chkRamp->isChecked();
    s.ramp = TempoRamp{udRampFrom->value(), udRampStep->value(), udRampCeiling->value()};
    s.countInBeats = udCountIn->value();
    return s;
}

void PracticePanel::showSetup(const PracticeSetup& setup)
{
    m_shown = setup;
    const QSignalBlocker blocks[] = {QSignalBlocker(chkLoop), QSignalBlocker(chkRamp), QSignalBlocker(udRampFrom),
                                     QSignalBlocker(udRampStep), QSignalBlocker(udRampCeiling),
                                     QSignalBlocker(udCountIn)};
    chkLoop->setChecked(setup.loopOn);
    chkRamp->setChecked(setup.rampOn);
    udRampFrom->setValue(setup.ramp.fromPercent);
    udRampStep->setValue(setup.ramp.stepPercent);
    udRampCeiling->setValue(setup.ramp.ceilingPercent);
    udCountIn->setValue(setup.countInBeats);
    for (QSpinBox* box : {udRampFrom, udRampStep, udRampCeiling})
        box->setEnabled(setup.rampOn);
    lblLoop->setText(loopText(setup));
}

void PracticePanel::showPass(int32_t pass, float speedRatio)
{
    lblPass->setText(tr("Pass %1 · %2 %").arg(pass + 1).arg(std::lround(speedRatio * 100.0f)));
}

void PracticePanel::clearPass()
{
    lblPass->clear();
}

bool PracticePanel::clickEveryBeat() const
{
    return chkClick->isChecked();
}

int PracticePanel::clickVolume() const
{
    return sldClickVolume->value();
}

void PracticePanel::propose()
{
    emit setupProposed(setup());
}

}  // namespace tarabix
