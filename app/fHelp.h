#pragma once

#include <QPointer>
#include <QWidget>

class QPushButton;
class QTextBrowser;

namespace tarabix {

// The help page in a window of the program: its text, pictures and links inside, no browser
// needed. Links to other pages of the help folder open here; links out of it (web addresses, mail)
// go to the system, which may or may not have a browser. One window; showing it again brings it to
// the front at the same place in the text.
class fHelp : public QWidget {
    Q_OBJECT
public:
    // Opens (or raises) the help window over owner on the page at path.
    static fHelp* showPage(QWidget* owner, const QString& path);
    static fHelp* instance();  // null when it is not open

    QTextBrowser* txtPage = nullptr;
    QPushButton* cmdBack = nullptr;
    QPushButton* cmdClose = nullptr;

private:
    explicit fHelp(QWidget* owner);
    static QPointer<fHelp> s_instance;
};

}  // namespace tarabix
