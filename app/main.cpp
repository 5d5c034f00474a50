#include "app/fMain.h"
#include "playback/SoundFontLocator.h"

#include <QApplication>
#include <QCommandLineParser>

int main(int argc, char* argv[])
{
    QApplication app(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("Tarabix"));
    QApplication::setApplicationName(QStringLiteral("Tarabix"));
    QApplication::setApplicationVersion(QStringLiteral("1.4"));

    QCommandLineParser args;
    args.setApplicationDescription(QStringLiteral("Learn and practise the oud."));
    args.addHelpOption();
    args.addVersionOption();
    const QCommandLineOption soundFont(QStringLiteral("soundfont"),
                                       QStringLiteral("The SoundFont of the built-in synthesizer."),
                                       QStringLiteral("FILE"));
    args.addOption(soundFont);
    args.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("A piece to open (.mid or .mzf)."));
    args.process(app);
    if (args.isSet(soundFont))
        tarabix::setSoundFontOverride(args.value(soundFont).toStdString());

    tarabix::fMainEnvironment environment;
    environment.programFolder = QCoreApplication::applicationDirPath();
    if (!args.positionalArguments().isEmpty())
        environment.startFile = args.positionalArguments().first();
    tarabix::fMain window(std::move(environment));
    if (!window.load())
        return 1;
    window.show();
    return QApplication::exec();
}
