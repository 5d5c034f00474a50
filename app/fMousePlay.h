#pragma once

#include "app/HandPlayOptions.h"

#include <QDialog>

class QCheckBox;
class QPushButton;

namespace tarabix {

class UserSettings;

// The mouse and keyboard play options dialog. OK stores the first four choices and emits
// optionsAccepted; the window hands them to its hand player, which also shows or hides the key
// labels by showKbGuides. The doubling gaps pass through unchanged.
class fMousePlay : public QDialog {
    Q_OBJECT
public:
    fMousePlay(const HandPlayOptions& options, UserSettings& settings, QWidget* parent = nullptr);

    const HandPlayOptions& options() const { return m_options; }

    QCheckBox* chkAprxQrt = nullptr;
    QCheckBox* chkPlayMove = nullptr;
    QCheckBox* chkHiliteQrt = nullptr;
    QCheckBox* chkDblSound = nullptr;
    QCheckBox* chkSowKbGuides = nullptr;
    QPushButton* cmdOK = nullptr;
    QPushButton* cmdCancel = nullptr;

signals:
    void optionsAccepted(const tarabix::HandPlayOptions& options);

private:
    void buildControls();
    void applyDependencies();
    void cmdOK_Click();

    HandPlayOptions m_options;
    UserSettings& m_settings;
};

}  // namespace tarabix
