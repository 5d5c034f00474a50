#pragma once

#include "settings/NotePresentation.h"

#include <QDialog>

#include <cstdint>

class QButtonGroup;
class QPushButton;

namespace tarabix {

// The buttons list names first, circles second and "nothing" last, so button index and value are
// a rotation of each other. Out-of-range input gives -1 (no button).
int presToIndex(int32_t value);
int32_t indexToPres(int index);

// The note display options dialog: the naming system and, with and without a maqam, what the
// resting fingerboard shows and how a played note is marked. Open it with open() so a piece keeps
// playing behind it; OK emits presentationChosen with what the buttons say, and the window stores
// and shows it. A value no button stands for (a damaged store) comes back as it was.
class fNotesOpts : public QDialog {
    Q_OBJECT
public:
    explicit fNotesOpts(const NotePresentation& presentation, QWidget* parent = nullptr);

    QButtonGroup* optNoteNamesType = nullptr;
    QButtonGroup* optNoMaqamStatic = nullptr;
    QButtonGroup* optPlayNoMaq = nullptr;
    QButtonGroup* optMaqamStatic = nullptr;
    QButtonGroup* optPlayMaq = nullptr;
    QPushButton* cmdOK = nullptr;
    QPushButton* cmdCancel = nullptr;

signals:
    void presentationChosen(const tarabix::NotePresentation& presentation);

private:
    void buildControls();
    void cmdOK_Click();

    NotePresentation m_presentation;
};

}  // namespace tarabix
