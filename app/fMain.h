#pragma once

#include <QMainWindow>

namespace tarabix {

// The main window: the fingerboard, the piece's transport and the learner's choices.
class fMain : public QMainWindow {
    Q_OBJECT
public:
    explicit fMain(QWidget* parent = nullptr);
};

}  // namespace tarabix
