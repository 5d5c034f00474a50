#include "app/fMain.h"

#include <QApplication>

int main(int argc, char* argv[])
{
    QApplication app(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("Tarabix"));
    QApplication::setApplicationName(QStringLiteral("Tarabix"));

    tarabix::fMainEnvironment environment;
    environment.programFolder = QCoreApplication::applicationDirPath();
    tarabix::fMain window(std::move(environment));
    if (!window.load())
        return 1;
    window.show();
    return QApplication::exec();
}
