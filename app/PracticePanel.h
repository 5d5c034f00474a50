#pragma once

#include "app/PracticeSetup.h"

#include <QWidget>

class QCheckBox;
class QLabel;
class QPushButton;
class QSlider;
class QSpinBox;

namespace tarabix {

// The practice row under the transport: the loop's ends and switch, the tempo ramp, the count-in
// and the click. It shows a PracticeSetup and proposes changes to it; the window decides whether a
// change is taken (a bad one is refused with a message and the row shows the old setup again).
class PracticePanel : public QWidget {
    Q_OBJECT
public:
    explicit PracticePanel(QWidget* parent = nullptr);

    // What the row shows; showing one raises no proposal.
    PracticeSetup setup() const;
    void showSetup(const PracticeSetup& setup);

    // The pass being played and its speed ("Pass 3 · 70 %"), or nothing.
    void showPass(int32_t pass, float speedRatio);
    void clearPass();

    bool clickEveryBeat() const;
    int clickVolume() const;

signals:
    void setAAsked();
    void setBAsked();
    void setupProposed(const tarabix::PracticeSetup& setup);
    void clickChanged();

private:
    void propose();

    PracticeSetup m_shown;
    QPushButton* cmdSetA = nullptr;
    QPushButton* cmdSetB = nullptr;
    QCheckBox* chkLoop = nullptr;
    QLabel* lblLoop = nullptr;
    QCheckBox* chkRamp = nullptr;
    QSpinBox* udRampFrom = nullptr;
    QSpinBox* udRampStep = nullptr;
    QSpinBox* udRampCeiling = nullptr;
    QSpinBox* udCountIn = nullptr;
    QCheckBox* chkClick = nullptr;
    QSlider* sldClickVolume = nullptr;
    QLabel* lblPass = nullptr;
};

}  // namespace tarabix
