#pragma once

#include <QDialog>

#include <array>
#include <cstdint>

class QButtonGroup;
class QPushButton;

namespace tarabix {

class UserSettings;

// How notes are shown on the oud picture: the naming system and, with and without a maqam, what
// the resting fingerboard shows and how a played note is marked.
// Presentation values: 0 nothing, 1 note names, 2 circles.
struct NotesDisplayOptions {
    int32_t noteNamesType = 0;
    int32_t presRestNoMaqam = 1;
    int32_t presPlayNoMaqam = 1;
    int32_t presRestMaqam = 1;
    int32_t presPlayMaqam = 1;
    // Set (never cleared) by OK when a presentation value changed: the window redraws the
    // fingerboard and clears it.
    bool presChanged = false;
    // Set by OK when the naming system changed: the window refills its tuning and tonic lists.
    bool namesChanged = false;
};

// The buttons list names first, circles second and "nothing" last, so button index and value are
// a rotation of each other. Out-of-range input gives -1 (no button).
int presToIndex(int32_t value);
int32_t indexToPres(int index);

// The note display options dialog. Open it with open() so a piece keeps playing behind it; on OK
// it stores what changed and emits optionsAccepted with the new values.
class fNotesOpts : public QDialog {
    Q_OBJECT
public:
    fNotesOpts(const NotesDisplayOptions& options, UserSettings& settings, QWidget* parent = nullptr);

    const NotesDisplayOptions& options() const { return m_options; }

    QButtonGroup* optNoteNamesType = nullptr;
    QButtonGroup* optNoMaqamStatic = nullptr;
    QButtonGroup* optPlayNoMaq = nullptr;
    QButtonGroup* optMaqamStatic = nullptr;
    QButtonGroup* optPlayMaq = nullptr;
    QPushButton* cmdOK = nullptr;
    QPushButton* cmdCancel = nullptr;

signals:
    void optionsAccepted(const tarabix::NotesDisplayOptions& options);

private:
    void buildControls();
    void cmdOK_Click();

    NotesDisplayOptions m_options;
    UserSettings& m_settings;
};

}  // namespace tarabix
