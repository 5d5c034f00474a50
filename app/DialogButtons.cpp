#include "app/DialogButtons.h"

#include <QBoxLayout>
#include <QDialog>
#include <QPushButton>

namespace tarabix {

void addOkCancelRow(QDialog* dialog, QBoxLayout* layout, QPushButton*& ok, QPushButton*& cancel)
{
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    ok = new QPushButton(QDialog::tr("OK"), dialog);
    ok->setDefault(true);
    cancel = new QPushButton(QDialog::tr("Cancel"), dialog);
    buttons->addWidget(ok);
    buttons->addWidget(cancel);
    layout->addLayout(buttons);
    QObject::connect(cancel, &QPushButton::clicked, dialog, &QDialog::reject);
}

}  // namespace tarabix
