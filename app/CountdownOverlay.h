#pragma once

#include <QLabel>

namespace tarabix {

// The start delay's and the count-in's countdown, large in the middle of the fingerboard, where
// the learner's eyes already are while the hands get ready on the instrument.
class CountdownOverlay : public QLabel {
    Q_OBJECT
public:
    explicit CountdownOverlay(QWidget* over);

    void showCount(const QString& text);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void centre();
};

}  // namespace tarabix
