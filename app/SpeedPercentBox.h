#pragma once

#include <QSpinBox>

namespace tarabix {

// The fine speed control beside the speed slider: 25 to 200 % in steps of 5. The slider's √2
// steps land between them (71 %, 141 %); an arrow from there goes to the next multiple of 5, so
// the learner never ends up on odd values by stepping.
class SpeedPercentBox : public QSpinBox {
    Q_OBJECT
public:
    static constexpr int kMinPercent = 25;
    static constexpr int kMaxPercent = 200;
    static constexpr int kStepPercent = 5;

    explicit SpeedPercentBox(QWidget* parent = nullptr);

    void stepBy(int steps) override;
};

}  // namespace tarabix
