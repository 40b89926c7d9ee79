#include "ResourceFolder.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

QString resourceFolder()
{
    const QDir program(QCoreApplication::applicationDirPath());
    for (const QString &place :
         {QStringLiteral("../share/kelvard-ferrow-remote-console"), QStringLiteral("../Resources")}) {
        const QString folder = QDir::cleanPath(program.absoluteFilePath(place));
        if (QDir(folder).exists())
            return folder;
    }
    return QStringLiteral(FERROW_SOURCE_RESOURCES);
}

QString guideFile()
{
    const QDir program(QCoreApplication::applicationDirPath());
    for (const QString &place : {QStringLiteral("../share/doc/ferrow-rcon/guide.md"),
                                 QStringLiteral("../Resources/guide.md"), QStringLiteral(FERROW_SOURCE_GUIDE)}) {
        const QString file = QDir::cleanPath(program.absoluteFilePath(place));
        if (QFileInfo::exists(file))
            return file;
    }
    return {};
}
