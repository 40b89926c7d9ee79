#include "ResourceFolder.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStringList>

/// The first of `places` that exists, each seen from the program's folder; empty if none does.
static QString firstOf(const QStringList &places)
{
    const QDir program(QCoreApplication::applicationDirPath());
    for (const QString &place : places) {
        const QString path = QDir::cleanPath(program.absoluteFilePath(place));
        if (QFileInfo::exists(path))
            return path;
    }
    return {};
}

QString resourceFolder()
{
    return firstOf({QStringLiteral("../share/kelvard-ferrow-remote-console"), QStringLiteral("../Resources"),
                    QStringLiteral(FERROW_SOURCE_RESOURCES)});
}

QString guideFile()
{
    return firstOf({QStringLiteral("../share/doc/ferrow-rcon/guide.md"), QStringLiteral("../Resources/guide.md"),
                    QStringLiteral(FERROW_SOURCE_GUIDE)});
}
