#include "app/DataFolder.h"

#include <QDir>
#include <QFileInfo>

namespace tarabix {

namespace {

bool holdsTunings(const QString& folder)
{
    return QFileInfo(QDir(folder).filePath(QStringLiteral("tunings.ini"))).isFile();
}

}  // namespace

QString dataFolder(const QString& programFolder)
{
    if (holdsTunings(programFolder))
        return programFolder;
    const QString shared = QDir::cleanPath(QDir(programFolder).filePath(QStringLiteral("../share/tarabix")));
    return holdsTunings(shared) ? shared : programFolder;
}

}  // namespace tarabix
