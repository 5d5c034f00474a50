#include "app/fSheet.h"

#include <QHBoxLayout>
#include <QKeySequence>
#include <QLabel>
#include <QPixmap>
#include <QPushButton>
#include <QResizeEvent>
#include <QScrollArea>
#include <QScrollBar>
#include <QShortcut>
#include <QVBoxLayout>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace tarabix {

QPointer<fSheet> fSheet::s_instance;
QSize fSheet::s_rememberedSize(760, 600);

fSheet::fSheet(QWidget* owner) : QWidget(owner, Qt::Window)
{
    setAttribute(Qt::WA_DeleteOnClose);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);

    auto* buttons = new QHBoxLayout;
    const auto addButton = [&](const QString& caption, const QString& tip, void (fSheet::*action)()) {
        auto* button = new QPushButton(caption, this);
        button->setToolTip(tip);
        button->setFocusPolicy(Qt::NoFocus);
        connect(button, &QPushButton::clicked, this, action);
        buttons->addWidget(button);
    };
    addButton("Zoom in", "Ctrl+plus or Ctrl + wheel up", &fSheet::zoomIn);
    addButton("Zoom out", "Ctrl+minus or Ctrl + wheel down", &fSheet::zoomOut);
    addButton("Fit width", "", &fSheet::fitToWidth);
    buttons->addStretch();
    layout->addLayout(buttons);

    m_label = new QLabel(this);
    m_label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    m_scroll = new QScrollArea(this);
    m_scroll->setWidget(m_label);
    m_scroll->setWidgetResizable(false);
    m_scroll->setBackgroundRole(QPalette::Base);
    m_scroll->viewport()->installEventFilter(this);
    layout->addWidget(m_scroll);

    // Ctrl+= as well: on most keyboards plus is a shifted key, and learners press it unshifted.
    for (const QKeySequence& keys : {QKeySequence(QKeySequence::ZoomIn), QKeySequence(Qt::CTRL | Qt::Key_Equal)})
        connect(new QShortcut(keys, this), &QShortcut::activated, this, &fSheet::zoomIn);
    connect(new QShortcut(QKeySequence::ZoomOut, this), &QShortcut::activated, this, &fSheet::zoomOut);

    resize(s_rememberedSize);
}

void fSheet::showSheet(QWidget* owner, const QImage& picture, const QString& title)
{
    if (!s_instance)
        s_instance = new fSheet(owner);
    s_instance->setWindowTitle("Sheet - " + title);
    s_instance->setPicture(picture);
    s_instance->show();
    s_instance->raise();
    s_instance->activateWindow();
}

bool fSheet::isLoaded()
{
    return !s_instance.isNull();
}

void fSheet::unload()
{
    if (s_instance)
        delete s_instance.data();
}

fSheet* fSheet::instance()
{
    return s_instance.data();
}

void fSheet::setPicture(const QImage& picture)
{
    m_picture = picture;
    m_fitPending = true;
    if (isVisible())
        fitToWidth();
    else
        redraw();
}

void fSheet::setZoom(double zoom)
{
    m_zoom = std::clamp(zoom, kMinZoom, kMaxZoom);
    m_fitPending = false;
    redraw();
}

void fSheet::fitToWidth()
{
    if (m_picture.isNull())
        return;
    // The viewport's width less a vertical scroll bar, which a fitted tall sheet will need.
    const int width = m_scroll->viewport()->width() - m_scroll->verticalScrollBar()->sizeHint().width();
    setZoom(static_cast<double>(std::max(width, 1)) / m_picture.width());
}

QSize fSheet::shownPictureSize() const
{
    if (m_picture.isNull())
        return {};
    return {std::max(1, static_cast<int>(std::lround(m_picture.width() * m_zoom))),
            std::max(1, static_cast<int>(std::lround(m_picture.height() * m_zoom)))};
}

void fSheet::redraw()
{
    if (m_picture.isNull()) {
        m_label->setPixmap(QPixmap());
        m_label->setText("No sheet picture");
        m_label->adjustSize();
        return;
    }
    m_label->setPixmap(QPixmap::fromImage(
        m_picture.scaled(shownPictureSize(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation)));
    m_label->adjustSize();
}

bool fSheet::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_scroll->viewport() && event->type() == QEvent::Wheel) {
        auto* wheel = static_cast<QWheelEvent*>(event);
        if (wheel->modifiers() & Qt::ControlModifier) {
            const int steps = wheel->angleDelta().y();
            if (steps > 0)
                zoomIn();
            else if (steps < 0)
                zoomOut();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void fSheet::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    s_rememberedSize = event->size();
    if (m_fitPending && isVisible())
        fitToWidth();
}

void fSheet::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    if (m_fitPending)
        fitToWidth();
}

}  // namespace tarabix
