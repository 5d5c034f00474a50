#include "app/fMain.h"

namespace tarabix {

fMain::fMain(QWidget* parent) : QMainWindow(parent)
{
    setWindowTitle(QStringLiteral("Tarabix 1.4"));
    resize(800, 480);
}

}  // namespace tarabix
