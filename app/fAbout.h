#pragma once

#include <QDialog>

class QLabel;
class QPushButton;

namespace tarabix {

struct AppIdentity;

// The about box: what the program is, its version and date, and the tools it is built with.
class fAbout : public QDialog {
    Q_OBJECT
public:
    explicit fAbout(const AppIdentity& identity, QWidget* parent = nullptr);

    QLabel* lblTitle = nullptr;
    QLabel* lblVersion = nullptr;
    QLabel* lblPurpose = nullptr;
    QLabel* lblCredits = nullptr;
    QPushButton* cmdOK = nullptr;
};

}  // namespace tarabix
