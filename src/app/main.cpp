#include "AppDelegate.h"
#include "CommandLine.h"
#include "FormMainView.h"
#include "ProcessPrivacy.h"
#include "ResourceFolder.h"

#include <QApplication>
#include <QIcon>
#include <QTimer>

#include <cstdio>

static QStringList argumentsOf(int argc, char **argv)
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    return arguments;
}

int main(int argc, char **argv)
{
    // Before anything needs a display, so that these answer without one.
    const QString answer = CommandLine::answerWithoutDisplay(argumentsOf(argc, argv));
    if (!answer.isEmpty()) {
        std::fputs(qPrintable(answer), stdout);
        return 0;
    }
    ProcessPrivacy::forbidDumps();
    QString password = ProcessPrivacy::takeFromEnvironment("FERROW_RCON_PASSWORD");

    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("ferrow-rcon"));
    QApplication::setApplicationVersion(CommandLine::version());
    const CommandLine line = CommandLine::parse(QApplication::arguments());
    if (!line.error.isEmpty()) {
        std::fprintf(stderr, "ferrow-rcon: %s\n", qPrintable(line.error));
        return 2;
    }
    QApplication::setDesktopFileName(QStringLiteral("net.kelvard.ferrow_rcon"));
    QApplication::setWindowIcon(QIcon(resourceFolder() + QStringLiteral("/icons/48.png")));
    AppDelegate delegate;
    delegate.window().show();
    if (line.isDemo)
        QTimer::singleShot(0, &delegate, &AppDelegate::tryDemoServer);
    else if (!line.target.isEmpty())
        QTimer::singleShot(0, &delegate, [&] {
            delegate.window().connectByCommandLine(line.target, password);
            password.clear(); // from now on the window has it
        });
    return QApplication::exec();
}
