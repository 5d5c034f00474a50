#include "app/fHelp.h"

#include "app/AppIdentity.h"

#include <QDesktopServices>
#include <QHBoxLayout>
#include <QKeySequence>
#include <QPushButton>
#include <QShortcut>
#include <QTextBrowser>
#include <QUrl>
#include <QVBoxLayout>

namespace tarabix {

QPointer<fHelp> fHelp::s_instance;

fHelp::fHelp(QWidget* owner) : QWidget(owner, Qt::Window)
{
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(tr("%1 - Help").arg(appIdentity().title));
    auto* layout = new QVBoxLayout(this);
    txtPage = new QTextBrowser(this);
    // Pages and pictures of the help folder open here; the wider world goes to the system.
    txtPage->setOpenLinks(true);
    txtPage->setOpenExternalLinks(true);
    layout->addWidget(txtPage, 1);

    auto* buttons = new QHBoxLayout;
    cmdBack = new QPushButton(tr("&Back"), this);
    cmdBack->setEnabled(false);
    cmdClose = new QPushButton(tr("&Close"), this);
    buttons->addWidget(cmdBack);
    buttons->addStretch(1);
    buttons->addWidget(cmdClose);
    layout->addLayout(buttons);

    connect(cmdBack, &QPushButton::clicked, txtPage, &QTextBrowser::backward);
    connect(txtPage, &QTextBrowser::backwardAvailable, cmdBack, &QPushButton::setEnabled);
    connect(cmdClose, &QPushButton::clicked, this, &QWidget::close);
    auto* escape = new QShortcut(QKeySequence(Qt::Key_Escape), this);
    connect(escape, &QShortcut::activated, this, &QWidget::close);
    resize(720, 640);
}

fHelp* fHelp::instance()
{
    return s_instance.data();
}

fHelp* fHelp::showPage(QWidget* owner, const QString& path)
{
    if (!s_instance)
        s_instance = new fHelp(owner);
    const QUrl page = QUrl::fromLocalFile(path);
    if (s_instance->txtPage->source() != page)
        s_instance->txtPage->setSource(page);
    s_instance->show();
    s_instance->raise();
    s_instance->activateWindow();
    return s_instance;
}

}  // namespace tarabix
