#include "ResourceFolder.h"

#include <QCoreApplication>
#include <QDir>

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
