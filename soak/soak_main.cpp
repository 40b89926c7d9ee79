#include "AppDelegate.h"
#include "CommandLine.h"
#include "FormMainView.h"
#include "GameServers.h"
#include "Soak.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <cstring>

/// Without the notices about what an off-screen window cannot do.
static void printMessage(QtMsgType, const QMessageLogContext &, const QString &message)
{
    if (!message.startsWith(QLatin1String("This plugin does not support")))
        std::fprintf(stderr, "%s\n", qPrintable(message));
}

static Soak::Plan planOf(const QCommandLineParser &parser, const QString &folder)
{
    Soak::Plan plan;
    plan.seconds = std::max(0.2, parser.value(QStringLiteral("minutes")).toDouble()) * 60;
    plan.secondsBetweenRests = std::clamp(plan.seconds / 20, 8.0, 180.0);
    plan.restsToWarmUp = plan.seconds < 600 ? 1 : 3;
    plan.seed = parser.value(QStringLiteral("seed")).toULongLong();
    plan.throttle = parser.value(QStringLiteral("throttle")).toInt();
    plan.secondsBetweenStops = parser.value(QStringLiteral("stops")).toDouble();
    plan.folder = folder;
    return plan;
}

int main(int argc, char **argv)
{
    if (argc > 1 && std::strcmp(argv[1], "--serve") == 0) {
        const QCoreApplication application(argc, argv);
        return GameServers::serve();
    }
    qInstallMessageHandler(printMessage);
    QApplication application(argc, argv);
    QApplication::setApplicationVersion(CommandLine::version());
    QApplication::setAttribute(Qt::AA_DontUseNativeDialogs); // another program's could not be typed into
    QApplication::setQuitOnLastWindowClosed(false);
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addOptions(
        {{QStringLiteral("minutes"), QStringLiteral("How long."), QStringLiteral("N"), QStringLiteral("60")},
         {QStringLiteral("seed"), QStringLiteral("Same number, same hand."), QStringLiteral("N"), QStringLiteral("1")},
         {QStringLiteral("throttle"), QStringLiteral("Servers ignore requests sooner than this after the last."),
          QStringLiteral("MS"), QStringLiteral("0")},
         {QStringLiteral("stops"), QStringLiteral("The server in use goes away so often, for 8 seconds. 0: never."),
          QStringLiteral("SECONDS"), QStringLiteral("0")}});
    parser.process(application);

    const QTemporaryDir folder;
    QFile log(folder.filePath(QStringLiteral("log.txt")));
    if (!folder.isValid() || !log.open(QIODevice::WriteOnly) || !QDir::setCurrent(folder.path()) ||
        !qputenv("FerrowRconLog", "1")) {
        std::fprintf(stderr, "ferrow-soak: cannot write to %s\n", qPrintable(folder.path()));
        return 1;
    }
    log.close();
    const Soak::Plan plan = planOf(parser, folder.path());
    GameServers servers;
    if (!servers.start(plan.seed)) {
        std::fprintf(stderr, "ferrow-soak: the servers do not start\n");
        return 1;
    }
    AppDelegate delegate({folder.filePath(QStringLiteral("preferences.ini")), {}, folder.path()});
    Soak soak(delegate, servers, plan);
    return soak.perform() ? 0 : 1;
}
