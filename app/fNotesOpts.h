#pragma once

#include "settings/LookAhead.h"
#include "settings/NotePresentation.h"

#include <QDialog>

#include <cstdint>

class QButtonGroup;
class QPushButton;
class QSpinBox;

namespace tarabix {

// The buttons list names first, circles second and "nothing" last, so button index and value are
// a rotation of each other. Out-of-range input gives -1 (no button).
int presToIndex(int32_t value);
int32_t indexToPres(int index);

// The note display options dialog: the naming system and, with and without a maqam, what the
// resting fingerboard shows and how a played note is marked; and how far ahead a piece's coming
// notes are shown. Open it with open() so a piece keeps playing behind it; OK emits
// presentationChosen and lookAheadChosen with what the controls say, and the window stores and
// shows them. A presentation value no button stands for (a damaged store) comes back as it was.
class fNotesOpts : public QDialog {
    Q_OBJECT
public:
    fNotesOpts(const NotePresentation& presentation, const LookAhead& lookAhead, QWidget* parent = nullptr);

    QButtonGroup* optNoteNamesType = nullptr;
    QButtonGroup* optNoMaqamStatic = nullptr;
    QButtonGroup* optPlayNoMaq = nullptr;
    QButtonGroup* optMaqamStatic = nullptr;
    QButtonGroup* optPlayMaq = nullptr;
    QButtonGroup* optLookAhead = nullptr;  // ids: LookAhead's choices
    QSpinBox* spnLookAheadMs = nullptr;
    QPushButton* cmdOK = nullptr;
    QPushButton* cmdCancel = nullptr;

signals:
    void presentationChosen(const tarabix::NotePresentation& presentation);
    void lookAheadChosen(const tarabix::LookAhead& lookAhead);

private:
    void buildControls();
    void buildLookAheadControls(QLayout* into);
    void cmdOK_Click();

    NotePresentation m_presentation;
    LookAhead m_lookAhead;
};

}  // namespace tarabix
