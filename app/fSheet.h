#pragma once

#include <QImage>
#include <QPointer>
#include <QSize>
#include <QWidget>

class QLabel;
class QScrollArea;

namespace tarabix {

// The sheet viewer: one window showing the current piece's sheet picture, scrollable, fitted to
// the width when it opens, zoomed with Ctrl + wheel, Ctrl+plus / Ctrl+minus or its buttons. Its
// size is remembered while the program runs, so a reopened sheet comes back as the learner left it.
class fSheet : public QWidget {
    Q_OBJECT

public:
    static constexpr double kZoomStep = 1.25;
    static constexpr double kMinZoom = 0.1;
    static constexpr double kMaxZoom = 4.0;

    // Shows picture in the viewer (creating it over owner when it is not open), titled
    // "Sheet - " + title, and brings it to the front.
    static void showSheet(QWidget* owner, const QImage& picture, const QString& title);
    static bool isLoaded();
    static void unload();
    static fSheet* instance();  // null when not loaded

    double zoom() const { return m_zoom; }
    void setZoom(double zoom);
    void zoomIn() { setZoom(m_zoom * kZoomStep); }
    void zoomOut() { setZoom(m_zoom / kZoomStep); }
    void fitToWidth();
    QSize shownPictureSize() const;  // the picture's size on screen at the current zoom

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    explicit fSheet(QWidget* owner);
    void setPicture(const QImage& picture);
    void redraw();

    static QPointer<fSheet> s_instance;
    static QSize s_rememberedSize;

    QImage m_picture;
    double m_zoom = 1.0;
    bool m_fitPending = true;
    QScrollArea* m_scroll = nullptr;
    QLabel* m_label = nullptr;
};

}  // namespace tarabix
