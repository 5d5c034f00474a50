#include "app/fNotesOpts.h"

#include "app/DialogButtons.h"

#include <QButtonGroup>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QVBoxLayout>

#include <initializer_list>
#include <utility>

namespace tarabix {

int presToIndex(int32_t value)
{
    if (value < 0 || value > 2)
        return -1;
    return (value + 2) % 3;
}

int32_t indexToPres(int index)
{
    if (index < 0 || index > 2)
        return -1;
    return (index + 1) % 3;
}

namespace {

// A frame of radio buttons whose ids are their indexes, top to bottom.
QButtonGroup* addChoiceGroup(QWidget* owner, QLayout* into, const QString& caption,
                             std::initializer_list<const char*> captions)
{
    auto* frame = new QGroupBox(caption, owner);
    auto* layout = new QVBoxLayout(frame);
    auto* group = new QButtonGroup(owner);
    int index = 0;
    for (const char* text : captions) {
        auto* button = new QRadioButton(QString::fromUtf8(text), frame);
        group->addButton(button, index++);
        layout->addWidget(button);
    }
    into->addWidget(frame);
    return group;
}

void checkIndex(QButtonGroup* group, int index)
{
    if (QAbstractButton* button = group->button(index))
        button->setChecked(true);
}

// The first set button, scanning from index 0; -1 when the group has none set.
int setIndex(const QButtonGroup* group)
{
    for (int index = 0; QAbstractButton* button = group->button(index); ++index)
        if (button->isChecked())
            return index;
    return -1;
}

}  // namespace

fNotesOpts::fNotesOpts(const NotePresentation& presentation, const LookAhead& lookAhead, QWidget* parent)
    : QDialog(parent), m_presentation(presentation), m_lookAhead(lookAhead.checked())
{
    buildControls();
    checkIndex(optMaqamStatic, presToIndex(m_presentation.restMaqam));
    checkIndex(optPlayMaq, presToIndex(m_presentation.playMaqam));
    checkIndex(optNoMaqamStatic, presToIndex(m_presentation.restNoMaqam));
    checkIndex(optPlayNoMaq, presToIndex(m_presentation.playNoMaqam));
    checkIndex(optNoteNamesType, m_presentation.nameSystem);
    checkIndex(optLookAhead, m_lookAhead.choice);
    spnLookAheadMs->setValue(m_lookAhead.withinMs);
}

void fNotesOpts::buildControls()
{
    setWindowTitle(tr("Note Display Options"));
    setWindowModality(Qt::WindowModal);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel(QStringLiteral("Set how notes are displayed on the Oud"), this));

    optNoteNamesType = addChoiceGroup(this, layout, QStringLiteral("Note Names"),
                                      {"English names: (C, D, E, F, G, A, B)",
                                       "French names: (D, R, M, ... for Do, Re, Mi, ...)"});

    const QString staticCaption = QStringLiteral("Static View (when no note is played)");
    const QString playedCaption = QStringLiteral("Played Note");

    auto* noMaqam = new QGroupBox(QStringLiteral("When No Maqam Is Selected"), this);
    auto* noMaqamLayout = new QHBoxLayout(noMaqam);
    optNoMaqamStatic = addChoiceGroup(noMaqam, noMaqamLayout, staticCaption,
                                      {"Note names every 1/2 tone", "Marking circles every 1/2 tone", "No marks"});
    optPlayNoMaq = addChoiceGroup(noMaqam, noMaqamLayout, playedCaption,
                                  {"Note name highlighted", "Colored Circle", "No effect"});
    layout->addWidget(noMaqam);

    auto* maqam = new QGroupBox(QStringLiteral("When A Maqam Is Selected"), this);
    auto* maqamLayout = new QHBoxLayout(maqam);
    optMaqamStatic = addChoiceGroup(maqam, maqamLayout, staticCaption,
                                    {"Note names at maqam finger positions",
                                     "Marking circles at maqam finger positions", "No marks"});
    optPlayMaq = addChoiceGroup(maqam, maqamLayout, playedCaption,
                                {"Note name highlighted", "Colored Circle", "No effect"});
    layout->addWidget(maqam);
    buildLookAheadControls(layout);

    addOkCancelRow(this, layout, cmdOK, cmdCancel);

    connect(cmdOK, &QPushButton::clicked, this, &fNotesOpts::cmdOK_Click);
}

// Where the hand goes next: faint numbered marks at the places of the coming notes while a piece
// plays. The time is the learner's (heard) time, whatever the speed.
void fNotesOpts::buildLookAheadControls(QLayout* into)
{
    auto* frame = new QGroupBox(QStringLiteral("Coming Notes (while a piece plays)"), this);
    auto* layout = new QVBoxLayout(frame);
    optLookAhead = new QButtonGroup(this);
    const char* captions[] = {"Not shown", "The next note", "The next 2 notes", "The next 3 notes"};
    for (int32_t choice = LookAhead::kOff; choice <= LookAhead::kMostMoments; ++choice) {
        auto* button = new QRadioButton(QString::fromUtf8(captions[choice]), frame);
        optLookAhead->addButton(button, choice);
        layout->addWidget(button);
    }
    auto* withinRow = new QHBoxLayout;
    auto* within = new QRadioButton(QStringLiteral("The notes due within"), frame);
    optLookAhead->addButton(within, LookAhead::kWithinTime);
    spnLookAheadMs = new QSpinBox(frame);
    spnLookAheadMs->setRange(LookAhead::kShortestMs, LookAhead::kLongestMs);
    spnLookAheadMs->setSingleStep(250);
    spnLookAheadMs->setSuffix(QStringLiteral(" ms"));
    withinRow->addWidget(within);
    withinRow->addWidget(spnLookAheadMs);
    withinRow->addStretch();
    layout->addLayout(withinRow);
    layout->addWidget(new QLabel(QStringLiteral("A chord counts as one note; 1 marks the next."), frame));
    into->addWidget(frame);
}

void fNotesOpts::cmdOK_Click()
{
    const std::pair<const QButtonGroup*, int32_t NotePresentation::*> presGroups[] = {
        {optMaqamStatic, &NotePresentation::restMaqam},
        {optPlayMaq, &NotePresentation::playMaqam},
        {optNoMaqamStatic, &NotePresentation::restNoMaqam},
        {optPlayNoMaq, &NotePresentation::playNoMaqam},
    };
    // A group with no button set leaves its value alone.
    for (const auto& [buttons, field] : presGroups) {
        if (const int32_t value = indexToPres(setIndex(buttons)); value != -1)
            m_presentation.*field = value;
    }
    if (const int32_t names = setIndex(optNoteNamesType); names != -1)
        m_presentation.nameSystem = names;
    if (const int choice = setIndex(optLookAhead); choice != -1)
        m_lookAhead.choice = choice;
    m_lookAhead.withinMs = spnLookAheadMs->value();
    emit presentationChosen(m_presentation);
    emit lookAheadChosen(m_lookAhead);
    accept();
}

}  // namespace tarabix
