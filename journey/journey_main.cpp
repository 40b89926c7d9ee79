#include "AppDelegate.h"
#include "Appearance.h"
#include "CommandLine.h"
#include "Journey.h"

#include <QApplication>
#include <QDir>
#include <QTemporaryDir>

#include <cstdio>

/// Performs the journey once in light and once in dark, and prints the paths of the pictures.
/// usage: ferrow-journey FOLDER
int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    QApplication::setApplicationVersion(CommandLine::version());
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() != 2) {
        std::fprintf(stderr, "usage: ferrow-journey FOLDER\n");
        return 2;
    }
    const QTemporaryDir settings;
    for (const QString &appearance : QStringList{"light", "dark"}) {
        const QString folder = QDir(arguments.at(1)).filePath(appearance);
        if (!QDir().mkpath(folder)) {
            std::fprintf(stderr, "ferrow-journey: cannot make the folder %s\n", qPrintable(folder));
            return 1;
        }
        AppDelegate delegate({settings.filePath(appearance + ".ini"), {}, settings.filePath(appearance)});
        Appearance::apply(appearance);
        Journey journey(delegate, folder);
        const bool isGood = journey.perform();
        for (const QString &path : journey.picturePaths())
            std::printf("%s\n", qPrintable(path));
        if (!isGood) {
            std::fprintf(stderr, "ferrow-journey: failed where %s\n", qPrintable(journey.failure()));
            return 1;
        }
    }
    return 0;
}
