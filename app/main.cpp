#include "app/fMain.h"

#include <QApplication>

int main(int argc, char* argv[])
{
    QApplication app(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("Tarabix"));
    QApplication::setApplicationName(QStringLiteral("Tarabix"));
    tarabix::fMain window;
    window.show();
    return QApplication::exec();
}
