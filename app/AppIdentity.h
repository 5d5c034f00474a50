#pragma once

#include "TarabixVersion.h"

#include <QString>

namespace tarabix {

// Who the program is and where its files are: set once at start, read everywhere afterwards.
struct AppIdentity {
    QString name = QStringLiteral("Tarabix");
    QString title = QStringLiteral("Tarabix " TARABIX_VERSION);
    QString version = QStringLiteral(TARABIX_VERSION);
    QString releaseDate = QStringLiteral("03/03/2006");
    QString programFolder;  // the executable's folder, no trailing separator
    QString settingsPath;   // kept for reference: settings live in the per-user store
    QString helpPath;
    QString mutexName = QStringLiteral("tarabixMutex");
    bool anotherInstance = false;  // recorded, never consulted: a second copy runs like the first

    // A file or folder beside the program, e.g. path({"samples", "agam", "zoroony.mzf"}).
    QString path(std::initializer_list<QString> parts) const;
};

// Fills the identity for the program living in `programFolder` and takes the single-instance
// marker. Call once, before the main window loads.
const AppIdentity& initApplication(const QString& programFolder);
const AppIdentity& appIdentity();

}  // namespace tarabix
