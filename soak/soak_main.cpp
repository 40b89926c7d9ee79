#include "Soak.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QFile>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>

/// Without the notices about what an off-screen window cannot do.
static void printMessage(QtMsgType, const QMessageLogContext &, const QString &message)
{
    if (!message.startsWith("This plugin does not support"))
        std::fprintf(stderr, "%s\n", qPrintable(message));
}

int main(int argc, char **argv)
{
    qInstallMessageHandler(printMessage);
    const QTemporaryDir folder;
    // Whatever the hand opens or saves stays in there.
    QFile log(folder.filePath("log.txt"));
    if (!folder.isValid() || !qputenv("HOME", folder.path().toLocal8Bit()) || !qunsetenv("XDG_DATA_HOME") ||
        !qunsetenv("XDG_CONFIG_HOME") || !QDir::setCurrent(folder.path()) || !log.open(QIODevice::WriteOnly) ||
        !qputenv("FerrowRconLog", "1")) {
        std::fprintf(stderr, "ferrow-soak: cannot write to %s\n", qPrintable(folder.path()));
        return 1;
    }
    log.close();
    QApplication application(argc, argv);
    QApplication::setAttribute(Qt::AA_DontUseNativeDialogs); // another program's could not be typed into
    QApplication::setQuitOnLastWindowClosed(false);
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addOptions({{"minutes", "How long.", "N", "60"},
                       {"seed", "Same number, same hand.", "N", "1"},
                       {"throttle", "The server ignores requests sooner than this after the last.", "MS", "0"},
                       {"stops", "The server goes away so often, for 8 seconds.", "SECONDS", "0"}});
    parser.process(application);
    const double seconds = std::max(0.2, parser.value("minutes").toDouble()) * 60;
    const Soak::Plan plan{.seconds = seconds,
                          .seed = parser.value("seed").toULongLong(),
                          .throttle = std::chrono::milliseconds(parser.value("throttle").toInt()),
                          .secondsBetweenStops = parser.value("stops").toDouble(),
                          .folder = folder.path()};
    return Soak(plan).perform() ? 0 : 1;
}
