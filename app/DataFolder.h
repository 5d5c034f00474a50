#pragma once

#include <QString>

namespace tarabix {

// The folder holding tunings.ini, maqams.ini, the pictures, samples/ and help/: the program's own
// folder when they lie beside it (a build, or an install into one folder), else share/tarabix
// beside the program's bin/ folder. When neither has tunings.ini, the program's own folder, so the
// start-up check names what is missing there.
QString dataFolder(const QString& programFolder);

}  // namespace tarabix
