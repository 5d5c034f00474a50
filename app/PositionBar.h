#pragma once

#include <QSlider>

#include <cstdint>
#include <optional>

namespace tarabix {

// The position in the piece, in seconds, with the practice loop drawn on it. A drag with Shift
// held chooses the loop's range instead of moving the position, so the learner can mark a
// phrase by ear while it plays.
class PositionBar : public QSlider {
    Q_OBJECT
public:
    struct Range {
        int32_t fromMs = 0;
        int32_t toMs = 0;
    };

    explicit PositionBar(QWidget* parent = nullptr);

    // The loop drawn on the bar, or none.
    void setLoopRange(std::optional<Range> range);
    std::optional<Range> loopRange() const { return m_loop; }

    // The piece time under a point of the bar, within the bar's range.
    int32_t msAt(int x) const;

signals:
    // A Shift-drag ended over a range longer than a tenth of a second.
    void rangeDragged(int32_t fromMs, int32_t toMs);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    struct Travel {
        int start = 0;  // the handle's centre at the bar's first value
        int span = 0;   // and how far it moves to the last
    };
    Travel travel() const;
    int xAt(int32_t ms) const;
    std::optional<Range> m_loop;
    std::optional<int32_t> m_dragFromMs;
    int32_t m_dragToMs = 0;
};

}  // namespace tarabix
