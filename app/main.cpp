#include "app/DataFolder.h"
#include "app/fMain.h"
#include "playback/SoundFontLocator.h"

#include "TarabixVersion.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QIcon>
#include <QElapsedTimer>
#include <QTimer>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>
#if defined(__linux__)
#include <time.h>
#include <unistd.h>
#endif

namespace {

// Start-up measurement (--startup-report): milliseconds from the process's start to the first
// paint of the window with its start-up piece loaded, printed once, then the program quits.
// Linux keeps the process's start in clock ticks since boot (10 ms); the time since main() adds a
// precise figure for the part the program itself controls. Elsewhere only the latter is known (-1).
double msSinceProcessStart()
{
#if !defined(__linux__)
    return -1.0;
#else
    std::ifstream in("/proc/self/stat");
    std::string line;
    if (!std::getline(in, line) || line.rfind(')') == std::string::npos)
        return -1.0;
    // The command name in parentheses may hold spaces; the fields after it are plain numbers and
    // the start time is the 20th of them.
    std::istringstream fields(line.substr(line.rfind(')') + 2));
    std::string field;
    for (int i = 0; i < 20 && fields >> field;)
        ++i;
    timespec now{};
    if (field.empty() || clock_gettime(CLOCK_BOOTTIME, &now) != 0)
        return -1.0;
    const double startMs = std::stod(field) * 1000.0 / static_cast<double>(sysconf(_SC_CLK_TCK));
    return static_cast<double>(now.tv_sec) * 1000.0 + static_cast<double>(now.tv_nsec) / 1e6 - startMs;
#endif
}

class StartupReport : public QObject {
public:
    StartupReport(const QElapsedTimer& sinceMain, const tarabix::fMain& window)
        : m_sinceMain(sinceMain), m_window(window)
    {
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Paint && !m_reported) {
            m_reported = true;
            // Reported once the paint has reached the screen, after the event loop's next turn.
            QTimer::singleShot(0, this, [this] {
                std::printf("startup_ms=%.1f main_to_window_ms=%.1f piece=%s\n", msSinceProcessStart(),
                            static_cast<double>(m_sinceMain.nsecsElapsed()) / 1e6,
                            m_window.currentFilePath().isEmpty() ? "none"
                                                                 : qPrintable(m_window.currentFilePath()));
                std::fflush(stdout);
                QApplication::quit();
            });
        }
        return QObject::eventFilter(watched, event);
    }

private:
    const QElapsedTimer& m_sinceMain;
    const tarabix::fMain& m_window;
    bool m_reported = false;
};

}  // namespace

int main(int argc, char* argv[])
{
    QElapsedTimer sinceMain;
    sinceMain.start();
    QApplication app(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("Tarabix"));
    QApplication::setApplicationName(QStringLiteral("Tarabix"));
    QApplication::setApplicationVersion(QStringLiteral(TARABIX_VERSION));
    QGuiApplication::setDesktopFileName(QStringLiteral("tarabix"));
    QApplication::setWindowIcon(QIcon::fromTheme(QStringLiteral("tarabix")));

    QCommandLineParser args;
    args.setApplicationDescription(QStringLiteral("Learn and practise the oud."));
    args.addHelpOption();
    args.addVersionOption();
    const QCommandLineOption soundFont(QStringLiteral("soundfont"),
                                       QStringLiteral("The SoundFont of the built-in synthesizer for this run "
                                                      "(a missing or broken file gives way to the system's)."),
                                       QStringLiteral("FILE"));
    args.addOption(soundFont);
    const QCommandLineOption startupReport(
        QStringLiteral("startup-report"),
        QStringLiteral("Print the start-up time once the window is shown with its piece, then quit."));
    args.addOption(startupReport);
    args.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("A piece to open (.mid or .mzf)."));
    args.process(app);
    if (args.isSet(soundFont))
        tarabix::setSoundFontOverride(args.value(soundFont).toStdString());

    tarabix::fMainEnvironment environment;
    environment.programFolder = tarabix::dataFolder(QCoreApplication::applicationDirPath());
    if (!args.positionalArguments().isEmpty())
        environment.startFile = args.positionalArguments().first();
    tarabix::fMain window(std::move(environment));
    if (!window.load())
        return 1;
    StartupReport report(sinceMain, window);
    if (args.isSet(startupReport))
        window.installEventFilter(&report);
    window.show();
    return QApplication::exec();
}
