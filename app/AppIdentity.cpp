#include "app/AppIdentity.h"

#include <QDir>
#include <QLockFile>

#include <memory>

namespace tarabix {
namespace {

AppIdentity& identity()
{
    static AppIdentity id;
    return id;
}

}  // namespace

QString AppIdentity::path(std::initializer_list<QString> parts) const
{
    QString p = programFolder;
    for (const QString& part : parts)
        p += QDir::separator() + part;
    return QDir::toNativeSeparators(p);
}

const AppIdentity& initApplication(const QString& programFolder)
{
    AppIdentity& id = identity();
    id = AppIdentity{};
    id.programFolder = QDir::toNativeSeparators(QDir::cleanPath(programFolder));
    id.settingsPath = id.path({QStringLiteral("tarabix.ini")});
    id.helpPath = id.path({QStringLiteral("tarabix.hlp")});

    // The marker lives as long as the process. A second copy only notes that it is not alone.
    static std::unique_ptr<QLockFile> marker;
    static bool anotherInstance = false;
    if (!marker) {
        marker = std::make_unique<QLockFile>(QDir::temp().filePath(id.mutexName + QStringLiteral(".lock")));
        marker->setStaleLockTime(0);
        anotherInstance = !marker->tryLock(0);
    }
    id.anotherInstance = anotherInstance;
    return id;
}

const AppIdentity& appIdentity()
{
    return identity();
}

}  // namespace tarabix
